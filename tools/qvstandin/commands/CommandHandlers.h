// The commands that clients send. Each reads its fields from the request and adds its answer to the
// reply. CommandTable.cpp lists their codes.
#pragma once

#include "Command.h"

namespace qv::standin {

// Commands about the server itself.

void CheckLink(Services& services, Request& request, Reply& reply);
// Adds a line to the server's log.
void AppendLog(Services& services, Request& request, Reply& reply);
// Sends the connection text for clients that connect to the database directly.
void SendConnectionText(Services& services, Request& request, Reply& reply);

// Describes this server; docs/records.md lists the texts.
void SendProgramInfo(Services& services, Request& request, Reply& reply);

// Commands that return rows.

void AnswerQuery(Services& services, Request& request, Reply& reply);
// The same as AnswerQuery, with a gzip file as the answer.
void AnswerPackedQuery(Services& services, Request& request, Reply& reply);
// Calls a stored procedure, or runs a query.
void AnswerProcedure(Services& services, Request& request, Reply& reply);

// Commands that change a database.

void RunStatement(Services& services, Request& request, Reply& reply);
// Runs several statements: all of them or none.
void RunBatch(Services& services, Request& request, Reply& reply);

// Commands on single files of the file store.

void UploadFile(Services& services, Request& request, Reply& reply);
void DownloadFile(Services& services, Request& request, Reply& reply);
void DeleteFile(Services& services, Request& request, Reply& reply);
void SendFileInfo(Services& services, Request& request, Reply& reply);
void CopyFile(Services& services, Request& request, Reply& reply);
// Renames a file or a folder.
void Rename(Services& services, Request& request, Reply& reply);

// Commands that list, make and remove folders of the file store.

void ListFolders(Services& services, Request& request, Reply& reply);
// Lists all files whose names match.
void ListFiles(Services& services, Request& request, Reply& reply);
// Lists the matching files from one index to another.
void ListPage(Services& services, Request& request, Reply& reply);
void MakeFolder(Services& services, Request& request, Reply& reply);
void DeleteFolder(Services& services, Request& request, Reply& reply);
// Lists the folders of the top folder, with the free space on their disk.
void ListSubStores(Services& services, Request& request, Reply& reply);

// Commands on files by identifier, and on files in pack files.

void UploadIdFile(Services& services, Request& request, Reply& reply);
void DownloadIdFile(Services& services, Request& request, Reply& reply);
void DeleteIdFile(Services& services, Request& request, Reply& reply);
void CopyIdFile(Services& services, Request& request, Reply& reply);
void FindIdFile(Services& services, Request& request, Reply& reply);
void SendIdChecksum(Services& services, Request& request, Reply& reply);
void SendIdPath(Services& services, Request& request, Reply& reply);
void SendPackedChecksum(Services& services, Request& request, Reply& reply);
// Unpacks a file of a pack file and stores it under an identifier.
void CopyPackedFile(Services& services, Request& request, Reply& reply);

// Commands on groups, users and departments. In place of a status they answer with a decimal
// number: above 0, the result; "0" if there is none or the request failed; "-3", followed by a text
// with the reason, if the directory refused the request.

// These answer with the number of records, and with the records in one field if there are any.
void ListGroups(Services& services, Request& request, Reply& reply);
void ListUsers(Services& services, Request& request, Reply& reply);
void ListGroupUsers(Services& services, Request& request, Reply& reply);

// These answer with the identifier of the new object.
void MakeDepartment(Services& services, Request& request, Reply& reply);
void MakeGroup(Services& services, Request& request, Reply& reply);
void MakeUser(Services& services, Request& request, Reply& reply);

// Answers with the number of users that the request names; they are in the group now.
void AddUsersToGroup(Services& services, Request& request, Reply& reply);

}  // namespace qv::standin
