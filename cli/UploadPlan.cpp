#include <algorithm>
#include <filesystem>
#include <system_error>

#include "PartFolder.h"
#include "ServerPath.h"
#include "StoreListing.h"
#include "TransferPlan.h"
#include "qvnetcall/QvNetCall4.h"

namespace qv {
namespace {

namespace fs = std::filesystem;

constexpr int kNotReached = -1;

// What a path ends with once it is clear where it leads, as it is not for "..".
std::string NameOf(const fs::path& local) {
  std::error_code error;
  fs::path whole = fs::absolute(local, error).lexically_normal();
  if (!whole.has_filename()) whole = whole.parent_path();
  return whole.filename().string();
}

class UploadPlan {
 public:
  UploadPlan(const UploadTarget& target, bool recursive, TransferReport& report)
      : target_(target), recursive_(recursive), report_(report) {}

  void Add(const fs::path& local, const std::string& server_folder) {
    const std::string name = NameOf(local);
    const std::string server = target_.join(server_folder, name);
    if (!IsPlainName(name)) {
      report_.Fail(local.string(), "has a name that the server cannot take");
    } else if (server.size() > target_.longest_path ||
               local.string().size() > target_.longest_local_path) {
      report_.Fail(local.string(), "has too long a path");
    } else {
      AddNamed(local, server);
    }
  }

  std::vector<FileTransfer> Taken() { return std::move(files_); }

 private:
  void AddNamed(const fs::path& local, const std::string& server) {
    std::error_code error;
    const fs::file_status status = fs::status(local, error);
    if (fs::is_regular_file(status)) {
      const std::uintmax_t bytes = fs::file_size(local, error);
      files_.push_back({local.string(), server, error ? 0 : bytes});
    } else if (!fs::is_directory(status)) {
      report_.Fail(local.string(),
                   fs::exists(status) ? "is no file that can be sent" : "there is no such file");
    } else if (!recursive_) {
      report_.Fail(local.string(), "is a folder, which is only sent with -r");
    } else if (target_.make_folder(local.string(), server)) {
      AddInside(local, server);
    }
  }

  void AddInside(const fs::path& local, const std::string& server) {
    std::error_code error;
    std::vector<fs::path> entries;
    for (fs::directory_iterator at(local, error), end; !error && at != end; at.increment(error)) {
      entries.push_back(at->path());
    }
    if (error) report_.Fail(local.string(), error.message());
    std::sort(entries.begin(), entries.end());
    for (const fs::path& entry : entries) {
      if (fs::is_symlink(entry, error) && fs::is_directory(entry, error)) {
        report_.Fail(entry.string(), "is a link to a folder and is left out");
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

}  // namespace qv
