// A connection through ODBC that serves one request after the other.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "PostgresSql.h"
#include "base/odbc/Connection.h"
#include "base/text/ConnectionText.h"

namespace qv::standin {

// One thread.
class OdbcSession {
 public:
  using Connection = std::unique_ptr<odbc::Connection>;

  // Finds out which engine it is. `statement_limit` is how long PostgreSQL lets a statement run if
  // this server does not cancel it; 0: as long as it does anyway. Returns null if that fails.
  [[nodiscard]] static std::unique_ptr<OdbcSession> Begin(std::string key, Connection connection,
                                                          std::chrono::milliseconds statement_limit,
                                                          odbc::Diagnostics& said);
  OdbcSession(const OdbcSession&) = delete;
  OdbcSession& operator=(const OdbcSession&) = delete;

  // Sessions of one key can replace each other.
  [[nodiscard]] const std::string& Key() const { return key_; }
  [[nodiscard]] odbc::Connection& Connected() const { return *connection_; }
  [[nodiscard]] bool IsPostgres() const { return is_postgres_; }
  // Returns the process ID of PostgreSQL's backend, or 0.
  [[nodiscard]] std::int64_t Backend() const { return backend_; }

  // Ends a request. What is to be forgotten is less if all of it was rolled back. Returns whether
  // the session may be kept for another request: only PostgreSQL can be told to forget what a
  // session has done, and it can serve only so many connections.
  [[nodiscard]] bool End(bool is_rolled_back);
  // Makes PostgreSQL forget what the request has done. Returns false if the session cannot serve
  // another one.
  [[nodiscard]] bool Refresh();
  // Returns whether another request finds the session as if it were new.
  [[nodiscard]] bool IsFresh() { return Refresh(); }

 private:
  OdbcSession(std::string key, Connection connection);

  [[nodiscard]] bool AskPostgres(std::chrono::milliseconds statement_limit,
                                 odbc::Diagnostics& said);

  const std::string key_;
  const Connection connection_;
  const bool is_postgres_;
  std::int64_t backend_ = 0;
  std::string forget_what_lasts_;  // the statements for requests that were rolled back
  std::string forget_all_;
  const std::string* to_forget_ = nullptr;  // those for the last request; null: none
  KeptPlace place_;
};

// Returns whether the server can keep connections of this text: the driver is PostgreSQL's, and its
// text says all that it does when it connects.
[[nodiscard]] bool MayBeKept(const text::ConnectionText& text);

}  // namespace qv::standin
