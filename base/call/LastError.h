// Why the last call of this thread failed. CRvoServer::GetLastErrorText gives it to hosts.
//
// Every call that can fail clears the error when it begins and sets it when it fails. An Exchange
// does both with what the transport says; what is refused without one is noted where that is
// decided. A call that only looks at the state of the library holds a KeptError.
#pragma once

#include <string>
#include <string_view>

#include "qvnetcall/ResultCodes.h"

namespace qv::call {

// The longest text, in bytes.
inline constexpr std::size_t kLongestError = 1000;

struct Error {
  error::Class error_class = error::kNone;
  // In the narrow code page, valid there, at most kLongestError bytes, without control characters.
  std::string text;
};

[[nodiscard]] const Error& LastError();

// Replaces the error of this thread. The text is in the narrow code page; it is cut and cleaned as
// needed. Without memory only the class is kept. These functions never throw.
void SetError(error::Class error_class, std::string_view text) noexcept;
// The same, unless there is an error already: whoever found it knows more.
void SetErrorIfNone(error::Class error_class, std::string_view text) noexcept;
void SetCancelled() noexcept;
void ClearError() noexcept;

// Puts the error of this thread back when it is destroyed, whatever was noted meanwhile.
class KeptError {
 public:
  KeptError() : error_(LastError()) {}
  ~KeptError();
  KeptError(const KeptError&) = delete;
  KeptError& operator=(const KeptError&) = delete;

 private:
  Error error_;
};

}  // namespace qv::call
