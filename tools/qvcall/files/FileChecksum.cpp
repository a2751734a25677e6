#include "FileChecksum.h"

#include <zlib.h>

#include <fstream>
#include <vector>

#include "base/text/Numbers.h"

namespace qv::tool {

std::optional<std::uint32_t> ChecksumOf(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  std::vector<char> block(1U << 18U);
  uLong sum = crc32(0, nullptr, 0);
  while (in.read(block.data(), static_cast<std::streamsize>(block.size())) || in.gcount() > 0) {
    sum = crc32(sum, reinterpret_cast<const Bytef*>(block.data()), static_cast<uInt>(in.gcount()));
  }
  if (in.bad()) return std::nullopt;
  return static_cast<std::uint32_t>(sum);
}

std::optional<std::uint32_t> ReadChecksum(std::string_view text) {
  return text.size() <= 8 ? text::ParseNumber<std::uint32_t>(text, 16) : std::nullopt;
}

}  // namespace qv::tool
