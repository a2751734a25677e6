// Table names of three parts, for databases that know no more than one.
#pragma once

#include <string>
#include <string_view>

#include "base/text/SqlText.h"

namespace qv::standin {

// Gives the statement with every "X.dbo.T" and "dbo.T" as "T": the tables that clients name so
// live in the database that the call names, whatever X says. Parts may stand in square brackets;
// what the engine's `dialect` reads as quoted or
// as a comment stays as it is.
[[nodiscard]] std::string WithPlainTableNames(std::string_view sql, text::SqlDialect dialect);

}  // namespace qv::standin
