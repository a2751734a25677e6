// SQLite files: opening them under a work limit, and converting their rows.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Database.h"
#include "tools/qvstandin/common/Work.h"

namespace qv::standin {

struct SqliteCloser {
  void operator()(sqlite3* connection) const { sqlite3_close(connection); }
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using SqliteConnection = std::unique_ptr<sqlite3, SqliteCloser>;
using SqliteStatement = std::unique_ptr<sqlite3_stmt, SqliteCloser>;

// Opens an existing file for one thread at a time. Returns null if that fails.
[[nodiscard]] SqliteConnection OpenSqlite(const std::string& path);

// From now on, or until UnwatchLimit(), statements and waits for locks are interrupted once `limit`
// is over. `limit` outlives that time.
void WatchLimit(sqlite3* connection, WorkLimit& limit);
void UnwatchLimit(sqlite3* connection);

// Describes the failure of the last call, whose result was `code`.
[[nodiscard]] Outcome SqliteFailure(sqlite3* connection, int code, const WorkLimit& limit);

// Returns the class of a statement's failure by the engine's message, for callers who have no more
// than that.
[[nodiscard]] error::Class ClassOfSqliteText(std::string_view text);

// Returns the columns of a statement by their declared types. A column without a known type gets
// the type of its value in the current row, or is text if there is no row.
[[nodiscard]] std::vector<Column> ColumnsOf(sqlite3_stmt* statement, bool has_row);

// Replaces `cells` by the current row. Texts and bytes belong to SQLite until the next step.
void ReadCells(sqlite3_stmt* statement, std::vector<Cell>& cells);

// Binds a copy of the argument. Returns SQLite's result code.
[[nodiscard]] int BindArgument(sqlite3_stmt* statement, int position,
                               const ProcedureCall::Argument& argument);

// The kind of column that a declared SQL type means.
struct DeclaredType {
  ColumnKind kind;
  std::uint32_t length;  // 40 for "VARCHAR(40)"; 0 if none is given
};

// Ignores case. Returns nothing for an unknown type.
[[nodiscard]] std::optional<DeclaredType> ParseDeclaredType(std::string_view type);

// Bounds the SQL functions whose work grows with the product of two lengths, since SQLite cannot be
// interrupted inside a function. Replaces LIKE, GLOB, instr and replace with functions that refuse
// long patterns and check first what `limit` points to at that time, and removes trim with a set of
// characters and json_patch. `limit` outlives the connection. Returns SQLite's result code.
[[nodiscard]] int BoundFunctions(sqlite3* connection, WorkLimit*& limit);

}  // namespace qv::standin
