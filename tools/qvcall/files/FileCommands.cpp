#include "FileCommands.h"

#include <fmt/ostream.h>

#include <ostream>
#include <string>
#include <vector>

#include "StoreListing.h"
#include "qvnetcall/QvNetCall4.h"
#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/session/Session.h"

namespace qv::tool {
namespace {

using Rows = std::vector<std::vector<std::string>>;

Rows Described(const std::string& path) {
  Rows rows = {{"path", path}};
  if (const auto file = FindFile(path)) {
    rows.push_back({"kind", "file"});
    rows.push_back({"size", std::to_string(file->size)});
    rows.push_back({"modified", TimeText(file->modified)});
  } else if (const auto folder = FindFolder(path)) {
    rows.push_back({"kind", "folder"});
    rows.push_back({"modified", TimeText(folder->modified)});
  } else {
    rows.clear();
  }
  return rows;
}

}  // namespace

int Run(const ConnectionOptions& connection, const ShowPath& command, std::ostream& out,
        std::ostream& err) {
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  const Rows rows = Described(command.path);
  if (rows.empty()) {
    session.PrintRefusal(Call::kLook, command.path, err);
    return kFailed;
  }
  WriteColumns(rows, out);
  return kDone;
}

int Run(const ConnectionOptions& connection, const MovePath& command, std::ostream& /*out*/,
        std::ostream& err) {
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  // The same request renames files and folders.
  if (CRvoFile::RenOneFile(command.source.c_str(), command.target.c_str()) == 1) {
    fmt::print(err, "done\n");
    return kDone;
  }
  session.PrintRefusal(Call::kMove, command.source, err);
  return kFailed;
}

int Run(const ConnectionOptions& connection, const CopyFile& command, std::ostream& /*out*/,
        std::ostream& err) {
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  if (CRvoFile::CopyOneFile(command.source.c_str(), command.target.c_str()) == 1) {
    fmt::print(err, "done\n");
    return kDone;
  }
  session.PrintRefusal(Call::kCopy, command.source, err);
  return kFailed;
}

int Run(const ConnectionOptions& connection, const RemoveFiles& command, std::ostream& /*out*/,
        std::ostream& err) {
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  int status = kDone;
  for (const std::string& path : command.paths) {
    const int code = CRvoFile::DeleteServerFile(path.c_str());
    if (code == result::kSuccess) continue;
    session.PrintFailure(Call::kRemove, code, err, path);
    status = kFailed;
  }
  if (status == kDone) fmt::print(err, "done\n");
  return status;
}

}  // namespace qv::tool
