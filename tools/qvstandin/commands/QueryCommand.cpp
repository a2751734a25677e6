#include "Commands.h"

#include <algorithm>
#include <functional>

#include "tools/qvstandin/databases/ProcedureCall.h"
#include "tools/qvstandin/recordsets/GzipStream.h"
#include "tools/qvstandin/recordsets/RowsetWriter.h"
#include "tools/qvstandin/recordsets/SchemaWriter.h"

namespace qv::standin {

namespace {

// Clients take replies into blocks of a mebibyte, with the header and the other fields beside the
// file.
constexpr std::uint64_t kLargestInReply = (1U << 20) - 1024;

using Source = std::function<Outcome(Database&, const std::string& text, RowSink&)>;

std::unique_ptr<RecordsetWriter> WriterFor(Dialect dialect, ByteSink& target) {
  if (dialect == Dialect::kSchema) return std::make_unique<SchemaWriter>(target);
  return std::make_unique<RowsetWriter>(target);
}

// Where rows come from, and in what form they go out.
struct Rows {
  Database& database;
  const std::string& text;
  const Source& source;
  AnswerForm form;
  std::int32_t count = 0;
};

Outcome Write(Rows& rows, ByteSink& target) {
  const auto writer = WriterFor(rows.form.dialect, target);
  Outcome outcome = rows.source(rows.database, rows.text, *writer);
  if (outcome.Ok() && !writer->Finish()) outcome = {ErrorCode::kAnswerLost, "disk full?"};
  rows.count = writer->RowCount();
  return outcome;
}

Outcome WriteAnswer(Rows& rows, AnswerFile& answer) {
  if (!rows.form.packed) return Write(rows, answer);
  GzipStream gzip(answer);
  return Write(rows, gzip);
}

void AddAnswer(std::string_view status, std::int32_t rows, std::unique_ptr<AnswerFile> answer,
               Reply& reply) {
  reply.fields.Text(status);
  reply.fields.Integer(rows);
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
  const auto database = services.data.Open(*name, request.limit);
  if (database == nullptr) return AddFailure(reply, {ErrorCode::kNoDatabase, "no such database"});

  const auto threshold = std::min<std::uint64_t>(services.memory_threshold, kLargestInReply);
  auto answer =
      std::make_unique<AnswerFile>(services.data.AnswerFolder(), threshold, services.answer_limit);
  Rows rows{*database, *text, source, form};
  Outcome outcome = WriteAnswer(rows, *answer);
  if (!outcome.Ok()) return AddFailure(reply, std::move(outcome));
  AddAnswer(form.packed ? kSuccessCompress : kSuccess, rows.count, std::move(answer), reply);
}

Outcome Query(Database& database, const std::string& text, RowSink& sink) {
  return database.Query(text, sink);
}

Outcome CallOrQuery(Database& database, const std::string& text, RowSink& sink) {
  if (!IsProcedureCall(text)) return database.Query(text, sink);
  const auto call = ParseProcedureCall(text);
  if (!call) return {ErrorCode::kSqlFailed, "the call cannot be read"};
  return database.Call(*call, sink);
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

}  // namespace qv::standin
