#include "qvnetcall/RvoIdFileEx.h"

#include <optional>
#include <string_view>

#include "TransferCall.h"
#include "base/platform/Platform.h"
#include "server/CatalogueCall.h"

using qv::CatalogueCall;

namespace {

constexpr std::uint32_t kReply = qv::kShortCatalogueReply;

// Commands; request fields; reply fields after a number of at least 1. After any other number the
// error's text follows.
// Texts pack, name, number, text, number: in the caller's order; nothing.
constexpr qv::CatalogueCommand kCopyPacked{6030, kReply};
constexpr qv::CatalogueCommand kPackedChecksum{6031, kReply};  // pack, name, id; checksum, number
constexpr qv::CatalogueCommand kChecksum{6032, kReply};        // name, id; checksum, number
constexpr qv::CatalogueCommand kSavePath{6033, kReply};        // name, id; path

// In UTF-16, because the compiler does not know the code page that the program runs in.
constexpr char16_t kCallFailed[] = u"调用函数失败";

// Sends the call and returns the server's answer. Calls `read_rest` to read the fields of a
// success.
template <class ReadRest>
int Run(CatalogueCall& call, CString& error_text, ReadRest read_rest) {
  const std::optional<std::int32_t> answer = call.Ask();
  if (!answer) {
    error_text = CString(std::string_view(qv::platform::NarrowFromWide(kCallFailed)));
    return 0;
  }
  if (*answer >= 1) {
    read_rest();
    return *answer;
  }
  call.Read(error_text);
  return qv::Refused(*answer);
}

int AskChecksum(CatalogueCall& call, CString& crc, int& value, CString& error_text) {
  crc.Empty();
  return Run(call, error_text, [&] {
    call.Read(crc);
    call.Read(value);
  });
}

}  // namespace

int CRvoIdFileEx::GetIDFileCRC(CString file_name, int file_id, CString& crc, int& value,
                               CString& error_text) {
  if (qv::NetworkIsHeldForBad()) return 0;
  CatalogueCall call(kChecksum, file_name, file_id);
  return AskChecksum(call, crc, value, error_text);
}

int CRvoIdFileEx::GetPackFileCRC(CString pack_file, CString file_name, int file_id, CString& crc,
                                 int& value, CString& error_text) {
  if (qv::NetworkIsHeldForBad()) return 0;
  CatalogueCall call(kPackedChecksum, pack_file, file_name, file_id);
  return AskChecksum(call, crc, value, error_text);
}

int CRvoIdFileEx::GetIDFileSavePath(CString file_name, int file_id, CString& save_path,
                                    CString& error_text) {
  if (qv::NetworkIsHeldForBad()) return 0;
  CatalogueCall call(kSavePath, file_name, file_id);
  save_path.Empty();
  return Run(call, error_text, [&] { call.Read(save_path); });
}

int CRvoIdFileEx::CopyPackFileToIdFile(CString pack_file, CString packed_name, int source_id,
                                       CString target_name, int target_id, CString& error_text) {
  if (qv::NetworkIsHeldForBad()) return 0;
  CatalogueCall call(kCopyPacked, pack_file, packed_name, source_id, target_name, target_id);
  return Run(call, error_text, [] {});
}
