// Text in UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qv::text {

// The character U+FFFD, which stands for bytes that are not UTF-8.
inline constexpr char32_t kReplacementCharacter = 0xFFFD;
inline constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// One character at the start of a text, and how many bytes it takes there.
struct DecodedChar {
  char32_t value;
  std::size_t bytes;
  bool valid;
};

// Does the work of DecodeUtf8 for texts that begin with a byte above 0x7f.
[[nodiscard]] DecodedChar DecodeLongUtf8(std::string_view text);

// Decodes the first character of `text`, which must not be empty. A byte that does not begin a
// well-formed character (one that is cut, longer than necessary, half of a pair or above U+10FFFF)
// is returned alone as not valid, with the byte as its value.
[[nodiscard]] inline DecodedChar DecodeUtf8(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  return first < 0x80 ? DecodedChar{first, 1, true} : DecodeLongUtf8(text);
}

// Returns whether all of `text` is well-formed UTF-8.
[[nodiscard]] bool IsUtf8(std::string_view text);

// Returns whether `c` continues a character that began before it. Skipping such bytes counts
// characters, and steps over them, in text that need not be well-formed.
constexpr bool ContinuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Returns the beginning of `text` up to `longest` bytes, without the start of a character that goes
// on after them.
constexpr std::string_view BeginningOf(std::string_view text, std::size_t longest) {
  constexpr std::size_t kMostContinued = 3;
  if (text.size() <= longest) return text;
  std::size_t end = longest;
  while (end > 0 && longest - end < kMostContinued && ContinuesCharacter(text[end])) --end;
  return text.substr(0, end);
}

// Returns whether `character` is not to be shown, because a terminal, a log or a reader could take
// it for more than text: a control of ASCII or Latin-1, a separator of lines or paragraphs, or one
// that changes the direction of the text around it.
constexpr bool IsControlCharacter(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x61C ||
         character == 0x200E || character == 0x200F ||
         (character >= 0x2028 && character <= 0x202E) ||
         (character >= 0x2066 && character <= 0x2069);
}

// Appends `character`, or U+FFFD if there is no such character.
void AppendUtf8(char32_t character, std::string& text);

}  // namespace qv::text
