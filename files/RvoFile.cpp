#include "qvnetcall/RvoFile.h"

#include <cstdint>

#include "TransferCall.h"
#include "qvnetcall/ResultCodes.h"
#include "server/CatalogueCall.h"

using qv::CatalogueCall;
using qv::CatalogueCommand;
using qv::TransferCall;

namespace {

// Commands; the name field holds the server's path.
constexpr std::uint32_t kUpload = 100;
constexpr std::uint32_t kDownload = 101;
constexpr std::uint32_t kDelete = 700;

// Commands; request fields; reply fields after the number.
constexpr CatalogueCommand kRename{6005};    // texts old, new; folders are renamed by it too
constexpr CatalogueCommand kFileInfo{6007};  // text path; the record
constexpr CatalogueCommand kCopy{6011};      // texts source, target

}  // namespace

int CRvoFile::UpLoadFileToServer(const char* local_file, const char* server_file) {
  if (qv::NetworkIsHeldForBad()) return qv::result::kSuccess;
  TransferCall call(kUpload);
  call.Request().SetName(server_file);
  return call.Upload(local_file);
}

int CRvoFile::DownLoadServerFile(const char* local_file, const char* server_file) {
  if (qv::NetworkIsHeldForBad()) return qv::result::kSuccess;
  TransferCall call(kDownload);
  call.Request().SetName(server_file);
  return call.Download(local_file);
}

int CRvoFile::DeleteServerFile(const char* server_file) {
  if (qv::NetworkIsHeldForBad()) return qv::result::kSuccess;
  TransferCall call(kDelete);
  call.Request().SetName(server_file);
  return call.Send();
}

int CRvoFile::GetFileInfor(CString server_file, CZelkorSvrFileInfo* info) {
  if (qv::NetworkIsHeldForBad()) return 1;
  CatalogueCall call(kFileInfo, server_file);
  if (call.AskPositive() == 0) return 0;
  call.Read(info, sizeof *info);
  return 1;
}

// Servers answer 1 for a copy, but any number above 0 for a rename.
int CRvoFile::CopyOneFile(CString source_file, CString target_file) {
  if (qv::NetworkIsHeldForBad()) return 1;
  return CatalogueCall(kCopy, source_file, target_file).AskFlag() ? 1 : 0;
}

int CRvoFile::RenOneFile(CString old_file, CString new_file) {
  if (qv::NetworkIsHeldForBad()) return 1;
  return CatalogueCall(kRename, old_file, new_file).AskPositive() > 0 ? 1 : 0;
}
