#include "NarrowText.h"

namespace qv::tool {
namespace {

// How many bytes a character that begins with `lead` has; 0 when none does.
std::size_t LengthByLead(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xc2 && lead < 0xe0) return 2;
  if (lead >= 0xe0 && lead < 0xf0) return 3;
  if (lead >= 0xf0 && lead < 0xf5) return 4;
  return 0;
}

// Not a surrogate, not beyond the last character, and not longer than it has to be.
bool IsWellFormed(char32_t value, std::size_t bytes) {
  if (bytes == 3) return value >= 0x800 && (value < 0xd800 || value > 0xdfff);
  if (bytes == 4) return value >= 0x10000 && value <= 0x10ffff;
  return true;
}

}  // namespace

DecodedChar DecodeUtf8(std::string_view text) {
  const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  const unsigned char lead = byte(0);
  const DecodedChar invalid{lead, 1, false};
  const std::size_t length = LengthByLead(lead);
  if (length == 1) return {lead, 1, true};
  if (length == 0 || length > text.size()) return invalid;
  char32_t value = lead & (0x7fU >> length);
  for (std::size_t at = 1; at < length; ++at) {
    if ((byte(at) & 0xc0U) != 0x80U) return invalid;
    value = (value << 6U) | (byte(at) & 0x3fU);
  }
  if (!IsWellFormed(value, length)) return invalid;
  return {value, length, true};
}

}  // namespace qv::tool
