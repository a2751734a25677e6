// A logical database in an engine behind an ODBC driver.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Database.h"
#include "EngineRequest.h"
#include "OdbcDriver.h"
#include "OdbcSession.h"
#include "base/odbc/Connection.h"
#include "base/odbc/Statement.h"

namespace qv::standin {

// One connection for one request, opened on demand or kept from an earlier request of the client;
// one thread. Clients have the rights of the connection's user, but cannot end their transaction or
// change its settings (see GuardStatements).
// Queries run in a transaction that is always rolled back, and that is read-only if the engine
// supports it.
//
// Procedures are the engine's own: on PostgreSQL, a function or procedure outside the system's
// schemas, found in any case; elsewhere, what the driver's call escape finds. If there are several
// results, the first with columns is the answer.
class OdbcDatabase : public Database, private EngineRequest {
 public:
  explicit OdbcDatabase(const EngineAccess& access);
  ~OdbcDatabase() override;
  OdbcDatabase(const OdbcDatabase&) = delete;
  OdbcDatabase& operator=(const OdbcDatabase&) = delete;

  Outcome Query(const std::string& sql, RowSink& sink) override;
  Outcome Execute(std::span<const std::string_view> statements, std::int32_t& failed) override;
  Outcome Call(const ProcedureCall& call, RowSink& sink) override;

 private:
  enum class Work { kQuery, kStatements, kCall };
  // Where the first result with columns goes.
  struct Delivery {
    RowSink* sink = nullptr;  // null: its rows are discarded, like those of all others
    bool is_done = false;
  };

  // Connects and begins the transaction.
  Outcome Begin(Work work);
  [[nodiscard]] std::string KeyOf(Work work) const;
  Outcome Connect(Work work);
  Outcome BeginTransaction(Work work);
  // Sets a savepoint, by which End() sees whether the transaction is still the same.
  Outcome Mark();
  void Cancel(odbc::Statement& statement, int before) const;
  // Runs one of the server's own statements.
  Outcome RunTrusted(std::string_view sql);
  Outcome Run(std::string_view sql, std::span<const odbc::Argument> arguments, Delivery& delivery);
  Outcome RunIn(odbc::Statement& statement, std::string_view sql,
                std::span<const odbc::Argument> arguments, Delivery& delivery);
  Outcome Deliver(odbc::Statement& statement, RowSink& sink);
  Outcome Drain(odbc::Statement& statement);
  // Sets `sql` to the statement that calls a procedure.
  Outcome WriteCall(const ProcedureCall& call, std::string& sql);
  // Commits if `outcome` is a success, and rolls back otherwise.
  Outcome End(Outcome outcome);
  void RollBack();
  [[nodiscard]] Outcome Failed() { return Failure(IsPostgres()); }
  [[nodiscard]] bool IsPostgres() const { return session_ != nullptr && session_->IsPostgres(); }

  bool is_rolled_back_ = false;
  std::unique_ptr<OdbcSession> session_;
  std::string marker_;  // the savepoint that vanishes with the transaction
};

}  // namespace qv::standin
