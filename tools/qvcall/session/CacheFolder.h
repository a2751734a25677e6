#pragma once

#include <optional>
#include <string>

namespace qv::tool {

// The user's own folder for kept answers, in the place where caches belong; its parents exist
// afterwards when they can be made. None when the environment names no such place.
[[nodiscard]] std::optional<std::string> DefaultCacheFolder();

}  // namespace qv::tool
