#include "S3Errors.h"

#include <algorithm>
#include <array>

namespace qv::components {

namespace {

struct CodeResult {
  std::string_view code;
  QvTransferResult result;
};

// Codes that say more than the status.
constexpr std::array kCodes = {
    CodeResult{"InvalidAccessKeyId", QvTransfer_LoginRefused},
    CodeResult{"SignatureDoesNotMatch", QvTransfer_LoginRefused},
    CodeResult{"ExpiredToken", QvTransfer_LoginRefused},
    CodeResult{"InvalidToken", QvTransfer_LoginRefused},
    CodeResult{"NotSignedUp", QvTransfer_LoginRefused},
    // Clock skew: refused like an expired credential.
    CodeResult{"RequestTimeTooSkewed", QvTransfer_LoginRefused},
    CodeResult{"NoSuchKey", QvTransfer_NotFound},
    CodeResult{"NoSuchBucket", QvTransfer_NotFound},
    // The object has changed since the last attempt; the next one starts with the new object.
    CodeResult{"PreconditionFailed", QvTransfer_Broken},
    CodeResult{"InvalidRange", QvTransfer_Broken},
    // Damaged in transit.
    CodeResult{"BadDigest", QvTransfer_Broken},
    CodeResult{"IncompleteBody", QvTransfer_Broken},
    CodeResult{"XAmzContentSHA256Mismatch", QvTransfer_Broken},
    CodeResult{"RequestTimeout", QvTransfer_Broken},
    CodeResult{"InternalError", QvTransfer_Broken},
    CodeResult{"ServiceUnavailable", QvTransfer_Broken},
    CodeResult{"SlowDown", QvTransfer_Broken},
    CodeResult{"OperationAborted", QvTransfer_Broken},
    CodeResult{"NoSuchUpload", QvTransfer_Broken},
    CodeResult{"InvalidPart", QvTransfer_Broken},
    CodeResult{"AccessDenied", QvTransfer_Refused},
};

QvTransferResult ResultOfStatus(long status) {
  switch (status) {
    case 401:
      return QvTransfer_LoginRefused;
    case 404:
      return QvTransfer_NotFound;
    case 408:
    case 412:
    case 416:
    case 429:
      return QvTransfer_Broken;
    case 501:
    case 505:
    case 507:
      return QvTransfer_Refused;
    default:
      break;
  }
  if (status >= 500 && status < 600) return QvTransfer_Broken;
  // Redirects cannot be followed: the new host needs a new signature.
  if (status >= 300 && status < 500) return QvTransfer_Refused;
  return QvTransfer_BadAnswer;
}

}  // namespace

QvTransferResult ResultOfError(long status, std::string_view code) {
  if (status >= 200 && status < 300 && code.empty()) return QvTransfer_Success;
  const auto* const found = std::find_if(kCodes.begin(), kCodes.end(),
                                         [&](const CodeResult& one) { return one.code == code; });
  return found != kCodes.end() ? found->result : ResultOfStatus(status);
}

}  // namespace qv::components
