#include "Retries.h"

#include <algorithm>

namespace qv::components {

namespace {

constexpr long kMostTries = 100;
constexpr std::chrono::milliseconds kFirstPause{100};
constexpr std::chrono::milliseconds kLongestPause{5000};

}  // namespace

bool EndsRun(QvTransferResult result) {
  switch (result) {
    case QvTransfer_NotLoggedIn:
    case QvTransfer_CannotConnect:
    case QvTransfer_LoginRefused:
    case QvTransfer_NotTrusted:
    case QvTransfer_Stopped:
      return true;
    default:
      return false;
  }
}

Retries::Retries(long option) : left_(std::clamp(option, 0L, kMostTries)) {}

bool Retries::AnotherAfter(QvTransferResult result) {
  // A server that cannot be reached right after an interruption is the same outage.
  const bool is_outage = has_broken_ && result == QvTransfer_CannotConnect;
  has_broken_ = is_outage || result == QvTransfer_Broken;
  return has_broken_ && left_-- > 0;
}

std::chrono::milliseconds Retries::NextPause() {
  const std::chrono::milliseconds pause = pause_;
  pause_ = pause.count() == 0 ? kFirstPause : std::min(2 * pause, kLongestPause);
  return pause;
}

}  // namespace qv::components
