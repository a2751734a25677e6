#include "Postgres.h"

#include <fmt/format.h>

#include <stdexcept>

namespace qv::bench {

Postgres::Postgres(std::uint16_t port)
    : connection_(PQconnectdb(fmt::format("port={}", port).c_str())) {
  CheckSent(PQstatus(connection_.get()) == CONNECTION_OK ? 1 : 0);
}

void Postgres::Run(const std::string& sql, int rows) {
  Check(Result(PQexec(connection_.get(), sql.c_str())), rows);
}

void Postgres::RunInPipeline(const std::string& sql, int rows, int count) {
  PGconn* const connection = connection_.get();
  CheckSent(PQenterPipelineMode(connection));
  for (int i = 0; i < count; ++i) {
    CheckSent(PQsendQueryParams(connection, sql.c_str(), 0, nullptr, nullptr, nullptr, nullptr, 0));
  }
  CheckSent(PQpipelineSync(connection));
  for (int i = 0; i < count; ++i) {
    Check(Result(PQgetResult(connection)), rows);
    if (Result(PQgetResult(connection)) != nullptr) throw std::runtime_error("two results of one");
  }
  const Result end(PQgetResult(connection));
  CheckSent(PQresultStatus(end.get()) == PGRES_PIPELINE_SYNC ? 1 : 0);
  CheckSent(PQexitPipelineMode(connection));
}

void Postgres::Check(const Result& result, int rows) const {
  const ExecStatusType status = PQresultStatus(result.get());
  CheckSent(status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK ? 1 : 0);
  if (PQntuples(result.get()) != rows) {
    throw std::runtime_error(fmt::format("libpq: {} rows", PQntuples(result.get())));
  }
}

void Postgres::CheckSent(int sent) const {
  if (sent == 1) return;
  throw std::runtime_error(std::string("libpq: ") + PQerrorMessage(connection_.get()));
}

}  // namespace qv::bench
