#include "base/text/Percent.h"

#include "base/text/Letters.h"
#include "base/text/Numbers.h"

namespace qv::text {

namespace {

bool IsUnreserved(char c) {
  return IsLetterOrDigit(c) || c == '-' || c == '.' || c == '_' || c == '~';
}

bool IsCode(std::string_view text) {
  return text.size() > 2 && text[0] == '%' && HexDigitValue(text[1]) >= 0 &&
         HexDigitValue(text[2]) >= 0;
}

}  // namespace

std::string PercentEncoded(std::string_view text, std::string_view kept) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string encoded;
  encoded.reserve(text.size());
  for (const char c : text) {
    if (IsUnreserved(c) || kept.find(c) != std::string_view::npos) {
      encoded += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    encoded += {'%', kDigits[byte >> 4], kDigits[byte & 0xF]};
  }
  return encoded;
}

std::string PercentDecoded(std::string_view encoded) {
  std::string decoded;
  decoded.reserve(encoded.size());
  while (!encoded.empty()) {
    if (IsCode(encoded)) {
      decoded += static_cast<char>(HexDigitValue(encoded[1]) * 16 + HexDigitValue(encoded[2]));
      encoded.remove_prefix(3);
    } else {
      decoded += encoded.front() == '+' ? ' ' : encoded.front();
      encoded.remove_prefix(1);
    }
  }
  return decoded;
}

}  // namespace qv::text
