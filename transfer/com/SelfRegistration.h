#pragma once

namespace qv {

// Has the FTP component beside the program that runs enter itself in the registry, when it is there
// and knows how; what comes of it is not told.
void RegisterFtpComponent();

}  // namespace qv
