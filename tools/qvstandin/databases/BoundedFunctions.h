// SQL functions whose work grows with the product of two lengths, with bounds.
#pragma once

#include <sqlite3.h>

#include "tools/qvstandin/common/WorkLimit.h"

namespace qv::standin {

// SQLite cannot be stopped inside a function. Puts functions in place of LIKE, GLOB, instr and
// replace that take no long pattern and ask `limit` first, and takes away those that are not worth
// the trouble: trim with characters of the caller's, and json_patch. `limit` outlives the
// connection. Gives SQLite's result code.
[[nodiscard]] int BoundFunctions(sqlite3* connection, WorkLimit& limit);

}  // namespace qv::standin
