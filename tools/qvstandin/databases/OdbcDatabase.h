// A logical database that lives in an engine of its own, behind an ODBC driver.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Database.h"
#include "OdbcDriver.h"
#include "StatementWatch.h"
#include "base/odbc/Connection.h"
#include "base/odbc/Statement.h"
#include "base/text/ConnectionText.h"

namespace qv::standin {

// One connection for one request, made when it is needed; one thread. Clients may do what the
// connection's user may, but not end the transaction that they run in, nor change its settings
// (GuardStatements tells what they may begin a statement with). Queries run in a transaction that
// is always rolled back, and that only reads where the engine knows such.
//
// A procedure is one of the engine's own: on PostgreSQL a function or procedure outside the
// system's schemas, found whatever the case of its name; elsewhere what the driver's call escape
// calls. Of several results the first that has columns gives the rows.
class OdbcDatabase : public Database {
 public:
  // `limit` outlives the object, and is left to it.
  OdbcDatabase(const std::string& connection_text, WorkLimit& limit);

  Outcome Query(const std::string& sql, RowSink& sink) override;
  Outcome Execute(std::span<const std::string_view> statements, std::int32_t& failed) override;
  Outcome Call(const ProcedureCall& call, RowSink& sink) override;

 private:
  enum class Work { kQuery, kStatements, kCall };
  // How the first result with columns is treated.
  struct Delivery {
    RowSink* sink = nullptr;  // null: its rows are counted out, like those of all others
    bool is_done = false;
  };

  // Connects and begins the transaction.
  Outcome Begin(Work work);
  Outcome Connect(Work work);
  // Leaves a savepoint by which End sees whether the transaction is still the same.
  Outcome Mark();
  // Asks PostgreSQL who it is that works for this connection.
  Outcome FindBackend();
  void Cancel(odbc::Statement& statement, int before) const;
  // Runs a statement of the server's own.
  Outcome RunTrusted(std::string_view sql);
  Outcome Run(std::string_view sql, std::span<const odbc::Argument> arguments, Delivery& delivery);
  Outcome Deliver(odbc::Statement& statement, RowSink& sink);
  Outcome Drain(odbc::Statement& statement);
  // The statement that calls a procedure.
  Outcome WriteCall(const ProcedureCall& call, std::string& sql);
  // Commits what went well and takes back the rest.
  Outcome End(Outcome outcome);
  [[nodiscard]] Outcome Failure();

  const text::ConnectionText text_;
  std::chrono::milliseconds time_;
  StatementWatch watch_;
  odbc::Diagnostics said_;
  std::unique_ptr<odbc::Connection> connection_;
  bool is_postgres_ = false;
  std::int64_t backend_ = 0;  // PostgreSQL's number for this connection
  std::string marker_;        // the name of a savepoint that is gone when the transaction is
};

}  // namespace qv::standin
