#include <algorithm>
#include <deque>
#include <optional>
#include <string_view>
#include <utility>

#include "Postgres.h"
#include "PostgresParameters.h"
#include "PostgresRequest.h"
#include "base/text/SqlText.h"
#include "tools/qvstandin/databases/OdbcDatabase.h"
#include "tools/qvstandin/sql/ClientSql.h"

namespace qv::standin {

namespace {

// Returns whether a text has one of the signs that ODBC gives a meaning of its own: escapes in
// braces and parameters.
bool HasSignsOfOdbc(std::string_view sql) {
  while (!sql.empty()) {
    const text::SqlPiece piece = text::NextSqlPiece(sql, text::kPostgreSql);
    const bool is_sign = piece.part == text::SqlPart::kSign;
    if (is_sign && std::string_view("{}?$").find(sql.front()) != std::string_view::npos) {
      return true;
    }
    sql.remove_prefix(piece.length);
  }
  return false;
}

// Gives each request to libpq if it can, and otherwise to the driver.
class PostgresDatabase : public Database {
 public:
  PostgresDatabase(const EngineAccess& access, PostgresConnection::Parameters parameters)
      : access_(access), parameters_(std::move(parameters)) {}

  Outcome Query(const std::string& sql, RowSink& sink) override {
    GuardedText query;
    if (Outcome guarded = GuardQuery(sql, query); !guarded.Ok()) return guarded;
    const auto ask = [&](PostgresRequest& request) { return request.Query(query, sink); };
    const auto outcome = HasSignsOfOdbc(query.text) ? std::nullopt : Try(ask);
    return outcome ? *outcome : OdbcDatabase(access_).Query(sql, sink);
  }

  Outcome Execute(std::span<const std::string_view> statements, std::int32_t& failed) override {
    std::deque<GuardedText> texts;  // which do not move
    if (Outcome guarded = GuardBatch(statements, texts, failed); !guarded.Ok()) return guarded;
    const auto has_signs = [](const GuardedText& text) { return HasSignsOfOdbc(text.text); };
    const auto ask = [&](PostgresRequest& request) { return request.Execute(texts, failed); };
    const auto outcome = std::ranges::any_of(texts, has_signs) ? std::nullopt : Try(ask);
    return outcome ? *outcome : OdbcDatabase(access_).Execute(statements, failed);
  }

  Outcome Call(const ProcedureCall& call, RowSink& sink) override {
    const auto ask = [&](PostgresRequest& request) { return request.Call(call, sink); };
    const auto outcome = Try(ask);
    return outcome ? *outcome : OdbcDatabase(access_).Call(call, sink);
  }

 private:
  // Returns nothing if only the driver can do it.
  template <class Ask>
  std::optional<Outcome> Try(const Ask& ask) {
    PostgresRequest request(access_, parameters_);
    Outcome outcome = ask(request);
    if (request.NeedsDriver()) return std::nullopt;
    return outcome;
  }

  const EngineAccess access_;
  const PostgresConnection::Parameters parameters_;
};

}  // namespace

std::unique_ptr<Database> OpenPostgres(const EngineAccess& access) {
  auto parameters = ParametersOf(text::ConnectionText(access.connection_text));
  if (!parameters) return nullptr;
  return std::make_unique<PostgresDatabase>(access, std::move(*parameters));
}

}  // namespace qv::standin
