#include "StoreListing.h"
#include "TransferPlan.h"
#include "qvnetcall/QvNetCall4.h"
#include "tools/qvcall/output/DisplayWidth.h"
#include "tools/qvcall/system/LocalFiles.h"
#include "tools/qvcall/system/ServerPath.h"

namespace qv::tool {
namespace {

// Files and folders; a server may go on for ever.
constexpr std::size_t kMostEntries = 1'000'000;

constexpr int kNotReached = -1;
constexpr int kNoSuchFile = 2;

class DownloadPlan {
 public:
  DownloadPlan(bool recursive, TransferReport& report) : recursive_(recursive), report_(report) {}

  void Add(const std::string& server, const std::string& local_folder) {
    if (server.empty()) return AddInside(server, local_folder, false);
    const std::string name(LastPart(server));
    if (!CanBeTaken(server, name)) return;
    if (const auto file = FindFile(server)) {
      AddFile(server, JoinLocal(local_folder, name), file->size);
    } else if (CRvoServer::GetIsNetworkBad(1) == 1) {
      report_.Fail(server, Call::kDownload, kNotReached);
    } else if (const auto folder = FindFolder(server); !folder) {
      report_.Fail(server, Call::kDownload, kNoSuchFile);
    } else if (!recursive_) {
      report_.Fail(server, "is a folder, which is only fetched with -r");
    } else {
      AddFolder(server, JoinLocal(local_folder, name), folder->has_folders);
    }
  }

  std::vector<FileTransfer> Taken() { return std::move(files_); }

 private:
  bool CanBeTaken(const std::string& server, std::string_view name) {
    if (++entries_ > kMostEntries) {
      if (entries_ == kMostEntries + 1) {
        report_.Fail(server, "and what follows is left out, being too many files and folders");
      }
      return false;
    }
    if (!IsLocalName(name)) {
      report_.Fail(server, "has a name that no file shall have here");
      return false;
    }
    if (server.size() > kLongestServerPath) {
      report_.Fail(server, "has too long a path to be asked for");
      return false;
    }
    return true;
  }

  void AddFile(const std::string& server, const std::string& local, std::uint64_t bytes) {
    files_.push_back({local, server, bytes});
  }

  // A link would lead out of the folder that the user gave.
  void AddFolder(const std::string& server, const std::string& local, bool has_folders) {
    if (!MakeLocalFolder(local) && (KindOf(local) != LocalKind::kFolder || IsLinkToFolder(local))) {
      return report_.Fail(server, "there is no place for a folder at " + Visible(local));
    }
    AddInside(server, local, has_folders);
  }

  void AddInside(const std::string& server, const std::string& local, bool has_folders) {
    const bool is_whole = ForEachFile(server, kEveryFile, [&](const ServerFile& file) {
      const std::string path = JoinServerPath(server, file.name);
      if (CanBeTaken(path, file.name)) AddFile(path, JoinLocal(local, file.name), file.size);
      return entries_ <= kMostEntries;
    });
    const auto [folders, has_all_folders] = FoldersIn(server);
    // A server lists too many as none.
    const bool hides_folders = has_folders && folders.empty();
    if (!is_whole || !has_all_folders || hides_folders || CRvoServer::GetIsNetworkBad(1) == 1) {
      report_.Fail(server.empty() ? "the store" : server, "not all that is in it could be listed");
    }
    for (const ServerFolder& folder : folders) {
      const std::string path = JoinServerPath(server, folder.name);
      if (CanBeTaken(path, folder.name))
        AddFolder(path, JoinLocal(local, folder.name), folder.has_folders);
      if (entries_ > kMostEntries) return;
    }
  }

  const bool recursive_;
  TransferReport& report_;
  std::vector<FileTransfer> files_;
  std::size_t entries_ = 0;
};

}  // namespace

std::vector<FileTransfer> PlanDownload(const GetFiles& command, TransferReport& report) {
  DownloadPlan plan(command.recursive, report);
  for (const std::string& server : command.server) plan.Add(server, command.local_folder);
  return WithoutDoubles(plan.Taken(), &FileTransfer::server, &FileTransfer::local, report);
}

}  // namespace qv::tool
