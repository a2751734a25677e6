#include "QueryCommand.h"

#include <algorithm>
#include <functional>

#include "GzipStream.h"
#include "ProcedureCall.h"
#include "RowsetWriter.h"

namespace qv::standin {

namespace {

// Clients take replies into blocks of a mebibyte, with the header and the other fields beside the
// file.
constexpr std::uint64_t kLargestInReply = (1U << 20) - 1024;

using Source = std::function<Outcome(Database&, const std::string& text, RowSink&)>;

Outcome Write(Database& database, const std::string& text, const Source& source, ByteSink& target,
              std::int32_t& rows) {
  RowsetWriter writer(target);
  Outcome outcome = source(database, text, writer);
  if (outcome.Ok() && !writer.Finish()) outcome = {ErrorCode::kAnswerLost, "disk full?"};
  rows = writer.RowCount();
  return outcome;
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

void AnswerRows(Services& services, Request& request, Reply& reply, bool packed,
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
  std::int32_t rows = 0;
  Outcome outcome;
  if (packed) {
    GzipStream gzip(*answer);
    outcome = Write(*database, *text, source, gzip, rows);
  } else {
    outcome = Write(*database, *text, source, *answer, rows);
  }
  if (!outcome.Ok()) return AddFailure(reply, std::move(outcome));
  AddAnswer(packed ? kSuccessCompress : kSuccess, rows, std::move(answer), reply);
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

void RunQuery(Services& services, Request& request, Reply& reply) {
  AnswerRows(services, request, reply, false, Query);
}

void RunPackedQuery(Services& services, Request& request, Reply& reply) {
  AnswerRows(services, request, reply, true, Query);
}

void RunProcedure(Services& services, Request& request, Reply& reply) {
  AnswerRows(services, request, reply, false, CallOrQuery);
}

}  // namespace qv::standin
