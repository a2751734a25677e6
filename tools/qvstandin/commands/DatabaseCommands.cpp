#include "CommandHandlers.h"

#include <algorithm>
#include <functional>

#include "base/text/Utf8.h"
#include "tools/qvstandin/databases/Database.h"
#include "tools/qvstandin/recordsets/AnswerSpool.h"
#include "tools/qvstandin/recordsets/RecordsetWriter.h"

namespace qv::standin {

namespace {

// Clients receive a reply in a block of 1 MiB, which also holds the header and the other fields.
constexpr std::uint64_t kLargestInReply = (1U << 20) - 1024;

using Source = std::function<Outcome(Database&, const std::string& text, RowSink&)>;

std::unique_ptr<RecordsetWriter> WriterFor(Dialect dialect, AnswerSink& target) {
  if (dialect == Dialect::kSchema) return std::make_unique<SchemaWriter>(target);
  return std::make_unique<RowsetWriter>(target);
}

Outcome NoDatabase(const std::string& name) {
  return {ErrorCode::kNoDatabase, NoSuchDatabase(name)};
}

// Returns as much of a statement as a log can hold.
std::string Beginning(std::string_view statement) {
  constexpr std::size_t kLongest = 1000;
  return std::string(text::BeginningOf(statement, kLongest));
}

// Where the rows of an answer come from, and the form in which they are sent.
struct RowAnswer {
  std::unique_ptr<Database> database;
  WorkLimit& limit;
  const std::string& text;
  const Source& source;
  AnswerForm form;
  std::int32_t count = 0;
};

Outcome Write(RowAnswer& rows, AnswerSink& target) {
  const auto writer = WriterFor(rows.form.dialect, target);
  Outcome outcome = rows.source(*rows.database, rows.text, *writer);
  rows.database.reset();  // nothing else may use the limit as long as it exists
  if (outcome.Ok() && !writer->Finish()) {
    outcome = rows.limit.Reason() != ErrorCode::kNone
                  ? rows.limit.Failure()
                  : Outcome{ErrorCode::kAnswerLost, "the answer could not be written (disk full?)"};
  }
  rows.count = writer->RowCount();
  return outcome;
}

Outcome WriteAnswer(RowAnswer& rows, AnswerSpool& answer) {
  if (!rows.form.packed) return Write(rows, answer);
  GzipStream gzip(answer);
  return Write(rows, gzip);
}

void AddAnswer(std::string_view status, std::int32_t rows, std::unique_ptr<AnswerSpool> answer,
               Reply& reply) {
  reply.fields.Text(status);
  reply.fields.Integer(rows);
  reply.rows = rows;
  reply.fields.Text(answer->InMemory() ? kMemory : kFile);
  if (answer->InMemory()) {
    reply.fields.Bytes(answer->Bytes());
  } else {
    reply.file = std::move(answer);
  }
}

void AnswerRows(Services& services, Request& request, Reply& reply, AnswerForm form,
                const Source& source) {
  const auto name = request.fields.Text();
  const auto text = name ? request.fields.Text() : std::nullopt;
  if (!text) return AddFailure(reply, {ErrorCode::kMalformedRequest, "a field is missing"});
  reply.database = *name;
  reply.statement = Beginning(*text);
  auto database = services.data.Open(*name, request.limit, services.kept);
  if (database == nullptr) return AddFailure(reply, NoDatabase(*name));

  const auto threshold = std::min<std::uint64_t>(services.memory_threshold, kLargestInReply);
  auto answer =
      std::make_unique<AnswerSpool>(services.data.AnswerFolder(), threshold, services.answer_limit,
                                    [&limit = request.limit] { return limit.IsOver(); });
  RowAnswer rows{std::move(database), request.limit, *text, source, form};
  Outcome outcome = WriteAnswer(rows, *answer);
  if (outcome.code == ErrorCode::kAnswerLost && answer->IsTooLarge()) {
    outcome.error_class = error::kTooLarge;
    outcome.text = "the answer is larger than " + TextOfBytes(services.answer_limit);
  }
  if (!outcome.Ok()) return AddFailure(reply, std::move(outcome));
  AddAnswer(form.packed ? kSuccessCompress : kSuccess, rows.count, std::move(answer), reply);
}

Outcome Query(Database& database, const std::string& text, RowSink& sink) {
  return database.Query(text, sink);
}

Outcome CallOrQuery(Database& database, const std::string& text, RowSink& sink) {
  if (!IsProcedureCall(text)) return database.Query(text, sink);
  const auto call = ParseProcedureCall(text);
  if (!call) return {ErrorCode::kSqlFailed, "the call cannot be read", error::kSyntax};
  return database.Call(*call, sink);
}

Outcome Execute(Services& services, Request& request, const std::string& name,
                std::span<const std::string_view> statements, std::int32_t& failed) {
  const auto database = services.data.Open(name, request.limit, services.kept);
  if (database == nullptr) return NoDatabase(name);
  return database->Execute(statements, failed);
}

// Bounds a batch, which is one transaction and blocks all other writers.
constexpr std::int32_t kMostStatements = 100'000;

// Reads the statements of a batch. If one is missing, sets `failed` to its position.
Outcome ReadBatch(FieldReader& fields, std::vector<std::string_view>& statements,
                  std::int32_t& failed) {
  const auto count = fields.Integer();
  if (!count || *count < 0) return {ErrorCode::kMalformedRequest, "the count is missing"};
  if (*count > kMostStatements) {
    return {ErrorCode::kNotPermitted, "too many statements", error::kTooLarge};
  }
  for (std::int32_t i = 0; i < *count; ++i) {
    const auto statement = fields.View();
    if (!statement) {
      failed = i + 1;
      return {ErrorCode::kMalformedRequest, "a statement is missing"};
    }
    statements.push_back(*statement);
  }
  return {};
}

}  // namespace

void AnswerQuery(Services& services, Request& request, Reply& reply) {
  AnswerRows(services, request, reply, request.form, Query);
}

void AnswerPackedQuery(Services& services, Request& request, Reply& reply) {
  AnswerRows(services, request, reply, {.dialect = request.form.dialect, .packed = true}, Query);
}

void AnswerProcedure(Services& services, Request& request, Reply& reply) {
  AnswerRows(services, request, reply, request.form, CallOrQuery);
}

void RunStatement(Services& services, Request& request, Reply& reply) {
  const auto name = request.fields.Text();
  const auto text = name ? request.fields.View() : std::nullopt;
  if (!text) return AddFailure(reply, {ErrorCode::kMalformedRequest, "a field is missing"});
  reply.database = *name;
  reply.statement = Beginning(*text);
  std::int32_t failed = 0;
  Outcome outcome = Execute(services, request, *name, {&*text, 1}, failed);
  if (!outcome.Ok()) return AddFailure(reply, std::move(outcome));
  reply.fields.Text(kSuccess);
}

void RunBatch(Services& services, Request& request, Reply& reply) {
  Outcome outcome{ErrorCode::kMalformedRequest, "the database is missing"};
  std::int32_t failed = 0;
  if (const auto name = request.fields.Text()) {
    reply.database = *name;
    std::vector<std::string_view> statements;
    outcome = ReadBatch(request.fields, statements, failed);
    if (!statements.empty()) reply.statement = Beginning(statements.front());
    if (outcome.Ok()) outcome = Execute(services, request, *name, statements, failed);
  }
  if (outcome.Ok()) {
    reply.fields.Text(kSuccess);
  } else {
    AddFailure(reply, std::move(outcome));
    reply.fields.Integer(failed);
  }
}

}  // namespace qv::standin
