// The calls of CRvoServer that query the server about itself and about the client program, and that
// write to its log.
#include <cstdint>
#include <string>
#include <string_view>

#include "CatalogueCall.h"
#include "ModuleState.h"
#include "ServerType.h"
#include "base/call/LastError.h"
#include "base/text/Numbers.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/RvoServer.h"

using qv::CatalogueCall;
using qv::CatalogueCommand;

namespace {

// Commands; request fields; reply fields after the number.
constexpr CatalogueCommand kExeInfo{6008};        // none; texts 1, 2, 3, 6, 7, 8, 9 of the record
constexpr CatalogueCommand kSubStores{6009};      // text name; the records
constexpr CatalogueCommand kConnectionText{710};  // text database; text connection
// Kind, text; the reply starts with a status word instead of a number.
constexpr std::uint32_t kAppendLog = 4;

// The longest log text; longer ones are cut.
constexpr std::size_t kLongestLog = 10239;

bool IsLeadByte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x81 && byte <= 0xFE;
}

// Returns true if the last byte is the first half of a double-byte character. Only a scan from the
// start can tell, because the second half may be any byte from 0x40 on.
bool EndsInHalf(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) at += IsLeadByte(text[at]) ? 2 : 1;
  return at > text.size();
}

std::string_view CutLog(std::string_view text) {
  if (text.size() < kLongestLog) return text;
  text = text.substr(0, kLongestLog);
  if (EndsInHalf(text)) text.remove_suffix(1);
  return text;
}

int Number(const CString& text) { return qv::text::DecimalToInt32(text.View()); }

}  // namespace

int CRvoServer::GetQvNetExeInfo(CQvNetExeInfo* info) {
  CatalogueCall call(kExeInfo);
  const bool has_answer = call.AskFlag();
  const qv::ModuleState& state = qv::ModuleState::Get();
  info->m_server = CString(std::string_view(state.server_name));
  info->m_port = qv::text::SaturatedTo32Bits(state.server_port);
  if (!has_answer) return 0;
  info->m_text1 = call.Text();
  info->m_number2 = Number(call.Text());
  info->m_text3 = call.Text();
  info->m_number6 = Number(call.Text());
  info->m_number7 = Number(call.Text());
  info->m_text8 = call.Text();
  info->m_text9 = call.Text();
  return 1;
}

CZelkorSvrSubStoreInfo* CRvoServer::GetSubStoreInfo(int& count, CString name) {
  CatalogueCall call(kSubStores, name);
  return call.AskRecords<CZelkorSvrSubStoreInfo>(count);
}

int CRvoServer::SendSvrLogInfo(int kind, CString text) {
  qv::call::ClearError();
  if (qv::IsWebServer()) {
    // Unless the server could only not be reached by the probe.
    qv::call::SetErrorIfNone(qv::error::kLocal, "the log of a web server cannot be written to");
    return 0;
  }
  qv::Exchange exchange(kAppendLog, qv::kCatalogueRequest, qv::kCatalogueReply);
  exchange.AddNumber(kind);
  exchange.Request().AddString(std::string(CutLog(text.View())).c_str(), nullptr);
  if (exchange.Send() == qv::result::kNotDelivered) return 0;
  return exchange.ReadSuccess() ? 1 : qv::Refused(0);
}

CString CRvoServer::GetDBConnString(CString database) {
  CatalogueCall call(kConnectionText, database);
  return call.AskFlag() ? call.Text() : CString();
}
