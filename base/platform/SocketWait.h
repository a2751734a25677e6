// Waiting for one socket, on the thread that uses it.
#pragma once

#include <chrono>
#include <cstdint>

namespace qv::platform {

enum class SocketEvent { kReadable, kWritable, kEither };

enum class SocketWait {
  kReady,   // the next operation does not block: it moves bytes, or says what is wrong
  kNotYet,  // the time is over, or a signal came
  kFailed,  // `system_error` says why
};

// Waits at most for `longest`. `socket` is the system's handle. Any thread.
[[nodiscard]] SocketWait WaitForSocket(std::uintptr_t socket, SocketEvent event,
                                       std::chrono::milliseconds longest, int& system_error);

}  // namespace qv::platform
