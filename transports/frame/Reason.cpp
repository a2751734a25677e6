#include "Reason.h"

#include "base/text/Utf8.h"
#include "message/LittleEndian.h"

namespace qv::wire {

namespace {

constexpr std::size_t kClassSize = 4;

error::Class ServersClass(std::uint32_t number) {
  const bool is_known = number >= error::kSyntax && number <= error::kInternal;
  return is_known ? static_cast<error::Class>(number) : error::kInternal;
}

}  // namespace

std::string ReasonText(std::string_view text) {
  std::string clean;
  while (!text.empty()) {
    const text::DecodedChar next = text::DecodeUtf8(text);
    const std::string_view wanted = !next.valid ? text::kReplacement
                                    : text::IsControlCharacter(next.value)
                                        ? std::string_view(" ")
                                        : text.substr(0, next.bytes);
    if (clean.size() + wanted.size() > kMaxReasonText) break;
    clean += wanted;
    text.remove_prefix(next.bytes);
  }
  // Blanks say nothing; whoever shows the text has one of its own for that.
  return clean.find_first_not_of(' ') != std::string::npos ? clean : std::string();
}

std::vector<unsigned char> EncodeReason(const Reason& reason) {
  if (reason.error_class == error::kNone) return {};
  std::vector<unsigned char> bytes(kClassSize);
  StoreU32(bytes.data(), static_cast<std::uint32_t>(reason.error_class));
  const std::string text = ReasonText(reason.text);
  bytes.insert(bytes.end(), text.begin(), text.end());
  return bytes;
}

bool IsReasonLength(std::uint32_t length) {
  return length == 0 || (length >= kClassSize && length <= kClassSize + kMaxReasonText);
}

Reason DecodeReason(Bytes bytes) {
  if (bytes.size() < kClassSize) return {};
  const Bytes text = bytes.subspan(kClassSize);
  return {ServersClass(LoadU32(bytes.data())),
          ReasonText({reinterpret_cast<const char*>(text.data()), text.size()})};
}

}  // namespace qv::wire
