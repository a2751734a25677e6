// Fills the folder of a query cache, as if answers had been kept for a long time.
#pragma once

#include <string>

namespace qv::bench {

// Adds entries to the index in `folder`, each with a copy of an answer that is there, until
// there are `entries`. The library must have closed the folder. Throws std::runtime_error.
void FillCache(const std::string& folder, int entries);

}  // namespace qv::bench
