// The calls that list and change folders, whole (CRvoFolder) and in pages (CRvoFolderEx).
#include "qvnetcall/RvoFolder.h"

#include <cstddef>
#include <cstdint>
#include <new>

#include "TransferCall.h"
#include "base/call/LastError.h"
#include "base/text/Numbers.h"
#include "qvnetcall/QvRvoBuf.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/RvoFolderEx.h"
#include "server/CatalogueCall.h"

using qv::CatalogueCall;
using qv::CatalogueCommand;

namespace {

// Commands; request fields; reply fields after the number.
constexpr CatalogueCommand kChildFolders{6001, qv::kLargeCatalogueReply};  // text folder; records
constexpr CatalogueCommand kMatchingFiles{6002};  // texts folder, pattern, flag; records
constexpr CatalogueCommand kNewFolder{6003};      // text folder
constexpr CatalogueCommand kDeleteFolder{6004};   // text folder
constexpr CatalogueCommand kRenameFolder{6005};   // texts old, new; the command that renames files

constexpr const char kEveryFile[] = "*.*";

CString FlagText(int flag) { return flag != 0 ? "1" : "0"; }

// Offline, a change counts as done.
template <class... Texts>
int Change(const CatalogueCommand& command, const Texts&... texts) {
  if (qv::NetworkIsHeldForBad()) return 1;
  return CatalogueCall(command, texts...).AskPositive() > 0 ? 1 : 0;
}

// Request: texts folder, pattern, flag, numbers option, from, to. Reply after the number: text with
// the size of the listing, the listing.
constexpr CatalogueCommand kPage{6029, qv::kLargeCatalogueReply};

constexpr int kToTheEnd = -1;

bool IsRange(int option, int from, int to) {
  return option >= 0 && from >= 0 && (to == kToTheEnd || to >= from);
}

// Fills `buffer` with the reply's listing, whose bytes are not checked.
bool ReadPage(qv::CatalogueCall& call, CQvRvoBuf& buffer) {
  const std::int32_t size = qv::text::DecimalToInt32(call.Text().View());
  if (size <= 0) return false;
  // A size that no reply holds is treated as out of memory: the buffer is empty then.
  const bool can_be_had = static_cast<std::uint64_t>(size) <= qv::kMostRecordBytes;
  if (buffer.Alloc(can_be_had ? size : 0) == 0) return false;
  call.Read(buffer.m_bytes, buffer.m_size);
  return true;
}

}  // namespace

CZelkorSvrFileInfo* CRvoFolder::GetMatchFilesInFolder(CString folder, CString pattern, int& count,
                                                      int flag) {
  if (qv::NetworkIsHeldForBad()) return nullptr;
  count = 0;
  CatalogueCall call(kMatchingFiles, folder, pattern, FlagText(flag));
  return call.AskRecords<CZelkorSvrFileInfo>(count);
}

CZelkorSvrFileInfo* CRvoFolder::GetFilesInFolder(CString folder, int& count, int flag) {
  return GetMatchFilesInFolder(folder, kEveryFile, count, flag);
}

// Unlike the listing of files, this leaves `count` unchanged if there is no listing.
CZelkorSvrFolderInfo* CRvoFolder::GetChildFolderInfo(int& count, CString folder) {
  if (qv::NetworkIsHeldForBad()) return nullptr;
  CatalogueCall call(kChildFolders, folder);
  return call.AskRecords<CZelkorSvrFolderInfo>(count);
}

int CRvoFolder::NewOneFolder(CString folder) { return Change(kNewFolder, folder); }

int CRvoFolder::DelOneFolder(CString folder) { return Change(kDeleteFolder, folder); }

int CRvoFolder::RenOneFolder(CString old_folder, CString new_folder) {
  return Change(kRenameFolder, old_folder, new_folder);
}

int CRvoFolderEx::GetMatchFilesInFolderEx(CString folder, CString pattern, int& count, int flag,
                                          int option, int from, int to, CQvRvoBuf* buffer) {
  if (qv::NetworkIsHeldForBad()) return 0;
  count = 0;
  if (!IsRange(option, from, to)) {
    qv::call::SetError(qv::error::kLocal, "this is not a range of a listing");
    return 0;
  }
  qv::CatalogueCall call(kPage, folder, pattern, FlagText(flag), option, from, to);
  const std::int32_t found = call.AskCount();
  if (found == 0) return 0;
  count = found;
  if (ReadPage(call, *buffer)) return 1;
  qv::call::SetErrorIfNone(qv::error::kBadReply, "the reply lacks fields that belong to it");
  return 0;
}

int CRvoFolderEx::GetFilesInFolderEx(CString folder, int& count, int flag, int option, int from,
                                     int to, CQvRvoBuf* buffer) {
  return GetMatchFilesInFolderEx(folder, kEveryFile, count, flag, option, from, to, buffer);
}

static_assert(offsetof(CQvRvoBuf, m_size) == 0 && offsetof(CQvRvoBuf, m_bytes) == sizeof(void*));

int CQvRvoBuf::Alloc(int size) {
  Release();
  if (size < 1) return 0;
  m_bytes = new (std::nothrow) unsigned char[static_cast<unsigned>(size)]();
  if (m_bytes == nullptr) return 0;
  m_size = static_cast<unsigned>(size);
  return 1;
}

void CQvRvoBuf::Release() {
  delete[] m_bytes;
  m_bytes = nullptr;
  m_size = 0;
}
