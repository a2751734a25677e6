// Logical databases in PostgreSQL, without a driver between it and the server.
#pragma once

#include <memory>

#include "tools/qvstandin/databases/Database.h"
#include "tools/qvstandin/databases/EngineRequest.h"

namespace qv::standin {

// Returns the database of an ODBC connection text that names PostgreSQL's Unicode driver. Results
// are those of OdbcDatabase, and what only the driver can do still goes through it. Returns null if
// the text holds settings that only the driver knows, or if the server was built without libpq.
[[nodiscard]] std::unique_ptr<Database> OpenPostgres(const EngineAccess& access);

}  // namespace qv::standin
