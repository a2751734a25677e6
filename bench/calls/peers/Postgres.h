// A connection to PostgreSQL through its own client library.
#pragma once

#include <libpq-fe.h>

#include <cstdint>
#include <memory>
#include <string>

namespace qv::bench {

// Throws std::runtime_error with the server's message if something fails.
class Postgres {
 public:
  // Takes what it does not know, such as the password, from the environment.
  explicit Postgres(std::uint16_t port);

  // Runs a statement, which must return that many rows.
  void Run(const std::string& sql, int rows);
  // Sends the statement `count` times before it looks at the first answer.
  void RunInPipeline(const std::string& sql, int rows, int count);

 private:
  struct Closer {
    void operator()(PGconn* connection) const { PQfinish(connection); }
    void operator()(PGresult* result) const { PQclear(result); }
  };
  using Result = std::unique_ptr<PGresult, Closer>;

  void Check(const Result& result, int rows) const;
  void CheckSent(int sent) const;

  std::unique_ptr<PGconn, Closer> connection_;
};

}  // namespace qv::bench
