// A look at a client's SQL before it runs inside a transaction of the server's.
#pragma once

#include <string_view>
#include <vector>

#include "tools/qvstandin/common/ErrorCode.h"

namespace qv::standin {

// Takes a text apart at its semicolons, into `statements` that lie inside it. Refuses with
// kNotPermitted one that begins with another word than those that read, change or define data: so
// none ends the transaction, changes settings, moves files or runs what only the engine
// understands; and the words "commit" and "rollback" wherever they are not quoted, since some
// engines need no semicolon in front. Quotes and comments are read as PostgreSQL reads them; what
// it could read in two ways is refused.
Outcome GuardStatements(std::string_view sql, std::vector<std::string_view>& statements);

}  // namespace qv::standin
