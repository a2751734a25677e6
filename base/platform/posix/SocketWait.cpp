#include "base/platform/SocketWait.h"

#include <poll.h>

#include <cerrno>

#include "base/text/Numbers.h"

namespace qv::platform {

SocketWait WaitForSocket(std::uintptr_t socket, SocketEvent event,
                         std::chrono::milliseconds longest, int& system_error) {
  const short wanted = event == SocketEvent::kReadable ? POLLIN : POLLOUT;
  pollfd waited{.fd = static_cast<int>(socket), .events = wanted, .revents = 0};
  const int ready = ::poll(&waited, 1, text::SaturatedTo32Bits(longest.count()));
  if (ready > 0) return SocketWait::kReady;
  if (ready == 0 || errno == EINTR) return SocketWait::kNotYet;
  system_error = errno;
  return SocketWait::kFailed;
}

}  // namespace qv::platform
