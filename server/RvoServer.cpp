#include "qvnetcall/RvoServer.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "Exchange.h"
#include "ModuleState.h"
#include "ServerType.h"
#include "base/call/LastError.h"
#include "base/platform/Platform.h"
#include "base/text/Numbers.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/transport/QvHttpClient.h"
#include "qvnetcall/transport/QvNetClient4.h"
#include "resultset/Reading.h"
#include "resultset/readers/ReaderThreads.h"

using qv::Exchange;
using qv::ModuleState;
using qv::cache_state::kNetworkBad;
using qv::cache_state::kOfflineByChoice;
using qv::cache_state::kOnline;

namespace {

// Command codes with their fields.
constexpr std::uint32_t kCheckLink = 3;  // no fields; reply: status

constexpr std::uint32_t kLinkBlock = 1024;

// Whether the transport shows messages to the user; switched off while a server is probed.
constexpr const char kShowMessages[] = "dispmsg";

constexpr std::size_t kMaxModulePath = 254;
constexpr std::size_t kMaxServerType = 99;

// Takes 64 bits, because a long may be no wider than the port.
std::uint32_t ToPort(std::uint64_t port) {
  constexpr std::uint64_t kMax = std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(std::min(port, kMax));
}

// Reads the flag at the start of a reply.
bool FlagIsSet(CMsgContent& reply) {
  return qv::text::DecimalToInt32(reply.GetString(nullptr).View()) == 1;
}

std::string ConfiguredServerType() {
  const std::string file = qv::ModuleFolder(kMaxModulePath) + "QvNetClient.ini";
  const std::optional<std::string> type = qv::platform::ReadIniValue(file, "Basic", "ServerType");
  return type.value_or("").substr(0, kMaxServerType);
}

}  // namespace

void CRvoServer::InitNet() {
  HttpworkTransInit();
  NetworkTransInit();
}

void CRvoServer::FinitNet() {
  ModuleState::Get().direct_access.CloseAll();
  HttpworkTransFini();
  NetworkTransFini();
  qv::EndReaderThreads();
}

int CRvoServer::SetConinfo(const char* server, long port) {
  ModuleState& state = ModuleState::Get();
  state.server_name = server != nullptr ? server : "";
  state.server_port = ToPort(static_cast<std::uint64_t>(std::max(port, 0L)));
  return 1;
}

int CRvoServer::GetServerType(CString& type, CString server, unsigned long port) {
  qv::ServerTypeMemo& memo = ModuleState::Get().server_type;
  if (const auto known = memo.Find(server.View(), port); known && !known->empty()) {
    type = CString(std::string_view(*known));
    return 1;
  }
  std::string found = ConfiguredServerType();
  // A question that was cancelled, or that a full server refused, says nothing about its type.
  bool is_known = true;
  if (found.empty()) {
    const bool answers = CheckServerLink(server, port) == 1;
    const qv::error::Class failure = qv::call::LastError().error_class;
    // Only a frame says so, hence a server for the socket transport: the call that follows must go
    // there too, to be refused in the same way.
    const bool refuses = failure == qv::error::kBusy || failure == qv::error::kBadToken;
    found = answers || refuses ? qv::server_type::kSocket : qv::server_type::kWeb;
    is_known = failure != qv::error::kCancelled && failure != qv::error::kBusy;
  }
  if (is_known) memo.Remember(server.View(), port, found);
  type = CString(std::string_view(found));
  return 1;
}

int CRvoServer::SetServerType(CString type, CString server, unsigned long port) {
  ModuleState::Get().server_type.Remember(server.View(), port, type.View());
  return 1;
}

int CRvoServer::CheckServerLink(CString server, unsigned long port) {
  Exchange exchange(kCheckLink, kLinkBlock, kLinkBlock);
  CString show_messages;
  GetNetClientPara(kShowMessages, show_messages);
  SetNetClientPara(kShowMessages, "0");
  const int result = exchange.SendTo(server, ToPort(port));
  SetNetClientPara(kShowMessages, show_messages);
  if (result == qv::result::kNotDelivered) return 0;
  return exchange.ReadSuccess() ? 1 : qv::Refused(0);
}

// The two calls for parameters accept only 0 as delivered, while other calls accept everything but
// "not delivered".
int CRvoServer::SetNetClientPara(CString name, CString value) {
  Exchange exchange(qv::kSetTransportParameter, kLinkBlock, kLinkBlock);
  exchange.Request().AddString(name, nullptr);
  exchange.Request().AddString(value, nullptr);
  return exchange.Send() == 0 && FlagIsSet(exchange.Reply()) ? 1 : 0;
}

int CRvoServer::GetNetClientPara(CString name, CString& value) {
  Exchange exchange(qv::kGetTransportParameter, kLinkBlock, kLinkBlock);
  exchange.Request().AddString(name, nullptr);
  if (exchange.Send() != 0 || !FlagIsSet(exchange.Reply())) return 0;
  // An empty text is never sent as a field, so a missing field is an empty value.
  value = exchange.Reply().GetString(nullptr);
  return 1;
}

int CRvoServer::GetIsNetworkBad(int n) { return NetworkIsBadState(n); }

int CRvoServer::GetWebLoginToken(char* token) { return HttpworkLoginToken(token); }

CString CRvoServer::QvURL(CString a, int n, CString b) {
  CString url;
  url.Format("%s_%d:%s", a, n, b);
  return url;
}

int CRvoServer::OpenLocalDB(CString database, CString connection) {
  qv::LocalDatabase& local = *ModuleState::Get().local_database;
  const int is_open = local.Open(database, connection);
  qv::call::ClearError();
  if (is_open == 0) qv::call::SetError(qv::error::kLocal, local.LastError());
  return is_open;
}

int CRvoServer::CloseLocalDB(CString database) {
  qv::call::ClearError();
  qv::LocalDatabase& local = *ModuleState::Get().local_database;
  const int is_closed = local.Close(database);
  qv::NoteLocalFailure(database, is_closed != 0 ? "" : "no connection is open");
  if (is_closed == 0) qv::call::SetError(qv::error::kLocal, local.LastError());
  return is_closed;
}

int CRvoServer::GetLastErrorClass() { return qv::call::LastError().error_class; }

CString CRvoServer::GetLastErrorText() {
  return CString(std::string_view(qv::call::LastError().text));
}

int CRvoServer::GetLocalDBError(CString& text) {
  text = CString(std::string_view(ModuleState::Get().local_database->LastError()));
  return text.IsEmpty() ? 0 : 1;
}

int CRvoServer::UseLocalDB(int on) {
  ModuleState::Get().use_local_database = on;
  return 1;
}

int CRvoServer::CareOpenDBConn(int on) {
  ModuleState::Get().care_open_connection = on;
  return 1;
}

int CRvoServer::SetCacheState(int state) {
  const qv::call::KeptError kept;
  if (qv::IsWebServer()) return 0;
  if (state < kOnline || state > kNetworkBad) return 0;
  ModuleState::Get().cache.SetState(state);
  if (state == kNetworkBad) NetworkBadState(1);
  if (state == kOnline) NetworkBadState(0);
  return 1;
}

int CRvoServer::GetCacheState(int n) {
  const qv::call::KeptError kept;
  if (qv::IsWebServer()) return 0;
  qv::QueryCache& cache = ModuleState::Get().cache;
  if (cache.State() == kOfflineByChoice) return kOfflineByChoice;
  if (GetIsNetworkBad(n) == 0 && cache.State() == kNetworkBad) cache.SetState(kOnline);
  if (GetIsNetworkBad(n) == 1 && cache.State() == kOnline) cache.SetState(kNetworkBad);
  return cache.State();
}

int CRvoServer::SetCachePath(const char* path) {
  return ModuleState::Get().cache.SetPath(path != nullptr ? path : "") ? 1 : 0;
}

int CRvoServer::ClearCurCache() { return ModuleState::Get().cache.Clear() ? 1 : 0; }

int CRvoServer::SetResultLimit(long long bytes) {
  if (bytes < 0) return 0;
  qv::SetResultLimit(static_cast<std::uint64_t>(bytes));
  return 1;
}

int CRvoServer::SetReaderThreads(int threads) {
  if (threads < 0) return 0;
  qv::SetReaderThreads(threads);
  return 1;
}
