// The commands that clients send: each reads its fields from the request and answers in the reply.
// CommandTable says which code means which.
#pragma once

#include "Command.h"

namespace qv::standin {

// The commands that work on no database.

void CheckLink(Services& services, Request& request, Reply& reply);
// Adds a line to the server's log.
void AppendLog(Services& services, Request& request, Reply& reply);
// What a client connects with that goes to the database itself.
void SendConnectionText(Services& services, Request& request, Reply& reply);

// What this server is: docs/records.md has its texts.
void SendProgramInfo(Services& services, Request& request, Reply& reply);

// The commands that are answered with rows.

void AnswerQuery(Services& services, Request& request, Reply& reply);
// The same, with the answer as a gzip file.
void AnswerPackedQuery(Services& services, Request& request, Reply& reply);
// A call of a stored procedure, or a query.
void AnswerProcedure(Services& services, Request& request, Reply& reply);

// The commands that change a database.

void RunStatement(Services& services, Request& request, Reply& reply);
// Several statements, all of them or none.
void RunBatch(Services& services, Request& request, Reply& reply);

// The commands that work on single files of the file store.

void UploadFile(Services& services, Request& request, Reply& reply);
void DownloadFile(Services& services, Request& request, Reply& reply);
void DeleteFile(Services& services, Request& request, Reply& reply);
void SendFileInfo(Services& services, Request& request, Reply& reply);
void CopyFile(Services& services, Request& request, Reply& reply);
// Of a file or a folder.
void Rename(Services& services, Request& request, Reply& reply);

// The commands that list, make and remove folders of the file store.

void ListFolders(Services& services, Request& request, Reply& reply);
// Files whose names match, all of them.
void ListFiles(Services& services, Request& request, Reply& reply);
// The same, from one index to another.
void ListPage(Services& services, Request& request, Reply& reply);
void MakeFolder(Services& services, Request& request, Reply& reply);
void DeleteFolder(Services& services, Request& request, Reply& reply);
// The folders at the top, and how much room they have.
void ListSubStores(Services& services, Request& request, Reply& reply);

// The commands that work on files by identifier, and on those inside pack files.

void UploadIdFile(Services& services, Request& request, Reply& reply);
void DownloadIdFile(Services& services, Request& request, Reply& reply);
void DeleteIdFile(Services& services, Request& request, Reply& reply);
void CopyIdFile(Services& services, Request& request, Reply& reply);
void FindIdFile(Services& services, Request& request, Reply& reply);
void SendIdChecksum(Services& services, Request& request, Reply& reply);
void SendIdPath(Services& services, Request& request, Reply& reply);
void SendPackedChecksum(Services& services, Request& request, Reply& reply);
// Out of a pack file to an identifier.
void CopyPackedFile(Services& services, Request& request, Reply& reply);

// The commands for groups, users and departments. In place of a status they answer a number as
// text: above 0 what was asked for, "0" when there is none or the request cannot be carried out,
// and "-3", with a text why behind it, when the directory refuses.

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
