#include "ThreadCall.h"

#include <algorithm>
#include <exception>
#include <string_view>

#include "base/platform/PlainText.h"

namespace qv::wire {

void ThreadCall::Keep(const CallError& error) noexcept {
  error_class = error.error_class;
  error_text.front() = '\0';
  try {
    const std::string plain = platform::PlainText(error.text, kMaxReasonText);
    *std::ranges::copy(plain, error_text.begin()).out = '\0';
  } catch (const std::exception&) {
    // The class says enough.
  }
}

void ThreadCall::KeepOutOfMemory() noexcept {
  constexpr std::string_view kText("out of memory or threads\0", 25);
  error_class = error::kLocal;
  std::ranges::copy(kText, error_text.begin());
}

int ThreadCall::CopyError(char* text, int size) const noexcept {
  if (text == nullptr || size <= 0) return error_class;
  *text = '\0';
  try {
    const std::string_view whole = error_text.data();
    const std::string fit = platform::PlainText(whole, static_cast<std::size_t>(size) - 1);
    *std::ranges::copy(fit, text).out = '\0';
  } catch (const std::exception&) {
    // The class says enough.
  }
  return error_class;
}

ThreadCall& ThisThread() {
  static thread_local ThreadCall call;
  return call;
}

}  // namespace qv::wire
