#include "TransferPlan.h"

#include <unordered_set>

#include "PartFolder.h"
#include "StoreListing.h"
#include "qvnetcall/QvNetCall4.h"
#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/system/LocalFiles.h"
#include "tools/qvcall/system/LocalPath.h"
#include "tools/qvcall/system/ServerPath.h"

namespace qv::tool {
namespace {

// Such a name would be sent with other characters, or with wildcards.
constexpr std::string_view kUnsayable =
    "has a name with characters that the system's code page lacks; give it another name";

class UploadPlan {
 public:
  UploadPlan(const UploadTarget& target, bool recursive, TransferReport& report)
      : target_(target), recursive_(recursive), report_(report) {}

  void Add(const std::string& local, const std::string& server_folder) {
    const std::optional<std::string> name = LocalNameOf(local);
    if (!name) return report_.Fail(local, kUnsayable);
    if (!IsPlainName(*name))
      return report_.Fail(local, "has a name that the server does not accept");
    const std::string server = target_.join(server_folder, *name);
    if (server.size() > target_.longest_path || local.size() > target_.longest_local_path) {
      return report_.Fail(local, "has a path that is too long");
    }
    AddNamed(local, server);
  }

  std::vector<FileTransfer> Taken() { return std::move(files_); }

 private:
  void AddNamed(const std::string& local, const std::string& server) {
    const LocalKind kind = KindOf(local);
    if (kind == LocalKind::kFile) {
      files_.push_back({local, server, SizeOf(local)});
    } else if (kind == LocalKind::kNone) {
      report_.Fail(local, "there is no such file");
    } else if (kind == LocalKind::kOther) {
      report_.Fail(local, "is not a file that can be sent");
    } else if (!recursive_) {
      report_.Fail(local, "is a folder, which is sent only with -r");
    } else if (target_.make_folder(local, server)) {
      AddInside(local, server);
    }
  }

  void AddInside(const std::string& local, const std::string& server) {
    const LocalEntries entries = EntriesOf(local);
    if (!entries.error.empty()) report_.Fail(local, entries.error);
    for (const std::string& nearest : entries.nameless) report_.Fail(nearest, kUnsayable);
    for (const std::string& entry : entries.paths) {
      if (IsLinkToFolder(entry)) {
        report_.Fail(entry, "is a link to a folder and is left out");
      } else {
        Add(entry, server);
      }
    }
  }

  const UploadTarget& target_;
  const bool recursive_;
  TransferReport& report_;
  std::vector<FileTransfer> files_;
};

bool MakeFolder(const std::string& local, const std::string& server, TransferReport& report) {
  if (CRvoFolder::NewOneFolder(server.c_str()) == 1 || FindFolder(server)) return true;
  if (CRvoServer::GetIsNetworkBad(1) == 1) {
    report.Fail(local, Call::kUpload, result::kNotDelivered);
  } else {
    report.Fail(local, "the server has no folder for it and does not create one");
  }
  return false;
}

// Limits files and folders together, because a hostile server could list them without end.
constexpr std::size_t kMostEntries = 1'000'000;

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
      report_.Fail(server, Call::kDownload, result::kNotDelivered);
    } else if (const auto folder = FindFolder(server); !folder) {
      report_.Fail(server, Call::kLook, 0);
    } else if (!recursive_) {
      report_.Fail(server, "is a folder, which is fetched only with -r");
    } else {
      AddFolder(server, JoinLocal(local_folder, name), folder->has_folders);
    }
  }

  std::vector<FileTransfer> Taken() { return std::move(files_); }

 private:
  bool CanBeTaken(const std::string& server, std::string_view name) {
    if (++entries_ > kMostEntries) {
      if (entries_ == kMostEntries + 1) {
        report_.Fail(server,
                     "this and all that follows is left out: there are too many files and folders");
      }
      return false;
    }
    if (!IsLocalName(name)) {
      report_.Fail(server, "has a name that is not allowed for a local file");
      return false;
    }
    if (server.size() > kLongestServerPath) {
      report_.Fail(server, "has a path that is too long to request");
      return false;
    }
    return true;
  }

  void AddFile(const std::string& server, const std::string& local, std::uint64_t bytes) {
    files_.push_back({local, server, bytes});
  }

  // A link could lead out of the folder that the user gave.
  void AddFolder(const std::string& server, const std::string& local, bool has_folders) {
    if (!MakeLocalFolder(local) && (KindOf(local) != LocalKind::kFolder || IsLinkToFolder(local))) {
      return report_.Fail(server, "no folder can be created at " + Visible(local));
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
    // A server lists no folders if there are too many.
    const bool hides_folders = has_folders && folders.empty();
    if (!is_whole || !has_all_folders || hides_folders || CRvoServer::GetIsNetworkBad(1) == 1) {
      report_.Fail(server.empty() ? "the store" : server,
                   "its contents could not be listed completely");
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

std::vector<FileTransfer> WithoutDoubles(std::vector<FileTransfer> files,
                                         std::string FileTransfer::*source,
                                         std::string FileTransfer::*place, TransferReport& report) {
  std::unordered_set<std::string> taken;
  std::erase_if(files, [&](const FileTransfer& file) {
    const std::string& path = file.*place;
    if (taken.insert(place == &FileTransfer::local ? PathKey(path) : path).second) return false;
    report.Fail(file.*source, "would replace an earlier file, and is left out");
    return true;
  });
  return files;
}

std::vector<FileTransfer> PlanUpload(const UploadTarget& target,
                                     const std::vector<std::string>& local,
                                     const std::string& folder, bool recursive,
                                     TransferReport& report) {
  UploadPlan plan(target, recursive, report);
  for (const std::string& path : local) plan.Add(path, folder);
  return WithoutDoubles(plan.Taken(), &FileTransfer::local, &FileTransfer::server, report);
}

std::vector<FileTransfer> PlanUpload(const PutFiles& command, TransferReport& report) {
  const auto make_folder = [&report](const std::string& local, const std::string& server) {
    return MakeFolder(local, server, report);
  };
  const UploadTarget target = {JoinServerPath, kLongestServerPath, kLongestLocalPath, make_folder};
  return PlanUpload(target, command.local, command.server_folder, command.recursive, report);
}

std::vector<FileTransfer> PlanDownload(const GetFiles& command, TransferReport& report) {
  DownloadPlan plan(command.recursive, report);
  for (const std::string& server : command.server) plan.Add(server, command.local_folder);
  return WithoutDoubles(plan.Taken(), &FileTransfer::server, &FileTransfer::local, report);
}

}  // namespace qv::tool
