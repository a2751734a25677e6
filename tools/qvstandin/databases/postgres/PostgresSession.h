// A connection to PostgreSQL through libpq that serves one request after the other.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "PostgresConnection.h"
#include "tools/qvstandin/databases/KeptSession.h"
#include "tools/qvstandin/databases/PostgresSql.h"

namespace qv::standin {

// One thread, except PostgresConnection::Cancel.
class PostgresSession : public KeptSession {
 public:
  // Returns null if the settings that the server needs cannot be made. `statement_limit` is how
  // long PostgreSQL lets a statement run if this server does not cancel it; 0: as long as it does
  // anyway.
  [[nodiscard]] static std::unique_ptr<PostgresSession> Begin(
      std::string key, std::unique_ptr<PostgresConnection> connection,
      std::chrono::milliseconds statement_limit, odbc::Diagnostics& said);

  [[nodiscard]] const std::string& Key() const override { return key_; }
  [[nodiscard]] PostgresConnection& Connected() const { return *connection_; }

  // Sends a group of statements. The engine answers these at once, and then rolls back and forgets
  // what outlasts that. Those answers are read when the session is taken for the next request.
  [[nodiscard]] bool SendRollBack(odbc::Diagnostics& said);
  // Ends a request. Returns whether the session may be kept for another one.
  [[nodiscard]] bool End();
  [[nodiscard]] bool Refresh() override;
  [[nodiscard]] bool IsFresh() override;

 private:
  enum class State { kUsed, kRollsBack, kForgets, kFresh };

  PostgresSession(std::string key, std::unique_ptr<PostgresConnection> connection,
                  std::chrono::milliseconds statement_limit);

  const std::string key_;
  const std::unique_ptr<PostgresConnection> connection_;
  const std::string settings_;
  const std::string forget_;  // the statements that make the session as if it were new
  State state_ = State::kFresh;
  KeptPlace place_;
};

}  // namespace qv::standin
