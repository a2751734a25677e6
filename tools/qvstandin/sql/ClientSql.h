// What the server does with a client's SQL before it runs.
#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/text/SqlText.h"
#include "tools/qvstandin/common/Work.h"

namespace qv::standin {

// Returns the statement with every "X.dbo.T" and "dbo.T" replaced by "T", for engines without names
// of three parts: these tables are in the database that the call names, whatever X is. Parts may be
// in square brackets. What the engine's `dialect` reads as quoted or as a comment is not changed.
[[nodiscard]] std::string WithPlainTableNames(std::string_view sql, text::SqlDialect dialect);

// Checks a client's SQL that will run inside a transaction of the server's. Splits the text at its
// semicolons into `statements`, which point into `sql`.
//
// Fails with kNotPermitted if a statement does not begin with a word that reads, changes or defines
// data, so that none can end the transaction, change settings, move files or run commands of the
// engine. Also refuses the words "commit" and "rollback" anywhere outside quotes, since some
// engines need no semicolon before them. Quotes and comments are read as PostgreSQL reads them;
// text that it could read in two ways is refused.
Outcome GuardStatements(std::string_view sql, std::vector<std::string_view>& statements);

// A client's SQL as it will run, and the statements in it.
struct GuardedText {
  std::string text;
  std::vector<std::string_view> statements;  // in `text`, which must not move
};

// Guards a text that must be one statement, with plain names of tables, for an engine that reads
// SQL as PostgreSQL does.
Outcome GuardQuery(std::string_view sql, GuardedText& query);

// Guards all texts of a batch in the same way, each of which must have a statement. Sets `failed`
// to the 1-based position of the text that is refused, or to 0 if none is.
Outcome GuardBatch(std::span<const std::string_view> batch, std::deque<GuardedText>& texts,
                   std::int32_t& failed);

}  // namespace qv::standin
