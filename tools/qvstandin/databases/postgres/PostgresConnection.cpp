#include "PostgresConnection.h"

#include <fmt/format.h>
#include <poll.h>

#include <array>
#include <limits>
#include <utility>
#include <vector>

#include "base/text/Utf8.h"

namespace qv::standin {

namespace {

constexpr const char* kNoConnection = "08S01";
constexpr const char* kCannotConnect = "08001";

// Notices would be printed.
void Ignore(void*, const PGresult*) {}

std::string FieldOf(const PGresult* result, int field) {
  const char* const text = PQresultErrorField(result, field);
  return text != nullptr ? text : "";
}

// Returns whether the server can take a text, as the ODBC room decides it for drivers.
bool IsText(std::string_view text) {
  constexpr std::size_t kLongest = std::numeric_limits<std::int32_t>::max() / 8;
  return text.size() <= kLongest && text.find('\0') == std::string_view::npos && text::IsUtf8(text);
}

bool Succeeded(const PGresult* result) {
  const ExecStatusType status = PQresultStatus(result);
  return status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK;
}

}  // namespace

std::unique_ptr<PostgresConnection> PostgresConnection::Open(Parameters parameters,
                                                             std::uint32_t seconds,
                                                             odbc::Diagnostics& said) {
  parameters["client_encoding"] = "UTF8";
  parameters["connect_timeout"] = std::to_string(seconds);
  std::vector<const char*> names;
  std::vector<const char*> values;
  for (const auto& [name, value] : parameters) {
    names.push_back(name.c_str());
    values.push_back(value.c_str());
  }
  names.push_back(nullptr);
  values.push_back(nullptr);
  constexpr int kPlainDatabaseName = 0;
  std::unique_ptr<PostgresConnection> connection(
      new PostgresConnection(PQconnectdbParams(names.data(), values.data(), kPlainDatabaseName)));
  PGconn* const made = connection->connection_.get();
  if (PQstatus(made) != CONNECTION_OK) {
    said.push_back({kCannotConnect, 0, PQerrorMessage(made)});
    return nullptr;
  }
  PQsetNoticeReceiver(made, Ignore, nullptr);
  connection->cancel_.reset(PQgetCancel(made));
  return connection;
}

bool PostgresConnection::Add(std::string_view sql, std::span<const Argument> arguments,
                             odbc::Diagnostics& said) {
  bool is_text = IsText(sql);
  std::vector<const char*> values;
  for (const Argument& argument : arguments) {
    is_text &= !argument || IsText(*argument);
    values.push_back(argument ? argument->c_str() : nullptr);
  }
  if (!is_text) {
    said.push_back({odbc::kNotText, 0,
                    "the text is not valid in the code page, contains a NUL, or is too long"});
    return false;
  }
  PGconn* const connection = connection_.get();
  const bool is_added =
      PQenterPipelineMode(connection) == 1 &&
      PQsendQueryParams(connection, std::string(sql).c_str(), static_cast<int>(values.size()),
                        nullptr, values.data(), nullptr, nullptr, 0) == 1;
  return is_added || Failed(said);
}

bool PostgresConnection::AskForAnswers(odbc::Diagnostics& said) {
  return PQsendFlushRequest(connection_.get()) == 1 || Failed(said);
}

bool PostgresConnection::Send(odbc::Diagnostics& said) {
  is_first_ = true;
  return PQpipelineSync(connection_.get()) == 1 || Failed(said);
}

PostgresConnection::Reply PostgresConnection::Read(odbc::Diagnostics& said) {
  // Row by row, so that no answer is in memory as a whole. libpq wants to hear so for each
  // statement, before its first row.
  if (std::exchange(is_first_, false)) PQsetSingleRowMode(connection_.get());
  while (true) {
    result_.reset(PQgetResult(connection_.get()));
    if (result_ == nullptr) {
      if (PQstatus(connection_.get()) != CONNECTION_OK) return Reply::kGroupEnd;
      PQsetSingleRowMode(connection_.get());
      continue;
    }
    switch (PQresultStatus(result_.get())) {
      case PGRES_SINGLE_TUPLE:
        return Reply::kRow;
      case PGRES_COMMAND_OK:
      case PGRES_TUPLES_OK:
        return Reply::kEnd;
      case PGRES_PIPELINE_ABORTED:
        return Reply::kSkipped;
      case PGRES_PIPELINE_SYNC:
        is_first_ = true;
        return Reply::kGroupEnd;
      default:
        Failed(result_.get(), said);
        return Reply::kFailed;
    }
  }
}

bool PostgresConnection::ReadGroup(odbc::Diagnostics& said) {
  bool has_failed = false;
  Reply reply = Reply::kEnd;
  while ((reply = Read(said)) != Reply::kGroupEnd) has_failed |= reply == Reply::kFailed;
  return !has_failed && PQstatus(connection_.get()) == CONNECTION_OK;
}

bool PostgresConnection::SendText(const std::string& sql, odbc::Diagnostics& said) {
  PGconn* const connection = connection_.get();
  const bool is_sent =
      PQexitPipelineMode(connection) == 1 && PQsendQuery(connection, sql.c_str()) == 1;
  return is_sent || Failed(said);
}

bool PostgresConnection::ReadText(odbc::Diagnostics& said) {
  bool is_done = true;
  while (true) {
    result_.reset(PQgetResult(connection_.get()));
    if (result_ == nullptr) break;
    if (!Succeeded(result_.get())) is_done = Failed(result_.get(), said);
  }
  return is_done && PQstatus(connection_.get()) == CONNECTION_OK;
}

bool PostgresConnection::IsQuiet() const {
  pollfd socket{.fd = PQsocket(connection_.get()), .events = POLLIN, .revents = 0};
  return PQstatus(connection_.get()) == CONNECTION_OK && poll(&socket, 1, 0) == 0;
}

// The server converts nothing for a database without an encoding.
bool PostgresConnection::ConvertsText() const {
  const char* const encoding = PQparameterStatus(connection_.get(), "server_encoding");
  return encoding != nullptr && std::string_view(encoding) != "SQL_ASCII";
}

void PostgresConnection::Cancel() const {
  std::array<char, 256> ignored;
  if (cancel_ != nullptr) {
    PQcancel(cancel_.get(), ignored.data(), static_cast<int>(ignored.size()));
  }
}

bool PostgresConnection::Failed(odbc::Diagnostics& said) const {
  said.push_back({kNoConnection, 0, PQerrorMessage(connection_.get())});
  return false;
}

// In the words of PostgreSQL's ODBC driver, but without details, which hold rows of a table.
bool PostgresConnection::Failed(const PGresult* result, odbc::Diagnostics& said) const {
  const std::string state = FieldOf(result, PG_DIAG_SQLSTATE);
  if (state.empty()) return Failed(said);
  said.push_back({state, 0,
                  fmt::format("{}: {}", FieldOf(result, PG_DIAG_SEVERITY),
                              FieldOf(result, PG_DIAG_MESSAGE_PRIMARY))});
  return false;
}

}  // namespace qv::standin
