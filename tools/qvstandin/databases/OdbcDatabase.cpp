#include "OdbcDatabase.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <optional>

#include "ClientSql.h"
#include "Sqlite.h"
#include "base/platform/Platform.h"
#include "base/text/Numbers.h"

namespace qv::standin {

namespace {

using std::chrono_literals::operator""s;
using std::chrono_literals::operator""h;

constexpr std::chrono::milliseconds kLongestLogin = 15s;
constexpr std::chrono::milliseconds kMostForDrivers = 24h;
constexpr std::size_t kLongestRemark = 200;

constexpr const char* kFindRoutine =
    "SELECT p.proname, p.prokind FROM pg_catalog.pg_proc p"
    " JOIN pg_catalog.pg_namespace n ON n.oid = p.pronamespace"
    " WHERE lower(p.proname) = lower(?) AND pg_catalog.pg_function_is_visible(p.oid)"
    " AND n.nspname NOT IN ('pg_catalog', 'information_schema')"
    " ORDER BY p.proname <> ? LIMIT 1";

constexpr const char* kPlainBackslashes = "SET LOCAL standard_conforming_strings = on";

// The code of a failure of this class.
ErrorCode CodeOf(error::Class error_class) {
  switch (error_class) {
    case error::kNotAllowed:
      return ErrorCode::kNotPermitted;
    case error::kBusy:
      return ErrorCode::kBusy;
    case error::kTimeLimit:
      return ErrorCode::kTimedOut;
    case error::kUnknownDatabase:
    case error::kCannotConnect:
      return ErrorCode::kNoDatabase;
    default:
      return ErrorCode::kSqlFailed;
  }
}

// Sets the code and the class of a failure by the first known state.
void Classify(const odbc::Diagnostics& said, Outcome& outcome) {
  for (const odbc::Diagnostic& record : said) {
    const std::optional<error::Class> known = odbc::ClassOfState(record.state);
    if (!known) continue;
    outcome.code = CodeOf(*known);
    // How the server reaches its engine is not the client's to know.
    outcome.error_class = *known == error::kCannotConnect ? error::kInternal : *known;
    return;
  }
}

// Returns whether the engine's text may be about its own files, hosts or users, not about the
// client's statement.
bool MayNameTheServer(const odbc::Diagnostics& said, const Outcome& outcome) {
  const auto lacks_resources = [](const odbc::Diagnostic& record) {
    return record.state.starts_with("53");
  };
  return outcome.code == ErrorCode::kNoDatabase || outcome.error_class == error::kInternal ||
         std::ranges::any_of(said, lacks_resources);
}

std::uint32_t Seconds(std::chrono::milliseconds time) {
  return static_cast<std::uint32_t>(std::chrono::ceil<std::chrono::seconds>(time).count());
}

// Returns "(?, ?)" for two arguments.
std::string QuestionMarks(std::size_t count) {
  std::string marks = "(";
  for (std::size_t i = 0; i < count; ++i) marks += i == 0 ? "?" : ", ?";
  return marks + ")";
}

odbc::Argument AsText(const ProcedureCall::Argument& argument) {
  if (const auto* whole = std::get_if<std::int64_t>(&argument)) return fmt::to_string(*whole);
  if (const auto* decimal = std::get_if<double>(&argument)) return fmt::to_string(*decimal);
  if (const auto* text = std::get_if<std::string>(&argument)) return *text;
  return std::nullopt;
}

std::string NewMarker() {
  std::string name = "qv_";
  for (const char ch : platform::NewGuid()) {
    if (text::HexDigitValue(ch) >= 0) name += ch;
  }
  return name;
}

// A client's SQL as it will run, and the statements in it.
struct GuardedText {
  std::string text;
  std::vector<std::string_view> statements;
};

Outcome Guarded(std::string_view sql, GuardedText& guarded) {
  guarded.text = WithPlainTableNames(sql, text::kPostgreSql);
  Outcome outcome = GuardStatements(guarded.text, guarded.statements);
  if (!outcome.Ok() || !guarded.statements.empty()) return outcome;
  return {ErrorCode::kSqlFailed, "there is no statement", error::kSyntax};
}

}  // namespace

OdbcDatabase::OdbcDatabase(const std::string& connection_text, WorkLimit& limit,
                           std::size_t cell_limit, KeptDatabases* kept)
    : text_(connection_text), time_(limit.TimeLeft()), cell_limit_(cell_limit), kept_(kept) {
  if (kept_ != nullptr) watch_ = std::move(kept_->watch);
  if (watch_ == nullptr) watch_ = std::make_unique<StatementWatch>();
  watch_->Begin(limit);
}

// A statement that was cancelled may have ended before, so that the next one would be cancelled.
OdbcDatabase::~OdbcDatabase() {
  is_clean_ &= watch_->Reason() == ErrorCode::kNone;
  watch_->End();
  if (kept_ == nullptr) return;
  kept_->watch = std::move(watch_);
  if (session_ != nullptr && is_clean_ && MayBeKept(text_) && session_->End(is_rolled_back_)) {
    kept_->odbc.Keep(std::move(session_));
  }
}

std::uint32_t OdbcDatabase::LongestLogin() const {
  return Seconds(
      std::clamp<std::chrono::milliseconds>(time_.value_or(kLongestLogin), 1s, kLongestLogin));
}

// The watch ends statements first; the driver's own limit is for drivers that cannot cancel.
std::uint32_t OdbcDatabase::LongestStatement() const {
  constexpr std::uint32_t kNoLimit = 0;
  return time_ && *time_ < kMostForDrivers ? Seconds(*time_) + 1 : kNoLimit;
}

Outcome OdbcDatabase::Query(const std::string& sql, RowSink& sink) {
  GuardedText query;
  if (Outcome guarded = Guarded(sql, query); !guarded.Ok()) return guarded;
  if (query.statements.size() > 1) {
    return {ErrorCode::kNotPermitted, "a query must be one statement"};
  }
  if (Outcome begun = Begin(Work::kQuery); !begun.Ok()) return begun;
  Delivery delivery{.sink = &sink};
  // If the transaction ends before the statement, no driver has to close a cursor.
  odbc::Statement statement(session_->Connected());
  Outcome outcome = RunIn(statement, query.statements.front(), {}, delivery);
  RollBack();
  if (!outcome.Ok() || delivery.is_done) return outcome;
  return {ErrorCode::kNotPermitted, "a query must only read"};
}

// All texts are checked before the first of them runs.
Outcome OdbcDatabase::Execute(std::span<const std::string_view> statements, std::int32_t& failed) {
  failed = 0;
  std::deque<GuardedText> texts;  // a deque, so that the texts do not move
  for (const std::string_view text : statements) {
    ++failed;
    if (Outcome guarded = Guarded(text, texts.emplace_back()); !guarded.Ok()) return guarded;
  }
  failed = 0;
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
  if (watch_->IsOver()) return Failure();
  // PostgreSQL's driver would set its limit anew for each statement.
  const bool is_postgres = HasPostgresDriver(text_);
  const odbc::Limits limits{.login_seconds = LongestLogin(),
                            .query_seconds = is_postgres ? 0 : LongestStatement(),
                            .reads_only = work == Work::kQuery,
                            .cell_bytes = cell_limit_};
  // Statements rarely return rows, and the driver's cursor mode (UseDeclareFetch) rejects some of
  // them.
  const Fetching fetching = work == Work::kStatements ? Fetching::kAtOnce : Fetching::kInPieces;
  auto connection = odbc::Connection::Open(WithDriverSettings(text_, fetching), limits, said_);
  if (connection == nullptr) return CannotConnect(Failure());
  const std::chrono::seconds limit(is_postgres ? LongestStatement() : 0);
  session_ = OdbcSession::Begin(KeyOf(work), std::move(connection), limit, said_);
  return session_ != nullptr ? Outcome() : Failure();
}

Outcome OdbcDatabase::BeginTransaction(Work work) {
  if (!session_->Connected().Begin(said_)) return Failure();
  if (work != Work::kQuery) return Mark();
  return IsPostgres() ? RunTrusted("SET TRANSACTION READ ONLY") : Outcome();
}

// Drivers give this failure few states. Their messages name hosts and users.
Outcome OdbcDatabase::CannotConnect(Outcome outcome) {
  if (outcome.code == ErrorCode::kStopped || outcome.code == ErrorCode::kTimedOut) return outcome;
  const auto says = [&outcome](std::string_view part) {
    return outcome.text.find(part) != std::string::npos;
  };
  if (outcome.code == ErrorCode::kSqlFailed) outcome.code = ErrorCode::kNoDatabase;
  if (outcome.code == ErrorCode::kNoDatabase) outcome.error_class = error::kInternal;
  if (says("too many")) outcome.error_class = error::kBusy;
  if (says("database ") && says("does not exist")) outcome.error_class = error::kUnknownDatabase;
  outcome.is_private = true;
  return outcome;
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
  // With standard_conforming_strings off, a backslash could end a literal where GuardStatements saw
  // no end.
  if (IsPostgres() && sql.find('\\') != std::string_view::npos) {
    if (Outcome set = RunTrusted(kPlainBackslashes); !set.Ok()) return set;
  }
  is_clean_ &= !MarksItsSession(sql);
  const StatementWatch::Over over(*watch_, [&](int before) { Cancel(statement, before); });
  // A statement that nobody waits for must not begin: its cancellation may have come already.
  if (watch_->IsOver()) return Failure();
  const bool runs =
      arguments.empty() ? statement.Execute(sql, said_) : statement.Execute(sql, arguments, said_);
  if (!runs) return Failure();
  odbc::Step step = odbc::Step::kNext;
  for (; step == odbc::Step::kNext; step = statement.NextResult(said_)) {
    const bool delivers =
        delivery.sink != nullptr && !delivery.is_done && !statement.Columns().empty();
    Outcome outcome = delivers ? Deliver(statement, *delivery.sink) : Drain(statement);
    if (!outcome.Ok()) return outcome;
    delivery.is_done |= delivers;
  }
  return step == odbc::Step::kEnd ? Outcome() : Failure();
}

Outcome OdbcDatabase::Deliver(odbc::Statement& statement, RowSink& sink) {
  const Outcome lost{ErrorCode::kAnswerLost, "the answer could not be stored"};
  const std::vector<Column> columns = ColumnsOf(statement);
  if (!sink.Begin(columns)) return lost;
  OdbcCells cells(columns);
  odbc::Step step = odbc::Step::kEnd;
  while ((step = statement.Next(said_)) == odbc::Step::kNext) {
    if (watch_->IsOver() || !cells.Read(statement, said_)) return Failure();
    if (!sink.Row(cells.Row())) return lost;
  }
  return step == odbc::Step::kEnd ? Outcome() : Failure();
}

// Unwanted rows are fetched as well, since computing them may write.
Outcome OdbcDatabase::Drain(odbc::Statement& statement) {
  if (statement.Columns().empty()) return {};
  odbc::Step step = odbc::Step::kNext;
  while (step == odbc::Step::kNext) {
    if (watch_->IsOver()) return Failure();
    step = statement.Next(said_);
  }
  return step == odbc::Step::kEnd ? Outcome() : Failure();
}

Outcome OdbcDatabase::WriteCall(const ProcedureCall& call, std::string& sql) {
  const std::string marks = QuestionMarks(call.arguments.size());
  if (!IsPostgres()) {
    sql = "{call " + call.name + (call.arguments.empty() ? "" : marks) + "}";
    return {};
  }
  odbc::Statement statement(session_->Connected());
  const StatementWatch::Over over(*watch_, [&](int before) { Cancel(statement, before); });
  const std::vector<odbc::Argument> names(2, call.name);
  if (!statement.Execute(kFindRoutine, names, said_)) return Failure();
  const odbc::Step step = statement.Next(said_);
  if (step == odbc::Step::kEnd) return {ErrorCode::kNoProcedure, "no procedure " + call.name};
  std::string name;
  std::string kind;
  if (step == odbc::Step::kFailed ||
      statement.ReadText(0, name, said_) != odbc::CellState::kValue ||
      statement.ReadText(1, kind, said_) != odbc::CellState::kValue) {
    return Failure();
  }
  // Safe to quote: ParseProcedureCall admits only letters, digits and "_" in names.
  sql = (kind == "p" ? "CALL \"" : "SELECT * FROM \"") + name + "\"" + marks;
  return {};
}

Outcome OdbcDatabase::End(Outcome outcome) {
  if (outcome.Ok() && !marker_.empty()) {
    outcome = RunTrusted("RELEASE SAVEPOINT " + marker_);
    if (!outcome.Ok()) outcome.text = "the transaction was ended early: " + outcome.text;
  }
  if (outcome.Ok() && !session_->Connected().Commit(said_)) outcome = Failure();
  if (!outcome.Ok()) RollBack();
  return outcome;
}

void OdbcDatabase::RollBack() {
  is_rolled_back_ = session_->Connected().Rollback(said_);
  is_clean_ &= is_rolled_back_;
}

// The driver's message goes to the server's record on one short line, without the values of the
// connection text.
Outcome OdbcDatabase::Failure() {
  is_clean_ = false;
  if (watch_->Reason() != ErrorCode::kNone) return watch_->Failure();
  std::string text =
      text_.WithoutSecrets(odbc::TextOf(said_), text::ConnectionText::Hide::kAllValues);
  std::ranges::replace_if(
      text, [](char ch) { return ch >= 0 && ch < ' '; }, ' ');
  Outcome outcome{ErrorCode::kSqlFailed, text.substr(0, kLongestRemark)};
  // Drivers without states give the engine's message.
  outcome.error_class = IsPostgres() ? error::kInternal : ClassOfSqliteText(text);
  Classify(said_, outcome);
  if (outcome.code == ErrorCode::kTimedOut) outcome.text = "the statement took too long";
  outcome.is_private = MayNameTheServer(said_, outcome);
  return outcome;
}

}  // namespace qv::standin
