#include "FileCommands.h"

#include <fmt/ostream.h>

#include <string>

#include "StoreListing.h"
#include "qvnetcall/QvNetCall4.h"
#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/session/Session.h"

namespace qv::tool {
namespace {

class Listing {
 public:
  Listing(bool is_long, std::ostream& out) : is_long_(is_long), out_(out) {}

  void Add(const ServerFolder& folder) {
    ++folders_;
    Write("folder", folder.modified, Visible(folder.name) + '\\');
  }
  // Returns false if writing to `out` failed.
  bool Add(const ServerFile& file) {
    ++files_;
    Write(std::to_string(file.size), file.modified, Visible(file.name));
    return out_.good();
  }
  [[nodiscard]] bool IsEmpty() const { return folders_ + files_ == 0; }
  [[nodiscard]] std::string Count() const {
    const std::string files = fmt::format("{} {})", files_, files_ == 1 ? "file" : "files");
    if (folders_ == 0) return '(' + files;
    return fmt::format("({} {}, {}", folders_, folders_ == 1 ? "folder" : "folders", files);
  }

 private:
  void Write(const std::string& size, std::int64_t modified, const std::string& name) {
    if (is_long_) fmt::print(out_, "{:>15}  {}  ", size, TimeText(modified));
    fmt::print(out_, "{}\n", name);
  }

  const bool is_long_;
  std::ostream& out_;
  std::size_t folders_ = 0;
  std::size_t files_ = 0;
};

// A server lists no folders if there are too many, but the entry of the folder that holds them says
// that it has some.
bool HidesFolders(const std::string& path) {
  if (path.empty()) return false;
  const auto folder = FindFolder(path);
  return folder && folder->has_folders;
}

// Lists the contents of the folder. Returns false if the listing is incomplete.
bool ListInside(const ListFolder& command, Listing& listing) {
  const auto add = [&](const ServerFile& file) { return listing.Add(file); };
  if (!command.pattern.empty()) return ForEachFile(command.path, command.pattern, add);
  const auto [folders, has_all_folders] = FoldersIn(command.path);
  for (const ServerFolder& folder : folders) listing.Add(folder);
  const bool has_all_files = ForEachFile(command.path, kEveryFile, add);
  return has_all_files && has_all_folders && !(folders.empty() && HidesFolders(command.path));
}

// Whether the folder exists. An empty listing does not tell: a missing folder, and a store that the
// token gives no access to, look the same.
bool IsThere(const ListFolder& command, const Session& session, Listing& listing) {
  if (command.path.empty()) return session.Probe();
  if (command.pattern.empty()) {
    if (const auto file = FindFile(command.path)) return listing.Add(*file);
  }
  return FindFolder(command.path).has_value();
}

template <class Change>
int ChangeAll(const ConnectionOptions& connection, const std::vector<std::string>& paths, Call call,
              Change change, std::ostream& err) {
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  int status = kDone;
  for (const std::string& path : paths) {
    if (change(path.c_str()) == 1) continue;
    session.PrintRefusal(call, path, err);
    status = kFailed;
  }
  if (status == kDone) fmt::print(err, "done\n");
  return status;
}

}  // namespace

int Run(const ConnectionOptions& connection, const ListFolder& command, std::ostream& out,
        std::ostream& err) {
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  Listing listing(command.is_long, out);
  const bool is_whole = ListInside(command, listing);
  if (session.IsUnreachable() || (listing.IsEmpty() && !IsThere(command, session, listing))) {
    session.PrintRefusal(Call::kLook, command.path, err);
    return kFailed;
  }
  if (!out.flush()) return kFailed;
  fmt::print(err, "{}\n", listing.Count());
  if (is_whole) return kDone;
  fmt::print(err, "qvcall: the listing is incomplete\n");
  return kFailed;
}

int Run(const ConnectionOptions& connection, const MakeFolders& command, std::ostream& /*out*/,
        std::ostream& err) {
  return ChangeAll(connection, command.paths, Call::kMakeFolder, CRvoFolder::NewOneFolder, err);
}

int Run(const ConnectionOptions& connection, const RemoveFolders& command, std::ostream& /*out*/,
        std::ostream& err) {
  return ChangeAll(connection, command.paths, Call::kRemoveFolder, CRvoFolder::DelOneFolder, err);
}

}  // namespace qv::tool
