#include "qvnetcall/RvoIdFile.h"

#include <cstdint>
#include <string_view>

#include "TransferCall.h"
#include "qvnetcall/ResultCodes.h"

using qv::TransferCall;

namespace {

// Commands; the name field holds the name and the identifier.
constexpr std::uint32_t kUpload = 130;
constexpr std::uint32_t kDownload = 131;
constexpr std::uint32_t kDelete = 730;
// Number, text, number, text: source and target. Reply: status and, unless it is "SUCCESS", a
// number.
constexpr std::uint32_t kCopy = 140;
constexpr std::uint32_t kCopyBlock = 1048576;
// Number, text.
constexpr std::uint32_t kExists = 150;

}  // namespace

int CRvoIdFile::UpLoadFileToServerByFileID(const char* local_file, const char* file_name,
                                           int file_id) {
  if (qv::NetworkIsHeldForBad()) return qv::result::kSuccess;
  TransferCall call(kUpload);
  call.Request().SetIdName(file_name, file_id);
  return call.Upload(local_file);
}

int CRvoIdFile::DownLoadServerFileByFileID(const char* local_file, const char* file_name,
                                           int file_id) {
  if (qv::NetworkIsHeldForBad()) return qv::result::kSuccess;
  TransferCall call(kDownload);
  call.Request().SetIdName(file_name, file_id);
  return call.Download(local_file);
}

int CRvoIdFile::DeleteServerFileByFileID(const char* file_name, int file_id) {
  if (qv::NetworkIsHeldForBad()) return qv::result::kSuccess;
  TransferCall call(kDelete);
  call.Request().SetIdName(file_name, file_id);
  return call.Send();
}

int CRvoIdFile::CopyIdFile(int source_id, const char* source_name, int target_id,
                           const char* target_name) {
  if (qv::NetworkIsHeldForBad()) return qv::result::kSuccess;
  qv::Exchange exchange(kCopy, kCopyBlock, kCopyBlock);
  exchange.AddNumber(source_id);
  exchange.Request().AddString(source_name, nullptr);
  exchange.AddNumber(target_id);
  exchange.Request().AddString(target_name, nullptr);
  exchange.Request().SetMsgFlag(0);
  if (const int result = exchange.Send(); result != 0) return result;
  int err = 0;
  if (exchange.Reply().GetString(&err) == qv::kStatusSuccess) return qv::result::kSuccess;
  std::int32_t code = 0;
  exchange.Reply().GetData(&code, sizeof code, &err);
  return qv::Refused(code != 0 ? code : qv::result::kCopyFailed);
}

int CRvoIdFile::IsIdFileExist(const char* file_name, int file_id) {
  if (qv::NetworkIsHeldForBad()) return 0;
  TransferCall call(kExists);
  call.AddNumber(file_id);
  call.Request().AddString(file_name, nullptr);
  return call.Send() == qv::result::kSuccess ? 1 : 0;
}

CString CRvoIdFile::GetIdFilePath(int id) {
  CString digits;
  digits.Format("%07d", id);
  // Identifiers that differ only in their last two digits share a parent folder. The rest and the
  // two pairs before those digits are its path.
  const std::string_view all = digits.View();
  const std::size_t rest = all.size() - 6;
  const CString first(all.substr(0, rest));
  const CString second(all.substr(rest, 2));
  const CString third(all.substr(rest + 2, 2));
  CString path;
  path.Format("%s\\%s\\%s\\%d\\", first, second, third, id);
  return path;
}
