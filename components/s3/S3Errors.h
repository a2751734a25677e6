// Maps the errors of an S3 server to results.
#pragma once

#include <string_view>

#include "qvnetcall/transfer/ResultCodes.h"

namespace qv::components {

// `code` is the error code in the body of the answer, or empty if there is none. Returns Success
// only for a status from 200 to 299 without a code.
[[nodiscard]] QvTransferResult ResultOfError(long status, std::string_view code);

}  // namespace qv::components
