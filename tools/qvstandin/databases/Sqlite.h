// SQLite files that requests work on: how they are opened, and their rows as those of an answer.
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

// Opens an existing file for one thread, null when it is not there. What runs on it, or waits for
// somebody else's work on it, is cut off once `limit`, which outlives it, is over.
[[nodiscard]] SqliteConnection OpenSqlite(const std::string& path, WorkLimit& limit);

// What went wrong with the last call, whose result was `code`.
[[nodiscard]] Outcome SqliteFailure(sqlite3* connection, int code, const WorkLimit& limit);

// The columns of a statement, by their declared types; a column that has none that is known goes by
// the value in the current row, when there is one, and is text otherwise.
[[nodiscard]] std::vector<Column> ColumnsOf(sqlite3_stmt* statement, bool has_row);

// Replaces `cells` by the current row; texts and bytes are SQLite's until the next step.
void ReadCells(sqlite3_stmt* statement, std::vector<Cell>& cells);

// Binds a copy. Gives SQLite's result code.
[[nodiscard]] int BindArgument(sqlite3_stmt* statement, int position,
                               const ProcedureCall::Argument& argument);

// Which kind of column a declared type of SQL stands for.
struct DeclaredType {
  ColumnKind kind;
  std::uint32_t length;  // of "VARCHAR(40)"; 0 when none is given
};

// Names are taken in any case. Nothing for a type that is not known.
[[nodiscard]] std::optional<DeclaredType> ParseDeclaredType(std::string_view type);

// SQL functions whose work grows with the product of two lengths, with bounds.
//
// SQLite cannot be stopped inside a function. Puts functions in place of LIKE, GLOB, instr and
// replace that take no long pattern and ask `limit` first, and takes away those that are not worth
// the trouble: trim with characters of the caller's, and json_patch. `limit` outlives the
// connection. Gives SQLite's result code.
[[nodiscard]] int BoundFunctions(sqlite3* connection, WorkLimit& limit);

}  // namespace qv::standin
