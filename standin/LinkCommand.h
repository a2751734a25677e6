// The commands that work on no database.
#pragma once

#include "Command.h"

namespace qv::standin {

void CheckLink(Services& services, Request& request, Reply& reply);
// Adds a line to the server's log.
void AppendLog(Services& services, Request& request, Reply& reply);
// What a client connects with that goes to the database itself.
void SendConnectionText(Services& services, Request& request, Reply& reply);

// What this server is: docs/records.md has its texts.
void SendProgramInfo(Services& services, Request& request, Reply& reply);

}  // namespace qv::standin
