#include "OdbcSession.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <utility>

#include "OdbcDriver.h"
#include "base/odbc/Statement.h"
#include "base/text/Letters.h"

namespace qv::standin {

namespace {

// PostgreSQL serves a hundred connections unless its owner allows more.
constexpr int kMostKept = 32;
std::atomic<int> kept_sessions = 0;

bool TakePlace() {
  if (kept_sessions++ < kMostKept) return true;
  --kept_sessions;
  return false;
}

// Logins and rights that were taken back end with the connection.
constexpr std::chrono::minutes kLongestAge{1};

// What outlasts even a transaction that is rolled back.
constexpr const char* kForgetWhatLasts =
    "DEALLOCATE ALL; SELECT pg_catalog.pg_advisory_unlock_all()";
// Both together are DISCARD ALL, which would also forget what the driver has set.
constexpr const char* kForgetTheRest =
    "; SET SESSION AUTHORIZATION DEFAULT; RESET ALL; CLOSE ALL; UNLISTEN *;"
    " DISCARD SEQUENCES; DISCARD TEMP";

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

OdbcSession::~OdbcSession() {
  if (is_counted_) --kept_sessions;
}

bool OdbcSession::AskPostgres(std::chrono::milliseconds statement_limit, odbc::Diagnostics& said) {
  const std::string limit = std::to_string(statement_limit.count());
  if (limit != "0" && !Run(*connection_, "SET statement_timeout = " + limit, said)) return false;
  odbc::Statement statement(*connection_);
  std::string settings;
  const bool is_told = statement.Execute(kAsk, said) && statement.Next(said) == odbc::Step::kNext &&
                       statement.ReadInteger(0, backend_, said) == odbc::CellState::kValue &&
                       statement.ReadText(1, settings, said) == odbc::CellState::kValue;
  forget_all_ = std::string(kForgetWhatLasts) + kForgetTheRest + "; SELECT " + settings;
  return is_told;
}

bool OdbcSession::End(bool is_rolled_back) {
  to_forget_ = is_rolled_back ? kForgetWhatLasts : forget_all_.c_str();
  if (!is_counted_) is_counted_ = TakePlace();
  return is_postgres_ && is_counted_;
}

bool OdbcSession::Refresh() {
  if (std::chrono::steady_clock::now() - opened_ > kLongestAge) return false;
  odbc::Diagnostics ignored;
  const char* const sql = std::exchange(to_forget_, nullptr);
  return sql == nullptr || Run(*connection_, sql, ignored);
}

bool MayBeKept(const text::ConnectionText& text) {
  return HasPostgresDriver(text) && text.ValueOf("dsn") == nullptr &&
         text.ValueOf("filedsn") == nullptr && text.ValueOf("connsettings") == nullptr &&
         text.ValueOf("a6") == nullptr;
}

bool MarksItsSession(std::string_view sql) {
  constexpr std::array<std::string_view, 3> kMarks{"set_config", "setseed", "dblink"};
  return std::ranges::any_of(kMarks, [sql](std::string_view mark) {
    return text::FindIgnoringCase(sql, mark) != std::string_view::npos;
  });
}

}  // namespace qv::standin
