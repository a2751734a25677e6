#include "qvnetcall/RvoFolderEx.h"

#include "FolderListing.h"
#include "Offline.h"
#include "base/framework/DecimalText.h"
#include "server/CatalogueCall.h"

namespace {

// Request: texts folder, pattern, flag, numbers option, from, to. Reply behind the number: text
// with the size of the listing, the listing.
constexpr qv::CatalogueCommand kPage{6029, qv::kLargeCatalogueReply};

constexpr int kToTheEnd = -1;

bool IsRange(int option, int from, int to) {
  return option >= 0 && from >= 0 && (to == kToTheEnd || to >= from);
}

// Fills `buffer` with the reply's listing; the bytes themselves are not looked at.
bool ReadPage(qv::CatalogueCall& call, CQvRvoBuf& buffer) {
  const std::int32_t size = qv::DecimalToInt32(call.Text().View());
  if (size <= 0) return false;
  // More than any reply holds is memory that cannot be had: the buffer is empty then.
  const bool can_be_had = static_cast<std::uint64_t>(size) <= qv::kMostRecordBytes;
  if (buffer.Alloc(can_be_had ? size : 0) == 0) return false;
  call.Read(buffer.m_bytes, buffer.m_size);
  return true;
}

}  // namespace

int CRvoFolderEx::GetMatchFilesInFolderEx(CString folder, CString pattern, int& count, int flag,
                                          int option, int from, int to, CQvRvoBuf* buffer) {
  if (qv::NetworkIsHeldForBad()) return 0;
  count = 0;
  if (!IsRange(option, from, to)) return 0;
  qv::CatalogueCall call(kPage, folder, pattern, qv::FlagText(flag), option, from, to);
  const std::int32_t found = call.Ask().value_or(0);
  if (found <= 0) return 0;
  count = found;
  return ReadPage(call, *buffer) ? 1 : 0;
}

int CRvoFolderEx::GetFilesInFolderEx(CString folder, int& count, int flag, int option, int from,
                                     int to, CQvRvoBuf* buffer) {
  return GetMatchFilesInFolderEx(folder, qv::kEveryFile, count, flag, option, from, to, buffer);
}
