#include "LastError.h"

#include <exception>
#include <utility>

#include "base/platform/PlainText.h"
#include "base/platform/ThreadSlot.h"

namespace qv::call {

namespace {

Error& ErrorOfThisThread() { return platform::OfThisThread<Error>(); }

}  // namespace

const Error& LastError() { return ErrorOfThisThread(); }

void SetError(error::Class error_class, std::string_view text) noexcept {
  try {
    Error& error = ErrorOfThisThread();
    error.error_class = error_class;
    error.text.clear();
    error.text = platform::PlainText(text, kLongestError);
  } catch (const std::exception&) {
    // The class says enough.
  }
}

void SetErrorIfNone(error::Class error_class, std::string_view text) noexcept {
  try {
    if (LastError().error_class == error::kNone) SetError(error_class, text);
  } catch (const std::exception&) {
    // Without memory for the thread's error there is none.
  }
}

void SetCancelled() noexcept { SetError(error::kCancelled, "cancelled"); }

void ClearError() noexcept { SetError(error::kNone, {}); }

// The thread's error exists since the constructor, so this cannot fail.
KeptError::~KeptError() { std::swap(ErrorOfThisThread(), error_); }

}  // namespace qv::call
