// Why the last call of this thread failed. CRvoServer::GetLastErrorText gives it to hosts.
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

}  // namespace qv::call
