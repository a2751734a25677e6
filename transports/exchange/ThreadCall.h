// What the calling thread has told the transport, and what its last call left: each of the two
// transport libraries has its own. Extensions; qvnetcall/transport/CallControl.h documents them.
#pragma once

#include <array>
#include <string>

#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/transport/NetworkProgress.h"
#include "transports/frame/Reason.h"

namespace qv::wire {

// Why a call failed. Unlike that of a Reason, the text is in the narrow code page.
struct CallError {
  error::Class error_class = error::kNone;
  std::string text;
};

struct CancelQuestion {
  int (*is_cancelled)(void*) = nullptr;
  void* context = nullptr;

  // Whether anybody could cancel.
  [[nodiscard]] bool IsSet() const { return is_cancelled != nullptr; }
  [[nodiscard]] bool Ask() const { return IsSet() && is_cancelled(context) != 0; }
};

struct ProgressListener {
  NetworkProgress callback = nullptr;
  void* context = nullptr;

  [[nodiscard]] bool IsSet() const { return callback != nullptr; }
  void Report(std::uint64_t done, std::uint64_t total, NetworkProgressKind kind) const {
    if (IsSet()) callback(done, total, kind, context);
  }
};

// Has no destructor, because MinGW frees thread_local objects before it destroys them.
struct ThreadCall {
  CancelQuestion cancel;
  ProgressListener progress;
  error::Class error_class = error::kNone;
  std::array<char, kMaxReasonText + 1> error_text{};

  // Keeps the error of a call. Never throws; without memory the text is empty.
  void Keep(const CallError& error) noexcept;
  // The same for a call that an exception ended.
  void KeepOutOfMemory() noexcept;
  // Copies the text, cut to `size` bytes with its NUL, and returns the class. `text` may be null.
  int CopyError(char* text, int size) const noexcept;
};

[[nodiscard]] ThreadCall& ThisThread();

}  // namespace qv::wire
