#include "Connection.h"

#include <algorithm>
#include <limits>

#include "DriverCalls.h"
#include "base/text/ConnectionText.h"
#include "base/text/Letters.h"

namespace qv::odbc {

namespace {

SQLPOINTER AsValue(std::uintptr_t value) { return reinterpret_cast<SQLPOINTER>(value); }

// Driver managers copy the driver's name into a fixed buffer (1001 bytes in unixODBC) without
// checking its length, and some connection texts come from servers.
bool HasLongDriver(std::string_view text) {
  constexpr std::string_view kKeyword = "driver";
  constexpr std::size_t kLongest = 512;
  for (std::size_t at = 0; (at = text::FindIgnoringCase(text, kKeyword, at)) != text.npos;) {
    at += kKeyword.size();
    const std::size_t value = std::min(text.find_first_not_of(" \t=", at), text.size());
    if (text::ConnectionValueLength(text.substr(value)) > kLongest) return true;
  }
  return false;
}

bool IsTooLong(std::string_view text) {
  constexpr std::size_t kLongest = std::numeric_limits<SQLSMALLINT>::max();
  return text.size() > kLongest || HasLongDriver(text);
}

}  // namespace

std::unique_ptr<Connection> Connection::Open(std::string_view text, const Limits& limits,
                                             Diagnostics& diagnostics) {
  std::unique_ptr<Connection> connection(new Connection(limits));  // its constructor is private
  if (!connection->Prepare(diagnostics) || !connection->Connect(text, diagnostics)) return nullptr;
  return connection;
}

Connection::~Connection() {
  Disconnect();
  if (connection_ != nullptr) SQLFreeHandle(SQL_HANDLE_DBC, connection_);
  if (environment_ != nullptr) SQLFreeHandle(SQL_HANDLE_ENV, environment_);
}

bool Connection::Prepare(Diagnostics& diagnostics) {
  const bool done =
      SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_)) &&
      SQL_SUCCEEDED(SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, AsValue(SQL_OV_ODBC3), 0)) &&
      SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_));
  if (!done) {
    diagnostics.push_back({kNoReason, 0, "the driver manager cannot be used"});
    return false;
  }
  // Drivers that cannot limit the time report that and connect all the same.
  SQLSetConnectAttr(connection_, SQL_ATTR_LOGIN_TIMEOUT, AsValue(limits_.login_seconds), 0);
  if (limits_.reads_only) {
    SQLSetConnectAttr(connection_, SQL_ATTR_ACCESS_MODE, AsValue(SQL_MODE_READ_ONLY), 0);
  }
  return true;
}

bool Connection::Connect(std::string_view text, Diagnostics& diagnostics) {
  if (IsTooLong(text)) {
    diagnostics.push_back(
        {kTextTooLong, 0, "the connection text or its driver's name is too long"});
    return false;
  }
  // The kind of driver is known only once it is connected. Plain ASCII reaches both kinds unharmed;
  // any other text reaches a narrow driver only by the narrow call, and a wide one only by the wide
  // call.
  Diagnostics narrow;
  if (!text::IsAscii(text)) {
    const bool connected = ConnectAs(false, text, narrow);
    if (connected && EncodingOf(connection_) == Encoding::kNarrow) return true;
    Disconnect();
  }
  if (ConnectAs(true, text, diagnostics)) {
    is_wide_ = EncodingOf(connection_) == Encoding::kWide;
    if (is_wide_ || text::IsAscii(text)) return true;
    Disconnect();
  }
  // After two attempts it is unknown which one the driver understood.
  diagnostics.insert(diagnostics.end(), narrow.begin(), narrow.end());
  return false;
}

bool Connection::ConnectAs(bool wide, std::string_view text, Diagnostics& diagnostics) {
  is_wide_ = wide;
  auto given = DriverText::From(text, wide ? Encoding::kWide : Encoding::kNarrow, diagnostics);
  if (!given) return false;
  is_connected_ = SQL_SUCCEEDED(given->Connect(connection_));
  return is_connected_ || Failed(diagnostics);
}

bool Connection::Begin(Diagnostics& diagnostics) {
  if (!SetAutocommit(false, diagnostics)) return false;
  in_transaction_ = true;
  return true;
}

bool Connection::Commit(Diagnostics& diagnostics) { return End(SQL_COMMIT, diagnostics); }

bool Connection::Rollback(Diagnostics& diagnostics) { return End(SQL_ROLLBACK, diagnostics); }

bool Connection::End(std::int16_t how, Diagnostics& diagnostics) {
  if (!SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, connection_, how))) return Failed(diagnostics);
  in_transaction_ = false;
  // The work is done. If this fails, the next statement fails too.
  Diagnostics ignored;
  static_cast<void>(SetAutocommit(true, ignored));
  return true;
}

std::string Connection::Product() const {
  std::string name(128, '\0');
  SQLSMALLINT length = 0;
  const SQLRETURN result = SQLGetInfo(connection_, SQL_DBMS_NAME, name.data(),
                                      static_cast<SQLSMALLINT>(name.size()), &length);
  if (!SQL_SUCCEEDED(result)) return {};
  return name.substr(0, name.find('\0'));
}

bool Connection::IsLost() const {
  SQLUINTEGER dead = SQL_CD_FALSE;
  const SQLRETURN result =
      SQLGetConnectAttr(connection_, SQL_ATTR_CONNECTION_DEAD, &dead, 0, nullptr);
  return SQL_SUCCEEDED(result) && dead == SQL_CD_TRUE;
}

bool Connection::SetAutocommit(bool on, Diagnostics& diagnostics) {
  const SQLPOINTER value = AsValue(on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF);
  const SQLRETURN result = SQLSetConnectAttr(connection_, SQL_ATTR_AUTOCOMMIT, value, 0);
  return SQL_SUCCEEDED(result) || Failed(diagnostics);
}

bool Connection::Failed(Diagnostics& diagnostics) const {
  Collect(SQL_HANDLE_DBC, connection_, is_wide_ ? Encoding::kWide : Encoding::kNarrow, diagnostics);
  return false;
}

void Connection::Disconnect() {
  if (!is_connected_) return;
  // No driver disconnects in the middle of a transaction.
  if (in_transaction_) SQLEndTran(SQL_HANDLE_DBC, connection_, SQL_ROLLBACK);
  SQLDisconnect(connection_);
  is_connected_ = false;
}

}  // namespace qv::odbc
