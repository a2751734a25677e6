#include "QueueCommands.h"

#include <fmt/ostream.h>

#include <fstream>
#include <istream>
#include <utility>

#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/system/LocalFiles.h"
#include "tools/qvcall/system/ServerPath.h"
#include "tools/qvcall/system/Terminal.h"

namespace qv::tool {
namespace {

// Every server accepts this length, and the keys of cloud stores are no longer.
constexpr std::size_t kLongestPath = 1024;
constexpr std::size_t kLongestLocal = 4096;

constexpr std::string_view kSeparators = "/\\";

// Otherwise leaves the path as written: a leading "/" has a meaning on file servers.
std::string JoinWithSlash(std::string_view folder, std::string_view name) {
  if (folder == ".") folder = {};
  std::string path(folder);
  if (!path.empty() && !EndsAsFolder(path)) path += '/';
  return path.append(name);
}

std::string_view NameIn(std::string_view path) {
  const std::size_t last = path.find_last_of(kSeparators);
  return last == std::string_view::npos ? path : path.substr(last + 1);
}

// Keeps a large file that was named by mistake out of memory.
constexpr std::size_t kLongestPassword = 4096;

std::optional<std::string> FirstLine(std::istream& in) {
  std::string line;
  for (char ch = 0; in.get(ch) && ch != '\n';) {
    line += ch;
    if (line.size() > kLongestPassword) return std::nullopt;
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line.empty() ? std::nullopt : std::optional(line);
}

std::optional<std::string> Asked(const QueueHost& host, std::ostream& err) {
  const bool is_key = host.service == Service::kCloud;
  auto password = AskForSecret(fmt::format("{} of {} at {}: ", is_key ? "Secret key" : "Password",
                                           Visible(host.login), Visible(host.name)));
  if (!password) {
    fmt::print(
        err,
        "qvcall: there is no terminal to ask for the password; name a file that holds it with "
        "--password-file\n");
  }
  return password;
}

}  // namespace

std::vector<FileTransfer> PlanQueue(const QueuePut& command, TransferReport& report) {
  // The component creates missing folders.
  const auto make_folder = [](const std::string&, const std::string&) { return true; };
  const UploadTarget target = {JoinWithSlash, kLongestPath, kLongestLocal, make_folder};
  return PlanUpload(target, command.local, command.folder, command.recursive, report);
}

std::vector<FileTransfer> PlanQueue(const QueueGet& command, TransferReport& report) {
  std::vector<FileTransfer> files;
  for (const std::string& path : command.paths) {
    const std::string_view name = NameIn(path);
    if (name.empty()) {
      report.Fail(path, "is a folder; only files can be fetched, each by its path");
    } else if (!IsLocalName(name)) {
      report.Fail(path, "has a name that is not allowed for a local file");
    } else {
      files.push_back({JoinLocal(command.local_folder, name), path, 0});
    }
  }
  return WithoutDoubles(std::move(files), &FileTransfer::server, &FileTransfer::local, report);
}

std::string QueueTarget(const std::string& source, const std::string& target) {
  return EndsAsFolder(target) ? JoinWithSlash(target, NameIn(source)) : target;
}

std::optional<std::string> PasswordFor(const QueueHost& host, std::istream& in, std::ostream& err) {
  if (host.login.empty()) return "";
  if (host.password_file.empty()) return Asked(host, err);
  std::ifstream file;
  const bool is_input = host.password_file == "-";
  if (!is_input) file.open(host.password_file);
  auto password = FirstLine(is_input ? in : file);
  if (!password) {
    fmt::print(err, "qvcall: {}: has no password in its first line, or cannot be read\n",
               is_input ? "standard input" : Visible(host.password_file));
  }
  return password;
}

}  // namespace qv::tool
