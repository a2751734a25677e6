#include "base/platform/SocketWait.h"

#include <winsock2.h>

#include "base/text/Numbers.h"

namespace qv::platform {

namespace {

SHORT WantedFor(SocketEvent event) {
  switch (event) {
    case SocketEvent::kReadable:
      return POLLRDNORM;
    case SocketEvent::kWritable:
      return POLLWRNORM;
    case SocketEvent::kEither:
      break;
  }
  return POLLRDNORM | POLLWRNORM;
}

}  // namespace

SocketWait WaitForSocket(std::uintptr_t socket, SocketEvent event,
                         std::chrono::milliseconds longest, int& system_error) {
  WSAPOLLFD waited{.fd = static_cast<SOCKET>(socket), .events = WantedFor(event), .revents = 0};
  const int ready = ::WSAPoll(&waited, 1, text::SaturatedTo32Bits(longest.count()));
  if (ready != SOCKET_ERROR) return ready != 0 ? SocketWait::kReady : SocketWait::kNotYet;
  system_error = ::WSAGetLastError();
  return SocketWait::kFailed;
}

}  // namespace qv::platform
