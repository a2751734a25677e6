// The commands that work on files by identifier, and on those inside pack files.
#pragma once

#include "Command.h"

namespace qv::standin {

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

}  // namespace qv::standin
