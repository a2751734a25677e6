// The commands that list, make and remove folders of the file store.
#pragma once

#include "Command.h"

namespace qv::standin {

void ListFolders(Services& services, Request& request, Reply& reply);
// Files whose names match, all of them.
void ListFiles(Services& services, Request& request, Reply& reply);
// The same, from one index to another.
void ListPage(Services& services, Request& request, Reply& reply);
void MakeFolder(Services& services, Request& request, Reply& reply);
void DeleteFolder(Services& services, Request& request, Reply& reply);
// The folders at the top, and how much room they have.
void ListSubStores(Services& services, Request& request, Reply& reply);

}  // namespace qv::standin
