// A logical database in one SQLite file.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <span>

#include "Database.h"
#include "Sqlite.h"
#include "tools/qvstandin/common/Work.h"

namespace qv::standin {

// One connection for one request; one thread. Clients' statements cannot attach files, change
// settings of the database, load extensions or end their transaction.
class SqliteDatabase : public Database {
 public:
  // The table of stored procedures: a name, and statements in which ?1, ?2, ... are the arguments.
  static constexpr const char* kProcedureTable = "StoredProcedures";

  // The longest value in bytes, unless the owner of the server sets another. It bounds what a
  // function can take, since functions cannot be interrupted.
  static constexpr std::size_t kLongestCell = std::size_t{1} << 20;

  // Opens an existing file. Returns null if that fails. `limit` outlives the object.
  [[nodiscard]] static std::unique_ptr<SqliteDatabase> Open(const std::string& path,
                                                            WorkLimit& limit,
                                                            std::size_t cell_limit = kLongestCell);

  Outcome Query(const std::string& sql, RowSink& sink) override;
  Outcome Execute(std::span<const std::string_view> statements, std::int32_t& failed) override;
  Outcome Call(const ProcedureCall& call, RowSink& sink) override;

 private:
  using Arguments = std::span<const ProcedureCall::Argument>;

  SqliteDatabase(SqliteConnection connection, WorkLimit& limit);

  [[nodiscard]] bool Confine(std::size_t cell_limit);
  // Prepares the next statement of a text that ends with the NUL at `end`; null after the last one.
  [[nodiscard]] int Prepare(const char*& text, const char* end, SqliteStatement& statement);
  [[nodiscard]] bool HasMore(const char* text, const char* end);
  Outcome RunAll(std::string_view sql, Arguments arguments, RowSink* sink);
  Outcome Step(sqlite3_stmt* statement);
  Outcome Deliver(sqlite3_stmt* statement, RowSink& sink);
  Outcome Bind(sqlite3_stmt* statement, Arguments arguments);
  Outcome ReadProcedure(const std::string& name, std::string& sql);
  // Runs one of the server's own statements.
  Outcome RunTrusted(const char* sql);
  Outcome EndTransaction(Outcome outcome);
  [[nodiscard]] Outcome Failure(int code);

  SqliteConnection connection_;
  WorkLimit& limit_;
  bool trusted_ = false;  // the statement being prepared is the server's own
};

}  // namespace qv::standin
