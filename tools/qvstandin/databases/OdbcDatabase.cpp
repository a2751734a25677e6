#include "OdbcDatabase.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>

#include "PostgresSql.h"
#include "tools/qvstandin/sql/ClientSql.h"

namespace qv::standin {

namespace {

// Returns "(?, ?)" for two arguments.
std::string QuestionMarks(std::size_t count) {
  std::string marks = "(";
  for (std::size_t i = 0; i < count; ++i) marks += i == 0 ? "?" : ", ?";
  return marks + ")";
}

}  // namespace

OdbcDatabase::OdbcDatabase(const EngineAccess& access) : EngineRequest(access) {}

OdbcDatabase::~OdbcDatabase() {
  if (kept_ == nullptr || session_ == nullptr || !LeavesItsSessionClean()) return;
  if (MayBeKept(text_) && session_->End(is_rolled_back_)) kept_->odbc.Keep(std::move(session_));
}

Outcome OdbcDatabase::Query(const std::string& sql, RowSink& sink) {
  GuardedText query;
  if (Outcome guarded = GuardQuery(sql, query); !guarded.Ok()) return guarded;
  if (Outcome begun = Begin(Work::kQuery); !begun.Ok()) return begun;
  Delivery delivery{.sink = &sink};
  // If the transaction ends before the statement, no driver has to close a cursor.
  odbc::Statement statement(session_->Connected());
  Outcome outcome = RunIn(statement, query.statements.front(), {}, delivery);
  RollBack();
  if (!outcome.Ok() || delivery.is_done) return outcome;
  return {ErrorCode::kNotPermitted, "a query must only read"};
}

Outcome OdbcDatabase::Execute(std::span<const std::string_view> statements, std::int32_t& failed) {
  std::deque<GuardedText> texts;  // which do not move
  if (Outcome guarded = GuardBatch(statements, texts, failed); !guarded.Ok()) return guarded;
  if (Outcome begun = Begin(Work::kStatements); !begun.Ok()) return begun;
  for (const GuardedText& text : texts) {
    ++failed;
    for (const std::string_view statement : text.statements) {
      Delivery none;
      if (Outcome outcome = Run(statement, {}, none); !outcome.Ok()) return End(std::move(outcome));
    }
  }
  failed = 0;
  return End({});
}

Outcome OdbcDatabase::Call(const ProcedureCall& call, RowSink& sink) {
  if (Outcome begun = Begin(Work::kCall); !begun.Ok()) return begun;
  std::string sql;
  Outcome outcome = WriteCall(call, sql);
  Delivery delivery{.sink = &sink};
  if (outcome.Ok()) {
    std::vector<odbc::Argument> arguments;
    std::ranges::transform(call.arguments, std::back_inserter(arguments), AsText);
    outcome = Run(sql, arguments, delivery);
  }
  if (outcome.Ok() && !delivery.is_done && !sink.Begin({})) {
    outcome = {ErrorCode::kAnswerLost, "the answer could not be stored"};
  }
  return End(std::move(outcome));
}

// A kept connection may have ended meanwhile. Its transaction has not begun then, so a new one
// takes its place.
Outcome OdbcDatabase::Begin(Work work) {
  if (kept_ != nullptr) session_ = kept_->odbc.Take(KeyOf(work));
  if (session_ != nullptr) {
    Outcome begun = BeginTransaction(work);
    if (begun.Ok() || watch_->IsOver()) return begun;
    said_.clear();
  }
  if (Outcome connected = Connect(work); !connected.Ok()) return connected;
  is_clean_ = true;
  return BeginTransaction(work);
}

std::string OdbcDatabase::KeyOf(Work work) const {
  return fmt::format("{} {} {}", static_cast<int>(work), LongestStatement(), text_.Text());
}

Outcome OdbcDatabase::Connect(Work work) {
  if (watch_->IsOver()) return Failed();
  // PostgreSQL's driver would set its limit anew for each statement.
  const bool is_postgres = HasPostgresDriver(text_);
  const odbc::Limits limits{.login_seconds = LongestLogin(),
                            .query_seconds = is_postgres ? 0 : LongestStatement(),
                            .reads_only = work == Work::kQuery};
  // Statements rarely return rows, and the driver's cursor mode (UseDeclareFetch) rejects some of
  // them.
  const Fetching fetching = work == Work::kStatements ? Fetching::kAtOnce : Fetching::kInPieces;
  auto connection = odbc::Connection::Open(WithDriverSettings(text_, fetching), limits, said_);
  if (connection == nullptr) return CannotConnect(Failed());
  const std::chrono::seconds limit(is_postgres ? LongestStatement() : 0);
  session_ = OdbcSession::Begin(KeyOf(work), std::move(connection), limit, said_);
  return session_ != nullptr ? Outcome() : Failed();
}

Outcome OdbcDatabase::BeginTransaction(Work work) {
  if (!session_->Connected().Begin(said_)) return Failed();
  if (work != Work::kQuery) return Mark();
  return IsPostgres() ? RunTrusted("SET TRANSACTION READ ONLY") : Outcome();
}

// Engines without savepoints run without this check.
Outcome OdbcDatabase::Mark() {
  std::string marker = NewMarker();
  Outcome marked = RunTrusted("SAVEPOINT " + marker);
  if (marked.Ok()) {
    marker_ = std::move(marker);
  } else if (IsPostgres() || watch_->IsOver()) {
    return marked;
  }
  said_.clear();
  return {};
}

// PostgreSQL's driver cancels execution but not fetching. From the second attempt on, the server
// also asks the engine through another connection.
void OdbcDatabase::Cancel(odbc::Statement& statement, int before) const {
  statement.Cancel();
  if (before == 0 || session_->Backend() == 0) return;
  constexpr odbc::Limits kShort{.login_seconds = 2, .query_seconds = 2};
  odbc::Diagnostics ignored;
  const auto other =
      odbc::Connection::Open(WithDriverSettings(text_, Fetching::kAtOnce), kShort, ignored);
  if (other == nullptr) return;
  const std::string sql = "SELECT pg_cancel_backend(" + std::to_string(session_->Backend()) + ")";
  static_cast<void>(odbc::Statement(*other).Execute(sql, ignored));
}

Outcome OdbcDatabase::RunTrusted(std::string_view sql) {
  Delivery none;
  return Run(sql, {}, none);
}

Outcome OdbcDatabase::Run(std::string_view sql, std::span<const odbc::Argument> arguments,
                          Delivery& delivery) {
  odbc::Statement statement(session_->Connected());
  return RunIn(statement, sql, arguments, delivery);
}

Outcome OdbcDatabase::RunIn(odbc::Statement& statement, std::string_view sql,
                            std::span<const odbc::Argument> arguments, Delivery& delivery) {
  if (IsPostgres() && sql.find('\\') != std::string_view::npos) {
    if (Outcome set = RunTrusted(kPlainBackslashes); !set.Ok()) return set;
  }
  is_clean_ &= !MarksItsSession(sql);
  const StatementWatch::Over over(*watch_, [&](int before) { Cancel(statement, before); });
  // A statement that nobody waits for must not begin: its cancellation may have come already.
  if (watch_->IsOver()) return Failed();
  const bool runs =
      arguments.empty() ? statement.Execute(sql, said_) : statement.Execute(sql, arguments, said_);
  if (!runs) return Failed();
  odbc::Step step = odbc::Step::kNext;
  for (; step == odbc::Step::kNext; step = statement.NextResult(said_)) {
    const bool delivers =
        delivery.sink != nullptr && !delivery.is_done && !statement.Columns().empty();
    Outcome outcome = delivers ? Deliver(statement, *delivery.sink) : Drain(statement);
    if (!outcome.Ok()) return outcome;
    delivery.is_done |= delivers;
  }
  return step == odbc::Step::kEnd ? Outcome() : Failed();
}

Outcome OdbcDatabase::Deliver(odbc::Statement& statement, RowSink& sink) {
  const Outcome lost{ErrorCode::kAnswerLost, "the answer could not be stored"};
  const std::vector<Column> columns = ColumnsOf(statement);
  if (!sink.Begin(columns)) return lost;
  statement.LimitCells(cell_limit_);
  OdbcCells cells(columns);
  odbc::Step step = odbc::Step::kEnd;
  while ((step = statement.Next(said_)) == odbc::Step::kNext) {
    if (watch_->IsOver() || !cells.Read(statement, said_)) return Failed();
    if (!sink.Row(cells.Row())) return lost;
  }
  return step == odbc::Step::kEnd ? Outcome() : Failed();
}

// Unwanted rows are fetched as well, since computing them may write.
Outcome OdbcDatabase::Drain(odbc::Statement& statement) {
  if (statement.Columns().empty()) return {};
  odbc::Step step = odbc::Step::kNext;
  while (step == odbc::Step::kNext) {
    if (watch_->IsOver()) return Failed();
    step = statement.Next(said_);
  }
  return step == odbc::Step::kEnd ? Outcome() : Failed();
}

Outcome OdbcDatabase::WriteCall(const ProcedureCall& call, std::string& sql) {
  const std::string marks = QuestionMarks(call.arguments.size());
  if (!IsPostgres()) {
    sql = "{call " + call.name + (call.arguments.empty() ? "" : marks) + "}";
    return {};
  }
  odbc::Statement statement(session_->Connected());
  const StatementWatch::Over over(*watch_, [&](int before) { Cancel(statement, before); });
  const std::vector<odbc::Argument> names(kRoutineParameters, call.name);
  if (!statement.Execute(FindRoutineSql({"?", "?", "?", "?"}), names, said_)) return Failed();
  const odbc::Step step = statement.Next(said_);
  if (step == odbc::Step::kEnd) return {ErrorCode::kNoProcedure, "no procedure " + call.name};
  std::string name;
  std::string kind;
  if (step == odbc::Step::kFailed ||
      statement.ReadText(0, name, said_) != odbc::CellState::kValue ||
      statement.ReadText(1, kind, said_) != odbc::CellState::kValue) {
    return Failed();
  }
  // Safe to quote: ParseProcedureCall admits only letters, digits and "_" in names.
  sql = CallRoutineSql(kind, name, marks);
  return {};
}

Outcome OdbcDatabase::End(Outcome outcome) {
  if (outcome.Ok() && !marker_.empty()) {
    outcome = RunTrusted("RELEASE SAVEPOINT " + marker_);
    if (!outcome.Ok()) outcome.text = "the transaction was ended early: " + outcome.text;
  }
  if (outcome.Ok() && !session_->Connected().Commit(said_)) outcome = Failed();
  if (!outcome.Ok()) RollBack();
  return outcome;
}

void OdbcDatabase::RollBack() {
  is_rolled_back_ = session_->Connected().Rollback(said_);
  is_clean_ &= is_rolled_back_;
}

}  // namespace qv::standin
