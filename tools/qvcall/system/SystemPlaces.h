// Where each system keeps things, and what messages call those places there.
#pragma once

#include <string>
#include <string_view>

namespace qv::tool {

// The services that queued files go to.
enum class Service { kFtp, kCloud };

// The folder for the caches of this user's programs; empty when the environment does not name it.
[[nodiscard]] std::string CachesOfUser();
// Says that the environment does not.
[[nodiscard]] std::string_view NoCachesOfUser();

// What to do when there is no component for the service.
[[nodiscard]] std::string_view AdviceOnMissing(Service service);

}  // namespace qv::tool
