// What the results of transfer components mean, in words.
#pragma once

#include "QueueClient.h"
#include "tools/qvcall/output/ReturnCodes.h"

namespace qv::tool {

// The words for a result of any call; every value has some. A component of another maker may mean
// something else by it.
[[nodiscard]] ReturnCode ExplainTransfer(Service service, long result);

}  // namespace qv::tool
