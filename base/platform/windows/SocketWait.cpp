#include "base/platform/SocketWait.h"

#include <winsock2.h>

#include "base/text/Numbers.h"

namespace qv::platform {

SocketWait WaitForSocket(std::uintptr_t socket, SocketEvent event,
                         std::chrono::milliseconds longest, int& system_error) {
  const SHORT wanted = event == SocketEvent::kReadable ? POLLRDNORM : POLLWRNORM;
  WSAPOLLFD waited{.fd = static_cast<SOCKET>(socket), .events = wanted, .revents = 0};
  const int ready = ::WSAPoll(&waited, 1, text::SaturatedTo32Bits(longest.count()));
  if (ready != SOCKET_ERROR) return ready != 0 ? SocketWait::kReady : SocketWait::kNotYet;
  system_error = ::WSAGetLastError();
  return SocketWait::kFailed;
}

}  // namespace qv::platform
