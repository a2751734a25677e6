// The commands for groups, users and departments. In place of a status they answer a number as
// text: above 0 what was asked for, "0" when there is none or the request cannot be carried out,
// and "-3", with a text why behind it, when the directory refuses.
#pragma once

#include "Command.h"

namespace qv::standin {

// The number of records, and the records as one field when there are any.
void ListGroups(Services& services, Request& request, Reply& reply);
void ListUsers(Services& services, Request& request, Reply& reply);
void ListGroupUsers(Services& services, Request& request, Reply& reply);

// The identifier of what was made.
void MakeDepartment(Services& services, Request& request, Reply& reply);
void MakeGroup(Services& services, Request& request, Reply& reply);
void MakeUser(Services& services, Request& request, Reply& reply);

// How many users were named: they are in the group now.
void AddUsersToGroup(Services& services, Request& request, Reply& reply);

}  // namespace qv::standin
