// Folders on an FTP server.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "FtpSession.h"

namespace qv::components {

// Removes a folder with what it holds; what has not gone when something fails, stays. Links in it
// are removed, not followed. BadArgument for the root, and for a path with a step upward.
[[nodiscard]] QvTransferResult RemoveFtpFolder(FtpSession& session, const std::string& path);

// The names in a listing, without the folder itself and the one above it. `has_facts`: each line
// begins with facts about the name. Nothing when a line cannot be one of such a listing, or there
// are more than `most` of them.
[[nodiscard]] std::optional<std::vector<std::string>> NamesInListing(const std::string& listing,
                                                                     bool has_facts,
                                                                     std::size_t most);

}  // namespace qv::components
