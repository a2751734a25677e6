// Folders on an FTP server.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "FtpSession.h"

namespace qv::components {

// Removes a folder and its contents. Links in it are removed, not followed. Stops at the first
// failure and leaves the rest. Returns BadArgument for the root and for a path with "." or "..".
[[nodiscard]] QvTransferResult RemoveFtpFolder(FtpSession& session, const std::string& path);

// Returns the names in a listing, except the folder itself and the one above it. `has_facts` means
// that each line starts with facts about the name (MLSD). Returns nothing if a line is malformed or
// there are more than `most` names.
[[nodiscard]] std::optional<std::vector<std::string>> NamesInListing(const std::string& listing,
                                                                     bool has_facts,
                                                                     std::size_t most);

}  // namespace qv::components
