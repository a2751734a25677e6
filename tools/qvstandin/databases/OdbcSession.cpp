#include "OdbcSession.h"

#include <fmt/format.h>

#include <utility>

#include "OdbcDriver.h"
#include "base/odbc/Statement.h"

namespace qv::standin {

namespace {

constexpr const char* kAsk =
    "SELECT pg_catalog.pg_backend_pid(), (SELECT pg_catalog.string_agg(pg_catalog.format("
    "'pg_catalog.set_config(%L, %L, false)', name, setting), ', ')"
    " FROM pg_catalog.pg_settings WHERE source = 'session')";

bool Run(odbc::Connection& connection, const std::string& sql, odbc::Diagnostics& said) {
  odbc::Statement statement(connection);
  if (!statement.Execute(sql, said)) return false;
  odbc::Step step = odbc::Step::kNext;
  while (step == odbc::Step::kNext) step = statement.NextResult(said);
  return step == odbc::Step::kEnd;
}

}  // namespace

std::unique_ptr<OdbcSession> OdbcSession::Begin(std::string key, Connection connection,
                                                std::chrono::milliseconds statement_limit,
                                                odbc::Diagnostics& said) {
  std::unique_ptr<OdbcSession> session(new OdbcSession(std::move(key), std::move(connection)));
  const bool is_known = !session->is_postgres_ || session->AskPostgres(statement_limit, said);
  return is_known ? std::move(session) : nullptr;
}

OdbcSession::OdbcSession(std::string key, Connection connection)
    : key_(std::move(key)),
      connection_(std::move(connection)),
      is_postgres_(connection_->Product() == "PostgreSQL") {}

bool OdbcSession::AskPostgres(std::chrono::milliseconds statement_limit, odbc::Diagnostics& said) {
  const std::string limit = std::to_string(statement_limit.count());
  if (limit != "0" && !Run(*connection_, "SET statement_timeout = " + limit, said)) return false;
  odbc::Statement statement(*connection_);
  std::string settings;
  const bool is_told = statement.Execute(kAsk, said) && statement.Next(said) == odbc::Step::kNext &&
                       statement.ReadInteger(0, backend_, said) == odbc::CellState::kValue &&
                       statement.ReadText(1, settings, said) == odbc::CellState::kValue;
  forget_what_lasts_ = fmt::format("{}; {}", kForgetStatements, kForgetLocks);
  forget_all_ = fmt::format("{}; {}; SELECT {}", forget_what_lasts_, kForgetTheRest, settings);
  return is_told;
}

bool OdbcSession::End(bool is_rolled_back) {
  to_forget_ = is_rolled_back ? &forget_what_lasts_ : &forget_all_;
  return is_postgres_ && place_.Take();
}

bool OdbcSession::Refresh() {
  if (place_.IsTooOld()) return false;
  odbc::Diagnostics ignored;
  const std::string* const sql = std::exchange(to_forget_, nullptr);
  return sql == nullptr || Run(*connection_, *sql, ignored);
}

bool MayBeKept(const text::ConnectionText& text) {
  return HasPostgresDriver(text) && text.ValueOf("dsn") == nullptr &&
         text.ValueOf("filedsn") == nullptr && text.ValueOf("connsettings") == nullptr &&
         text.ValueOf("a6") == nullptr;
}

}  // namespace qv::standin
