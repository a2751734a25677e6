#include "PartFolder.h"
#include "StoreListing.h"
#include "TransferPlan.h"
#include "qvnetcall/QvNetCall4.h"
#include "tools/qvcall/system/LocalFiles.h"
#include "tools/qvcall/system/ServerPath.h"

namespace qv::tool {
namespace {

constexpr int kNotReached = -1;

// Another name would be sent, or one with wildcards.
constexpr std::string_view kUnsayable =
    "has a name with characters that the system's code page lacks; give it another name";

class UploadPlan {
 public:
  UploadPlan(const UploadTarget& target, bool recursive, TransferReport& report)
      : target_(target), recursive_(recursive), report_(report) {}

  void Add(const std::string& local, const std::string& server_folder) {
    const std::optional<std::string> name = LocalNameOf(local);
    if (!name) return report_.Fail(local, kUnsayable);
    if (!IsPlainName(*name)) return report_.Fail(local, "has a name that the server cannot take");
    const std::string server = target_.join(server_folder, *name);
    if (server.size() > target_.longest_path || local.size() > target_.longest_local_path) {
      return report_.Fail(local, "has too long a path");
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
      report_.Fail(local, "is no file that can be sent");
    } else if (!recursive_) {
      report_.Fail(local, "is a folder, which is only sent with -r");
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
    report.Fail(local, Call::kUpload, kNotReached);
  } else {
    report.Fail(local, "the server has no folder for it and makes none");
  }
  return false;
}

}  // namespace

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

}  // namespace qv::tool
