#include "ServerLog.h"

#include <fmt/format.h>

#include <fstream>

#include "base/platform/Platform.h"
#include "base/text/Utf8.h"

namespace qv::standin {

std::string OnOneLine(std::string_view text) {
  std::string line;
  while (!text.empty()) {
    const text::DecodedChar next = text::DecodeUtf8(text);
    const std::string_view bytes = text.substr(0, next.bytes);
    text.remove_prefix(next.bytes);
    const bool is_hidden = next.valid && text::IsControlCharacter(next.value);
    if (!is_hidden && bytes != "\\") {
      line += bytes;
      continue;
    }
    for (const char ch : bytes) line += fmt::format("\\x{:02x}", static_cast<unsigned char>(ch));
  }
  return line;
}

bool ServerLog::Append(std::int32_t kind, std::string_view text) {
  const std::string line = fmt::format("{} {} {}\n", platform::UnixTime(), kind, OnOneLine(text));
  const std::lock_guard lock(mutex_);
  std::ofstream file(path_, std::ios::app | std::ios::binary);
  file << line << std::flush;
  return file.good();
}

}  // namespace qv::standin
