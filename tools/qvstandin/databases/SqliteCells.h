// Between SQLite's rows and those of an answer.
#pragma once

#include <sqlite3.h>

#include <vector>

#include "Database.h"

namespace qv::standin {

// The columns of a statement, by their declared types; a column that has none that is known goes by
// the value in the current row, when there is one, and is text otherwise.
[[nodiscard]] std::vector<Column> ColumnsOf(sqlite3_stmt* statement, bool has_row);

// Replaces `cells` by the current row; texts and bytes are SQLite's until the next step.
void ReadCells(sqlite3_stmt* statement, std::vector<Cell>& cells);

// Binds a copy. Gives SQLite's result code.
[[nodiscard]] int BindArgument(sqlite3_stmt* statement, int position,
                               const ProcedureCall::Argument& argument);

}  // namespace qv::standin
