// How the SQLite files are opened that requests work on.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>

#include "tools/qvstandin/common/ErrorCode.h"
#include "tools/qvstandin/common/WorkLimit.h"

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

}  // namespace qv::standin
