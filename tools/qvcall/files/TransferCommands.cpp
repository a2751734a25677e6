#include "FileCommands.h"

#include <fmt/ostream.h>

#include <fstream>
#include <string>
#include <vector>

#include "PartFolder.h"
#include "StoreListing.h"
#include "TransferPlan.h"
#include "TransferReport.h"
#include "qvnetcall/QvNetCall4.h"
#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/progress/TransferProgress.h"
#include "tools/qvcall/session/Session.h"
#include "tools/qvcall/system/ServerPath.h"

namespace qv::tool {
namespace {

using Files = std::vector<FileTransfer>;

std::string Label(const Files& files, const FileTransfer& file) {
  std::string name(LastPart(file.server));
  if (files.size() == 1) return name;
  return fmt::format("{} of {}: {}", &file - files.data() + 1, files.size(), name);
}

void Send(const Files& files, TransferReport& report, std::ostream& err) {
  TransferProgress progress(err, [] {});
  for (const FileTransfer& file : files) {
    if (!std::ifstream(file.local)) {
      report.Fail(file.local, "cannot be read");
      continue;
    }
    progress.Begin(Label(files, file), file.bytes);
    const int code = CRvoFile::UpLoadFileToServer(file.local.c_str(), file.server.c_str());
    progress.End();
    if (code == result::kSuccess) {
      report.Done(file.bytes);
    } else {
      report.Fail(file.local, Call::kUpload, code);
    }
  }
}

// Checked first, so that no file is sent in vain.
bool IsThere(const std::string& server_folder, const Session& session, std::ostream& err) {
  if (server_folder.empty() || FindFolder(server_folder)) return true;
  if (!session.Probe()) {
    session.PrintRefusal(Call::kLook, {}, err);
  } else {
    fmt::print(err, "qvcall: {}: the server has no such folder; create it with `qvcall mkdir`\n",
               Visible(server_folder));
  }
  return false;
}

void Fetch(const Files& files, const PartFolder& parts, TransferProgress& progress,
           TransferReport& report) {
  for (const FileTransfer& file : files) {
    progress.Begin(Label(files, file), file.bytes);
    const int code = CRvoFile::DownLoadServerFile(parts.File().c_str(), file.server.c_str());
    progress.End();
    if (code != result::kSuccess) {
      report.Fail(file.server, Call::kDownload, code);
    } else if (const std::string reason = parts.MoveTo(file.local); !reason.empty()) {
      report.Fail(file.server,
                  fmt::format("cannot be moved to {}: {}", Visible(file.local), reason));
    } else {
      report.Done(file.bytes);
    }
  }
}

}  // namespace

int Run(const ConnectionOptions& connection, const PutFiles& command, std::ostream& /*out*/,
        std::ostream& err) {
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  if (!IsThere(command.server_folder, session, err)) return kFailed;
  TransferReport report(session, err);
  Send(PlanUpload(command, report), report, err);
  return report.Finish();
}

int Run(const ConnectionOptions& connection, const GetFiles& command, std::ostream& /*out*/,
        std::ostream& err) {
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  PartFolder parts(command.local_folder);
  TransferReport report(session, err);
  TransferProgress progress(err, [&parts] { parts.Remove(); });
  if (!parts.Make()) {
    fmt::print(err, "qvcall: {} is not a folder that can be written\n",
               Visible(command.local_folder));
    return kFailed;
  }
  const Files files = PlanDownload(command, report);
  // A server shows an empty store to a client without a valid token.
  if (files.empty() && !report.HasFailures() && !session.Probe())
    report.Fail(session.Address(), Call::kDownload, result::kTransferRefused);
  Fetch(files, parts, progress, report);
  parts.Remove();  // while an interrupt still runs the clean-up
  return report.Finish();
}

}  // namespace qv::tool
