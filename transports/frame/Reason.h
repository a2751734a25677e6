// Why a call failed: a class and a sentence, as frames of version 2 carry it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Frame.h"
#include "qvnetcall/ResultCodes.h"

namespace qv::wire {

// The longest text of a reason, in bytes.
inline constexpr std::size_t kMaxReasonText = 1000;

struct Reason {
  error::Class error_class = error::kNone;
  // UTF-8, at most kMaxReasonText bytes, without control characters.
  std::string text;

  bool operator==(const Reason&) const = default;
};

// Makes any bytes the text of a reason: control characters become blanks, bytes that are not UTF-8
// become U+FFFD, and a text that is too long is cut between two characters. A text of nothing but
// blanks becomes empty.
[[nodiscard]] std::string ReasonText(std::string_view text);

// A reason is encoded as its class, 4 bytes, and its text. No reason (kNone) has no bytes. The text
// is made what a reason's text must be.
[[nodiscard]] std::vector<unsigned char> EncodeReason(const Reason& reason);
[[nodiscard]] bool IsReasonLength(std::uint32_t length);
// Reads bytes whose length IsReasonLength accepts. Whatever they hold, the result is a valid
// reason: a class that is not one of the server's becomes kInternal, and the text is treated as
// ReasonText does.
[[nodiscard]] Reason DecodeReason(Bytes bytes);

}  // namespace qv::wire
