// What becomes of a client's SQL before it runs.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/text/SqlText.h"
#include "tools/qvstandin/common/Work.h"

namespace qv::standin {

// Table names of three parts, for databases that know no more than one.
//
// Gives the statement with every "X.dbo.T" and "dbo.T" as "T": the tables that clients name so
// live in the database that the call names, whatever X says. Parts may stand in square brackets;
// what the engine's `dialect` reads as quoted or
// as a comment stays as it is.
[[nodiscard]] std::string WithPlainTableNames(std::string_view sql, text::SqlDialect dialect);

// A look at a client's SQL before it runs inside a transaction of the server's.
//
// Takes a text apart at its semicolons, into `statements` that lie inside it. Refuses with
// kNotPermitted one that begins with another word than those that read, change or define data: so
// none ends the transaction, changes settings, moves files or runs what only the engine
// understands; and the words "commit" and "rollback" wherever they are not quoted, since some
// engines need no semicolon in front. Quotes and comments are read as PostgreSQL reads them; what
// it could read in two ways is refused.
Outcome GuardStatements(std::string_view sql, std::vector<std::string_view>& statements);

}  // namespace qv::standin
