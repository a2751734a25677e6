// Table names of three parts, for databases that know no more than one.
#pragma once

#include <string>
#include <string_view>

namespace qv::standin {

// Gives the statement with every "X.dbo.T" and "dbo.T" as "T": the tables that clients name so
// live in the database that the call names, whatever X says. Parts may stand in square brackets;
// what is quoted, and comments, stay as they are.
[[nodiscard]] std::string WithPlainTableNames(std::string_view sql);

}  // namespace qv::standin
