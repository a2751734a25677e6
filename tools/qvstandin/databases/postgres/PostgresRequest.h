// One request to PostgreSQL through libpq.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "PostgresCells.h"
#include "PostgresSession.h"
#include "tools/qvstandin/databases/Database.h"
#include "tools/qvstandin/databases/EngineRequest.h"
#include "tools/qvstandin/sql/ClientSql.h"

namespace qv::standin {

// One connection, opened on demand or kept from an earlier request of the client; one thread. What
// OdbcDatabase says about rights and transactions holds here as well. Call one of the three
// functions, once.
//
// Statements that do not depend on each other's answers are sent together, so that most requests
// cost one round trip.
class PostgresRequest : private EngineRequest {
 public:
  // `parameters` outlive the object.
  PostgresRequest(const EngineAccess& access, const PostgresConnection::Parameters& parameters);
  ~PostgresRequest();
  PostgresRequest(const PostgresRequest&) = delete;
  PostgresRequest& operator=(const PostgresRequest&) = delete;

  Outcome Query(const GuardedText& query, RowSink& sink);
  Outcome Execute(const std::deque<GuardedText>& texts, std::int32_t& failed);
  Outcome Call(const ProcedureCall& call, RowSink& sink);

  // Returns whether the call failed because only the ODBC driver can do it. Then it had no effect,
  // and the sink received nothing.
  [[nodiscard]] bool NeedsDriver() const { return needs_driver_; }

 private:
  using Reply = PostgresConnection::Reply;
  struct Step {
    std::string_view sql;
    std::int32_t position;  // of the client's text; 0: the statement is the server's own
  };
  using Steps = std::vector<Step>;

  Outcome Connect();
  [[nodiscard]] PostgresConnection& Connected() const { return session_->Connected(); }
  // Sends steps from `first` on as one group. Sets `end` to the first that was not sent.
  Outcome SendSome(const Steps& steps, std::size_t first, std::size_t& end);
  Outcome RunSteps(const Steps& steps, std::int32_t& failed);
  // Reads the answer to one statement. Its rows are discarded if there is no sink.
  Outcome ReadStatement(RowSink* sink);
  Outcome ReadCommit();
  Outcome BeginAnswer(RowSink& sink, std::optional<PostgresCells>& cells);
  Outcome DeliverRow(RowSink& sink, PostgresCells& cells);
  // Begins the transaction, and sets `sql` to the statement that calls a procedure.
  Outcome BeginCall(const ProcedureCall& call, const std::string& mark, std::string& sql);
  Outcome ReadRoutine(const ProcedureCall& call, std::string& sql);
  // Reads the rest of a group, which is its end unless a statement failed.
  void Skip();
  void RollBack();
  [[nodiscard]] Outcome Failed() { return Failure(true); }
  // Returns the failure of a statement that the server has to be told to end.
  [[nodiscard]] Outcome Stopped(Outcome outcome);

  const PostgresConnection::Parameters& parameters_;
  std::unique_ptr<PostgresSession> session_;
  bool needs_driver_ = false;
  bool is_delivered_ = false;  // the sink has the columns
};

}  // namespace qv::standin
