// A logical database in one SQLite file.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <span>

#include "Database.h"
#include "KeptDatabases.h"
#include "Sqlite.h"
#include "SqliteSession.h"
#include "tools/qvstandin/common/Work.h"

namespace qv::standin {

// A file for one request; one thread.
class SqliteDatabase : public Database {
 public:
  // The table of stored procedures: a name, and statements in which ?1, ?2, ... are the arguments.
  static constexpr const char* kProcedureTable = "StoredProcedures";

  // The longest value in bytes, unless the owner of the server sets another. It bounds what a
  // function can take, since functions cannot be interrupted.
  static constexpr std::size_t kLongestCell = std::size_t{1} << 20;

  // Opens an existing file, or takes it from `kept`, to which it returns afterwards; `kept` may be
  // null. Returns null if that fails. `limit` and `kept` outlive the object.
  [[nodiscard]] static std::unique_ptr<SqliteDatabase> Open(const std::string& path,
                                                            WorkLimit& limit,
                                                            std::size_t cell_limit,
                                                            KeptDatabases* kept);
  ~SqliteDatabase() override;
  SqliteDatabase(const SqliteDatabase&) = delete;
  SqliteDatabase& operator=(const SqliteDatabase&) = delete;

  Outcome Query(const std::string& sql, RowSink& sink) override;
  Outcome Execute(std::span<const std::string_view> statements, std::int32_t& failed) override;
  Outcome Call(const ProcedureCall& call, RowSink& sink) override;

 private:
  using Arguments = std::span<const ProcedureCall::Argument>;
  // The part of a text that was not prepared yet. It ends with the NUL at `end`.
  struct Rest {
    const char* begin;
    const char* end;
  };

  SqliteDatabase(std::unique_ptr<SqliteSession> session, WorkLimit& limit, KeptDatabases* kept);

  // Prepares the next statement; null after the last one.
  [[nodiscard]] int Prepare(Rest& rest, SqliteStatement& statement);
  [[nodiscard]] bool HasMore(Rest rest);
  // Prepares the only statement of a text.
  Outcome PrepareOnly(const std::string& sql, SqliteStatement& statement);
  Outcome RunAll(std::string_view sql, Arguments arguments, RowSink* sink);
  Outcome RunOne(sqlite3_stmt* statement, Arguments arguments, RowSink* sink);
  Outcome Step(sqlite3_stmt* statement);
  Outcome Deliver(sqlite3_stmt* statement, RowSink& sink);
  Outcome Bind(sqlite3_stmt* statement, Arguments arguments);
  Outcome ReadProcedure(const std::string& name, std::string& sql);
  // Runs one of the server's own statements.
  Outcome RunTrusted(const char* sql);
  Outcome EndTransaction(Outcome outcome);
  // After a failure of the engine, no later request gets this connection.
  [[nodiscard]] Outcome Failure(int code);

  std::unique_ptr<SqliteSession> session_;
  WorkLimit& limit_;
  KeptDatabases* const kept_;
};

}  // namespace qv::standin
