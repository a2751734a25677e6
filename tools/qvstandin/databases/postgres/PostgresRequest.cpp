#include "PostgresRequest.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "PostgresCells.h"
#include "tools/qvstandin/databases/PostgresSql.h"

namespace qv::standin {

namespace {

// The most that is sent before the answers to it are read, but for a longer statement.
constexpr std::size_t kLargestGroup = 8U << 10;

constexpr std::string_view kCommit = "COMMIT";

bool HasBackslash(std::string_view sql) { return sql.find('\\') != std::string_view::npos; }

// Returns "($1, $2)" for two arguments.
std::string NumberedMarks(std::size_t count) {
  std::string marks = "(";
  for (std::size_t i = 1; i <= count; ++i) marks += fmt::format("{}${}", i == 1 ? "" : ", ", i);
  return marks + ")";
}

Outcome Lost() { return {ErrorCode::kAnswerLost, "the answer could not be stored"}; }

}  // namespace

PostgresRequest::PostgresRequest(const EngineAccess& access,
                                 const PostgresConnection::Parameters& parameters)
    : EngineRequest(access), parameters_(parameters) {}

PostgresRequest::~PostgresRequest() {
  if (kept_ == nullptr || session_ == nullptr || !LeavesItsSessionClean()) return;
  if (session_->End()) kept_->postgres.Keep(std::move(session_));
}

// The transaction is rolled back, and its traces are removed, while the client reads its answer.
Outcome PostgresRequest::Query(const GuardedText& query, RowSink& sink) {
  if (Outcome connected = Connect(); !connected.Ok()) return connected;
  const std::string_view sql = query.statements.front();
  Steps steps{{"BEGIN READ ONLY", 0}};
  if (HasBackslash(sql)) steps.push_back({kPlainBackslashes, 0});
  is_clean_ &= !MarksItsSession(sql);
  const StatementWatch::Over over(*watch_, [this](int) { Connected().Cancel(); });
  if (watch_->IsOver()) return Failed();
  const auto add = [this](const Step& step) { return Connected().Add(step.sql, said_); };
  const bool is_sent = std::ranges::all_of(steps, add) && Connected().Add(sql, said_) &&
                       session_->SendRollBack(said_);
  if (!is_sent) return Failed();
  Outcome outcome;
  for (std::size_t i = 0; i < steps.size() && outcome.Ok(); ++i) outcome = ReadStatement(nullptr);
  if (outcome.Ok()) outcome = ReadStatement(&sink);
  if (!outcome.Ok()) {
    Skip();
    RollBack();
    return outcome;
  }
  if (is_delivered_) return {};
  return {ErrorCode::kNotPermitted, "a query must only read"};
}

Outcome PostgresRequest::Execute(const std::deque<GuardedText>& texts, std::int32_t& failed) {
  failed = 0;
  if (Outcome connected = Connect(); !connected.Ok()) return connected;
  const std::string marker = NewMarker();
  const std::string mark = "SAVEPOINT " + marker;
  const std::string release = "RELEASE " + mark;
  Steps steps{{"BEGIN", 0}, {mark, 0}};
  std::int32_t position = 0;
  for (const GuardedText& text : texts) {
    ++position;
    for (const std::string_view sql : text.statements) {
      if (HasBackslash(sql)) steps.push_back({kPlainBackslashes, position});
      steps.push_back({sql, position});
      is_clean_ &= !MarksItsSession(sql);
    }
  }
  steps.push_back({release, 0});
  steps.push_back({kCommit, 0});
  const StatementWatch::Over over(*watch_, [this](int) { Connected().Cancel(); });
  Outcome outcome = RunSteps(steps, failed);
  if (!outcome.Ok()) RollBack();
  return outcome;
}

// A statement that nobody waits for must not begin: its cancellation may have come already.
Outcome PostgresRequest::RunSteps(const Steps& steps, std::int32_t& failed) {
  for (std::size_t first = 0, end = 0; first < steps.size(); first = end) {
    failed = steps[first].position;
    Outcome outcome = watch_->IsOver() ? Failed() : SendSome(steps, first, end);
    if (!outcome.Ok()) return outcome;
    for (std::size_t i = first; i < end && outcome.Ok(); ++i) {
      failed = steps[i].position;
      outcome = steps[i].sql == kCommit ? ReadCommit() : ReadStatement(nullptr);
      const bool has_lost_its_mark = !outcome.Ok() && steps[i].sql.starts_with("RELEASE ");
      if (has_lost_its_mark) outcome.text = "the transaction was ended early: " + outcome.text;
    }
    Skip();
    if (!outcome.Ok()) return outcome;
  }
  failed = 0;
  return {};
}

Outcome PostgresRequest::SendSome(const Steps& steps, std::size_t first, std::size_t& end) {
  std::size_t size = 0;
  for (end = first; end < steps.size(); ++end) {
    size += steps[end].sql.size();
    if (end > first && size > kLargestGroup) break;
    if (!Connected().Add(steps[end].sql, said_)) return Failed();
  }
  return Connected().Send(said_) ? Outcome() : Failed();
}

Outcome PostgresRequest::Call(const ProcedureCall& call, RowSink& sink) {
  if (Outcome connected = Connect(); !connected.Ok()) return connected;
  const std::string marker = NewMarker();
  const std::string mark = "SAVEPOINT " + marker;
  const std::string release = "RELEASE " + mark;
  const StatementWatch::Over over(*watch_, [this](int) { Connected().Cancel(); });
  std::string sql;
  Outcome outcome = BeginCall(call, mark, sql);
  if (outcome.Ok()) {
    std::vector<PostgresConnection::Argument> arguments;
    std::ranges::transform(call.arguments, std::back_inserter(arguments), AsText);
    const bool is_sent = Connected().Add(sql, arguments, said_) && Connected().Send(said_);
    outcome = is_sent ? ReadStatement(&sink) : Failed();
    Skip();
  }
  if (outcome.Ok() && !is_delivered_ && !sink.Begin({})) outcome = Lost();
  std::int32_t ignored = 0;
  if (outcome.Ok()) outcome = RunSteps({{release, 0}, {kCommit, 0}}, ignored);
  if (!outcome.Ok()) RollBack();
  return outcome;
}

Outcome PostgresRequest::BeginCall(const ProcedureCall& call, const std::string& mark,
                                   std::string& sql) {
  if (watch_->IsOver()) return Failed();
  is_clean_ &= !MarksItsSession(call.name);
  static const std::string find = FindRoutineSql({"$1", "$1", "$1", "$1"});
  const PostgresConnection::Argument name = call.name;
  const bool is_sent = Connected().Add("BEGIN", said_) && Connected().Add(mark, said_) &&
                       Connected().Add(find, {&name, 1}, said_) && Connected().Send(said_);
  if (!is_sent) return Failed();
  Outcome outcome = ReadStatement(nullptr);
  if (outcome.Ok()) outcome = ReadStatement(nullptr);
  if (outcome.Ok()) outcome = ReadRoutine(call, sql);
  Skip();
  return outcome;
}

Outcome PostgresRequest::ReadRoutine(const ProcedureCall& call, std::string& sql) {
  Reply reply = Connected().Read(said_);
  const bool is_found = reply == Reply::kRow;
  if (is_found) {
    const PGresult* const row = Connected().Result();
    // Safe to quote: ParseProcedureCall admits only letters, digits and "_" in names.
    sql = CallRoutineSql(PQgetvalue(row, 0, 1), PQgetvalue(row, 0, 0),
                         NumberedMarks(call.arguments.size()));
    reply = Connected().Read(said_);
  }
  if (reply != Reply::kEnd) return Failed();
  return is_found ? Outcome() : Outcome{ErrorCode::kNoProcedure, "no procedure " + call.name};
}

Outcome PostgresRequest::Connect() {
  const std::string key = fmt::format("{} {}", LongestStatement(), text_.Text());
  if (kept_ != nullptr) {
    session_.reset(static_cast<PostgresSession*>(kept_->postgres.Take(key).release()));
  }
  if (session_ != nullptr) return {};
  if (watch_->IsOver()) return Failed();
  auto connection = PostgresConnection::Open(parameters_, LongestLogin(), said_);
  if (connection == nullptr) return CannotConnect(Failed());
  needs_driver_ = !connection->ConvertsText();
  if (needs_driver_) return Failed();
  const std::chrono::seconds limit(LongestStatement());
  session_ = PostgresSession::Begin(key, std::move(connection), limit, said_);
  return session_ != nullptr ? Outcome() : Failed();
}

Outcome PostgresRequest::ReadStatement(RowSink* sink) {
  std::optional<PostgresCells> cells;
  while (true) {
    const Reply reply = Connected().Read(said_);
    if (reply != Reply::kRow && reply != Reply::kEnd) return Failed();
    if (sink != nullptr && !cells) {
      Outcome outcome = BeginAnswer(*sink, cells);
      if (!outcome.Ok()) return Stopped(std::move(outcome));
    }
    if (reply == Reply::kEnd) return {};
    Outcome outcome = cells ? DeliverRow(*sink, *cells) : Outcome();
    if (!outcome.Ok()) return Stopped(std::move(outcome));
  }
}

Outcome PostgresRequest::BeginAnswer(RowSink& sink, std::optional<PostgresCells>& cells) {
  const PGresult* const result = Connected().Result();
  if (PQnfields(result) == 0) return {};
  cells = PostgresCells::Of(result, cell_limit_);
  needs_driver_ = !cells;
  if (needs_driver_) return {ErrorCode::kSqlFailed, "a column needs the driver"};
  is_delivered_ = sink.Begin(cells->Columns());
  return is_delivered_ ? Outcome() : Lost();
}

Outcome PostgresRequest::DeliverRow(RowSink& sink, PostgresCells& cells) {
  if (watch_->IsOver() || !cells.Read(Connected().Result(), said_)) return Failed();
  return sink.Row(cells.Row()) ? Outcome() : Lost();
}

Outcome PostgresRequest::ReadCommit() {
  return Connected().Read(said_) == Reply::kEnd ? Outcome() : Failed();
}

// The statement still runs.
Outcome PostgresRequest::Stopped(Outcome outcome) {
  is_clean_ = false;
  Connected().Cancel();
  return outcome;
}

void PostgresRequest::Skip() {
  odbc::Diagnostics ignored;
  is_clean_ &= Connected().ReadGroup(ignored);
}

// Before the client has its answer, so that nothing is locked any more.
void PostgresRequest::RollBack() {
  odbc::Diagnostics ignored;
  is_clean_ &= Connected().Add("ROLLBACK", ignored) && Connected().Send(ignored) &&
               Connected().ReadGroup(ignored);
}

}  // namespace qv::standin
