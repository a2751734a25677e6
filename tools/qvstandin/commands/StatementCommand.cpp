#include "Commands.h"

namespace qv::standin {

namespace {

Outcome Execute(Services& services, Request& request, const std::string& name,
                std::span<const std::string_view> statements, std::int32_t& failed) {
  const auto database = services.data.Open(name, request.limit);
  if (database == nullptr) return {ErrorCode::kNoDatabase, "no such database"};
  return database->Execute(statements, failed);
}

// A batch is one transaction, and keeps everybody else from writing.
constexpr std::int32_t kMostStatements = 100'000;

// Reads the statements of a batch. `failed` becomes the position of one that is missing.
Outcome ReadBatch(FieldReader& fields, std::vector<std::string_view>& statements,
                  std::int32_t& failed) {
  const auto count = fields.Integer();
  if (!count || *count < 0) return {ErrorCode::kMalformedRequest, "the count is missing"};
  if (*count > kMostStatements) return {ErrorCode::kNotPermitted, "too many statements"};
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

void RunStatement(Services& services, Request& request, Reply& reply) {
  const auto name = request.fields.Text();
  const auto text = name ? request.fields.View() : std::nullopt;
  if (!text) return AddFailure(reply, {ErrorCode::kMalformedRequest, "a field is missing"});
  reply.database = *name;
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
