// Whether the calls for files and folders work at all.
#pragma once

#include "server/ModuleState.h"

namespace qv {

// True while the client is offline because the network is bad. Only the stored word counts: neither
// the network nor the server's kind is asked for, and work that is offline by choice goes on.
[[nodiscard]] inline bool NetworkIsHeldForBad() {
  return ModuleState::Get().cache.State() == cache_state::kNetworkBad;
}

}  // namespace qv
