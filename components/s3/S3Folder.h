// The objects below a folder, which the server itself knows nothing of.
#pragma once

#include "S3Path.h"
#include "S3Session.h"

namespace qv::components {

// Deletes them all, as far as it goes: what cannot be deleted is told at the end, by the first that
// could not. NotFound when there was none.
[[nodiscard]] QvTransferResult DeleteBelow(S3Session& session, const S3Path& folder);

}  // namespace qv::components
