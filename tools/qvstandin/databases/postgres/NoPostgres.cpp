// For systems without libpq, where the ODBC driver does everything.
#include "Postgres.h"

namespace qv::standin {

std::unique_ptr<Database> OpenPostgres(const EngineAccess& /*access*/) { return nullptr; }

}  // namespace qv::standin
