// The commands that change a database.
#pragma once

#include "Command.h"

namespace qv::standin {

void RunStatement(Services& services, Request& request, Reply& reply);
// Several statements, all of them or none.
void RunBatch(Services& services, Request& request, Reply& reply);

}  // namespace qv::standin
