#include "base/text/Utf8.h"

namespace qv::text {

namespace {

// Returns how many bytes a character that begins with `lead` has, or 0 if none begins so.
std::size_t LengthByLead(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead < 0xE0) return 2;
  if (lead >= 0xE0 && lead < 0xF0) return 3;
  if (lead >= 0xF0 && lead < 0xF5) return 4;
  return 0;
}

bool IsHalfOfPair(char32_t value) { return value >= 0xD800 && value <= 0xDFFF; }

bool IsCharacter(char32_t value) { return value <= 0x10FFFF && !IsHalfOfPair(value); }

// Returns whether `value` is a character that takes all of `bytes`.
bool IsWellFormed(char32_t value, std::size_t bytes) {
  const char32_t least = bytes == 4 ? 0x10000 : bytes == 3 ? 0x800 : 0;
  return value >= least && IsCharacter(value);
}

}  // namespace

DecodedChar DecodeLongUtf8(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const DecodedChar invalid{lead, 1, false};
  const std::size_t length = LengthByLead(lead);
  if (length < 2 || length > text.size()) return invalid;
  char32_t value = lead & (0x7FU >> length);
  for (const char c : text.substr(1, length - 1)) {
    if (!ContinuesCharacter(c)) return invalid;
    value = value << 6 | (static_cast<unsigned char>(c) & 0x3FU);
  }
  if (!IsWellFormed(value, length)) return invalid;
  return {value, length, true};
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const DecodedChar next = DecodeUtf8(text);
    if (!next.valid) return false;
    text.remove_prefix(next.bytes);
  }
  return true;
}

void AppendUtf8(char32_t character, std::string& text) {
  if (!IsCharacter(character)) character = kReplacementCharacter;
  const auto tail = [&](int shift) {
    text += static_cast<char>(0x80 | ((character >> shift) & 0x3F));
  };
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += static_cast<char>(0xC0 | character >> 6);
    tail(0);
  } else if (character < 0x10000) {
    text += static_cast<char>(0xE0 | character >> 12);
    tail(6);
    tail(0);
  } else {
    text += static_cast<char>(0xF0 | character >> 18);
    tail(12);
    tail(6);
    tail(0);
  }
}

}  // namespace qv::text
