// The commands that are answered with rows.
#pragma once

#include "Command.h"

namespace qv::standin {

void RunQuery(Services& services, Request& request, Reply& reply);
// The same, with the answer as a gzip file.
void RunPackedQuery(Services& services, Request& request, Reply& reply);
// A call of a stored procedure, or a query.
void RunProcedure(Services& services, Request& request, Reply& reply);

}  // namespace qv::standin
