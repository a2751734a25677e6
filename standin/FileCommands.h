// The commands that work on single files of the file store.
#pragma once

#include "Command.h"

namespace qv::standin {

void UploadFile(Services& services, Request& request, Reply& reply);
void DownloadFile(Services& services, Request& request, Reply& reply);
void DeleteFile(Services& services, Request& request, Reply& reply);
void SendFileInfo(Services& services, Request& request, Reply& reply);
void CopyFile(Services& services, Request& request, Reply& reply);
// Of a file or a folder.
void Rename(Services& services, Request& request, Reply& reply);

}  // namespace qv::standin
