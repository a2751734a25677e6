#include "ServerLog.h"

#include <fmt/format.h>

#include <fstream>

#include "base/platform/Platform.h"
#include "base/text/Letters.h"

namespace qv::standin {

std::string OnOneLine(std::string_view text) {
  std::string line;
  for (const char ch : text) {
    if (text::IsControl(ch) || ch == '\\') {
      line += fmt::format("\\x{:02x}", static_cast<unsigned char>(ch));
    } else {
      line += ch;
    }
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
