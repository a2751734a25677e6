// ODBC connection texts in the words of libpq.
#pragma once

#include <optional>

#include "PostgresConnection.h"
#include "base/text/ConnectionText.h"

namespace qv::standin {

// Returns what libpq needs to connect as PostgreSQL's Unicode driver would. Returns nothing if the
// text names another driver, or anything else than a server, a database, a user and how to connect.
[[nodiscard]] std::optional<PostgresConnection::Parameters> ParametersOf(
    const text::ConnectionText& text);

}  // namespace qv::standin
