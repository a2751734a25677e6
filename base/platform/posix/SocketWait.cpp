#include "base/platform/SocketWait.h"

#include <poll.h>

#include <cerrno>

#include "base/text/Numbers.h"

namespace qv::platform {

namespace {

short WantedFor(SocketEvent event) {
  switch (event) {
    case SocketEvent::kReadable:
      return POLLIN;
    case SocketEvent::kWritable:
      return POLLOUT;
    case SocketEvent::kEither:
      break;
  }
  return POLLIN | POLLOUT;
}

}  // namespace

SocketWait WaitForSocket(std::uintptr_t socket, SocketEvent event,
                         std::chrono::milliseconds longest, int& system_error) {
  pollfd waited{.fd = static_cast<int>(socket), .events = WantedFor(event), .revents = 0};
  const int ready = ::poll(&waited, 1, text::SaturatedTo32Bits(longest.count()));
  if (ready > 0) return SocketWait::kReady;
  if (ready == 0 || errno == EINTR) return SocketWait::kNotYet;
  system_error = errno;
  return SocketWait::kFailed;
}

}  // namespace qv::platform
