#include "Session.h"

#include <fmt/ostream.h>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text/ConnectionText.h"
#include "base/text/HostName.h"
#include "base/text/Letters.h"
#include "base/text/Percent.h"
#include "qvnetcall/QvNetCall4.h"
#include "qvnetcall/transport/HttpParameters.h"
#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/system/LocalFiles.h"
#include "tools/qvcall/system/SystemPlaces.h"

namespace qv::tool {
namespace {

constexpr std::string_view kPlainScheme = "http://";

bool HasScheme(std::string_view server) { return server.find("://") != std::string_view::npos; }

using Parameters = std::vector<std::pair<const char*, std::string>>;

Parameters Wanted(const ConnectionOptions& connection, Route route) {
  Parameters parameters;
  if (!connection.token.empty()) parameters.emplace_back("token", connection.token);
  if (connection.timeout_ms) {
    const std::string timeout = std::to_string(*connection.timeout_ms);
    parameters.emplace_back("connect_timeout_ms", timeout);
    parameters.emplace_back("io_timeout_ms", timeout);
  }
  if (route == Route::kWeb && !connection.ca_file.empty()) {
    parameters.emplace_back("ca_file", connection.ca_file);
  }
  return parameters;
}

// Sets a parameter of that route's transport. Returns false if it rejects the parameter; a
// transport from another vendor may not have any.
bool Take(Route route, const char* name, const std::string& value) {
  if (route == Route::kSocket) return CRvoServer::SetNetClientPara(name, value.c_str()) == 1;
  const auto set = LoadedFunction<decltype(HttpworkSetParameter)>("HttpworkSetParameter");
  return set != nullptr && set(name, value.c_str()) == 1;
}

// Sets all parameters. Returns the name of the first that was rejected, or null.
const char* FirstRefused(const ConnectionOptions& connection, Route route) {
  for (const auto& [name, value] : Wanted(connection, route)) {
    if (!Take(route, name, value)) return name;
  }
  return nullptr;
}

// Returns the path that the name of an embedded database means, or an empty text if the database is
// in memory.
std::string PathOf(std::string_view name) {
  constexpr std::string_view kAddress = "file:";
  if (name.front() == ':') return {};
  if (!name.starts_with(kAddress)) return std::string(name);
  name.remove_prefix(kAddress.size());
  const std::size_t end = std::min(name.find_first_of("?#"), name.size());
  const bool is_in_memory =
      name.starts_with(':') || name.substr(end).find("mode=memory") != std::string_view::npos;
  name = name.substr(0, end);
  // After an empty name of a host, or that of this one.
  if (name.starts_with("//")) name.remove_prefix(std::min(name.find('/', 2), name.size()));
  std::string path;
  for (const char ch : name) path += ch == '+' ? "%2B" : std::string(1, ch);  // not a blank here
  return is_in_memory ? std::string() : text::PercentDecoded(path);
}

// Returns the file of an embedded database if it does not exist, else an empty text. The driver of
// such databases would create an empty one, in which nothing is found.
std::string MissingFile(const text::ConnectionText& connection) {
  const std::string* const driver = connection.ValueOf("driver");
  const std::string* const file = connection.ValueOf("database");
  if (driver == nullptr || file == nullptr || file->empty()) return {};
  const bool is_embedded = text::ToLower(*driver).find("sqlite") != std::string::npos;
  const std::string path = is_embedded ? PathOf(*file) : std::string();
  return !path.empty() && KindOf(path) == LocalKind::kNone ? path : std::string();
}

}  // namespace

Session::Session(const ConnectionOptions& connection, std::string database, Calls calls)
    : connection_(connection),
      calls_(calls),
      database_(std::move(database)),
      server_(connection.server),
      port_(connection.Port()) {
  if (database_.empty()) database_ = "direct";
  if (calls == Calls::kOverSocket) {
    if (connection.port != 0) port_ = connection.port;
    std::string_view name = server_;
    if (text::TakeScheme(name, kPlainScheme)) server_ = std::string(name);
  }
  CRvoServer::InitNet();
}

Session::~Session() {
  if (route_ == Route::kDirect) {
    CRvoServer::CloseLocalDB(database_.c_str());
    CRvoServer::UseLocalDB(0);
  }
  CRvoServer::FinitNet();
}

bool Session::Start(std::ostream& err) {
  if (!connection_.direct.empty()) return OpenDirect(err);
  if (port_ == 0) {
    // With a kind set, the library does not probe for one.
    CRvoServer::SetServerType(server_type::kSocket, "", 0);
    return true;
  }
  CRvoServer::SetConinfo(server_.c_str(), port_);
  const bool surely_web = connection_.web && calls_ == Calls::kByServerType;
  // Set before FindRoute(), which may probe the server and need the token for it.
  const char* refused = surely_web ? nullptr : FirstRefused(connection_, Route::kSocket);
  if (!FindRoute(err)) return false;
  if (route_ == Route::kWeb) refused = FirstRefused(connection_, Route::kWeb);
  if (refused == nullptr) return true;
  fmt::print(err, "qvcall: the {} transport does not accept this value of its parameter {}\n",
             route_ == Route::kWeb ? "HTTP" : "socket", refused);
  return false;
}

Reason Session::LastReason() const {
  Reason reason{CRvoServer::GetLastErrorClass(), CRvoServer::GetLastErrorText().GetString()};
  if (route_ == Route::kDirect) {
    const text::ConnectionText secrets(connection_.direct);
    reason.text = secrets.WithoutSecrets(reason.text, text::ConnectionText::Hide::kSecrets);
    // The name of the database is already known.
    if (const std::string prefix = database_ + ": "; reason.text.rfind(prefix, 0) == 0) {
      reason.text.erase(0, prefix.size());
    }
  }
  return reason;
}

void Session::PrintFailure(Call call, int code, std::ostream& err, std::string_view subject) const {
  const Failure failure = DescribeFailure(call, route_, code, LastReason());
  fmt::print(err, "qvcall: {}{}{}\n", Visible(subject), subject.empty() ? "" : ": ", failure.what);
  if (!failure.hint.empty()) fmt::print(err, "  {}\n", failure.hint);
}

void Session::PrintRefusal(Call call, std::string_view subject, std::ostream& err) const {
  PrintFailure(call, IsUnreachable() ? result::kNotDelivered : 0, err, subject);
}

bool Session::IsUnreachable() const { return CRvoServer::GetIsNetworkBad(1) == 1; }

std::string Session::Address() const {
  const bool web = route_ == Route::kWeb && !HasScheme(server_);
  return fmt::format("{}{}:{}", web ? kPlainScheme : "", server_, port_);
}

bool Session::Probe() const {
  return CRvoServer::CheckServerLink(server_.c_str(), static_cast<unsigned long>(port_)) == 1;
}

bool Session::FindRoute(std::ostream& err) {
  const auto port = static_cast<unsigned long>(port_);
  if (calls_ == Calls::kOverSocket) {
    // Some calls do nothing if the server is of the other kind.
    CRvoServer::SetServerType(server_type::kSocket, server_.c_str(), port);
  } else {
    if (connection_.web) CRvoServer::SetServerType(server_type::kWeb, server_.c_str(), port);
    CString type;
    CRvoServer::GetServerType(type, server_.c_str(), port);
    if (type.CompareNoCase(server_type::kWeb) == 0) route_ = Route::kWeb;
  }
  if (route_ == Route::kWeb || !HasScheme(server_)) return true;
  fmt::print(err, "qvcall: {} is not the name of a server; a scheme is allowed only with --web\n",
             server_);
  return false;
}

bool Session::OpenDirect(std::ostream& err) {
  route_ = Route::kDirect;
  const std::string missing = MissingFile(text::ConnectionText(connection_.direct));
  if (!missing.empty()) {
    fmt::print(err, "qvcall: {}: there is no such file; check the connection text (--direct)\n",
               Visible(missing));
    return false;
  }
  // Otherwise a procedure call would probe for the kind of a server that does not exist.
  CRvoServer::SetServerType(server_type::kSocket, "", 0);
  CRvoServer::UseLocalDB(1);
  // There is no server whose settings could be loaded.
  CRvoDatabase::m_NeedUpdateCompressState = 0;
  if (CRvoServer::OpenLocalDB(database_.c_str(), connection_.direct.c_str()) == 1) return true;
  const Reason reason = LastReason();
  fmt::print(err,
             "qvcall: the database cannot be opened{}{}\n  check the connection text (--direct)\n",
             reason.text.empty() ? "" : ": ", Visible(reason.text));
  return false;
}

}  // namespace qv::tool
