#include "FileCommands.h"

#include <fmt/ostream.h>
#include <zlib.h>

#include <cstdint>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "PartFolder.h"
#include "TransferReport.h"
#include "base/text/Numbers.h"
#include "qvnetcall/QvNetCall4.h"
#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/progress/TransferProgress.h"
#include "tools/qvcall/session/Session.h"
#include "tools/qvcall/system/LocalFiles.h"

namespace qv::tool {
namespace {

// Returns the CRC-32 of a local file, or nullopt if it cannot be read.
std::optional<std::uint32_t> ChecksumOf(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  std::vector<char> block(1U << 18U);
  uLong sum = crc32(0, nullptr, 0);
  while (in.read(block.data(), static_cast<std::streamsize>(block.size())) || in.gcount() > 0) {
    sum = crc32(sum, reinterpret_cast<const Bytef*>(block.data()), static_cast<uInt>(in.gcount()));
  }
  if (in.bad()) return std::nullopt;
  return static_cast<std::uint32_t>(sum);
}

// Parses a CRC-32 that a server wrote as at most eight hexadecimal digits.
std::optional<std::uint32_t> ReadChecksum(std::string_view text) {
  return text.size() <= 8 ? text::ParseNumber<std::uint32_t>(text, 16) : std::nullopt;
}

struct ServerChecksum {
  CString text;
  int size = 0;
  CString reason;  // why there is no checksum
};

// Whether the server has a checksum of the file.
bool AskChecksum(const NumberedFile& file, ServerChecksum& sum) {
  return CRvoIdFileEx::GetIDFileCRC(file.name.c_str(), file.id, sum.text, sum.size, sum.reason) >=
         1;
}

constexpr std::string_view kSame = "checksum ok";

// Compares a local file with the server's. Returns kSame, a remark that they could not be compared,
// or nullopt if they differ.
std::optional<std::string> Compare(const std::string& local, const NumberedFile& file) {
  ServerChecksum sum;
  if (!AskChecksum(file, sum)) return "the server has no checksum";
  const auto theirs = ReadChecksum(sum.text.View());
  if (!theirs) return "the server's checksum has an unknown format";
  if (ChecksumOf(local) != theirs) return std::nullopt;
  return std::string(kSame);
}

// Returns the path of the local file. The user may have given an existing folder instead.
std::string PlaceOf(const GetById& command) {
  const bool is_folder =
      KindOf(command.local) == LocalKind::kFolder && IsLocalName(command.file.name);
  return is_folder ? JoinLocal(command.local, command.file.name) : command.local;
}

// Returns the remark on the checksum, or nullopt after a failure, which was reported.
std::optional<std::string> Fetch(const GetById& command, const PartFolder& parts,
                                 TransferProgress& progress, TransferReport& report) {
  const NumberedFile& file = command.file;
  progress.Begin(file.name, std::nullopt);
  const int code =
      CRvoIdFile::DownLoadServerFileByFileID(parts.File().c_str(), file.name.c_str(), file.id);
  progress.End();
  if (code != result::kSuccess) {
    report.Fail(file.name, Call::kDownload, code);
    return std::nullopt;
  }
  const std::uint64_t bytes = SizeOf(parts.File());
  std::optional<std::string> remark = Compare(parts.File(), file);
  if (!remark) {
    report.Fail(file.name, "arrived with a checksum other than the server's, and was discarded");
    return std::nullopt;
  }
  if (const std::string reason = parts.MoveTo(PlaceOf(command)); !reason.empty()) {
    report.Fail(command.local, reason);
    return std::nullopt;
  }
  report.Done(bytes);
  return remark;
}

using Rows = std::vector<std::vector<std::string>>;

Rows Described(const NumberedFile& file) {
  Rows rows = {{"name", file.name}, {"id", std::to_string(file.id)}};
  ServerChecksum sum;
  if (AskChecksum(file, sum)) {
    rows.push_back({"checksum", std::string(sum.text.View())});
    rows.push_back({"size", std::to_string(sum.size)});
  } else {
    rows.push_back({"checksum", "none: " + std::string(sum.reason.View())});
  }
  CString path;
  CString reason;
  const bool has_path =
      CRvoIdFileEx::GetIDFileSavePath(file.name.c_str(), file.id, path, reason) >= 1;
  rows.push_back({"stored as",
                  has_path ? std::string(path.View()) : "unknown: " + std::string(reason.View())});
  return rows;
}

}  // namespace

int Run(const ConnectionOptions& connection, const PutById& command, std::ostream& /*out*/,
        std::ostream& err) {
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  TransferReport report(session, err);
  if (KindOf(command.local) != LocalKind::kFile || !std::ifstream(command.local) ||
      command.local.size() > kLongestLocalPath) {
    report.Fail(command.local, "is not a readable file");
    return report.Finish();
  }
  const NumberedFile& file = command.file;
  const std::uint64_t bytes = SizeOf(command.local);
  TransferProgress progress(err, [] {});
  progress.Begin(file.name, bytes);
  const int code =
      CRvoIdFile::UpLoadFileToServerByFileID(command.local.c_str(), file.name.c_str(), file.id);
  progress.End();
  if (code != result::kSuccess) {
    report.Fail(command.local, Call::kUpload, code);
    return report.Finish();
  }
  const std::optional<std::string> remark = Compare(command.local, file);
  if (remark) {
    report.Done(bytes);
  } else {
    report.Fail(command.local,
                "the server has a different checksum for it; the file may have changed "
                "meanwhile: send it again");
  }
  return report.Finish(remark.value_or(""));
}

int Run(const ConnectionOptions& connection, const GetById& command, std::ostream& /*out*/,
        std::ostream& err) {
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  PartFolder parts(LocalFolderOf(PlaceOf(command)));
  TransferReport report(session, err);
  TransferProgress progress(err, [&parts] { parts.Remove(); });
  if (!parts.Make()) {
    fmt::print(err, "qvcall: the folder of {} cannot be written\n", Visible(command.local));
    return kFailed;
  }
  const std::optional<std::string> remark = Fetch(command, parts, progress, report);
  parts.Remove();  // while an interrupt still runs the clean-up
  return report.Finish(remark.value_or(""));
}

int Run(const ConnectionOptions& connection, const ShowById& command, std::ostream& out,
        std::ostream& err) {
  Session session(connection, "", Session::Calls::kOverSocket);
  if (!session.Start(err)) return kFailed;
  const NumberedFile& file = command.file;
  if (CRvoIdFile::IsIdFileExist(file.name.c_str(), file.id) != 1) {
    session.PrintRefusal(Call::kLook, file.name, err);
    return kFailed;
  }
  WriteColumns(Described(file), out);
  return kDone;
}

}  // namespace qv::tool
