// What the errors of an S3 server mean for a transfer.
#pragma once

#include <string_view>

#include "qvnetcall/transfer/ResultCodes.h"

namespace qv::components {

// `code` is that of the answer's body and may be empty, as it is when there was none to have a
// body. Success only for a status from 200 to 299 without a code.
[[nodiscard]] QvTransferResult ResultOfError(long status, std::string_view code);

}  // namespace qv::components
