#include "FileChecksum.h"

#include <zlib.h>

#include <charconv>
#include <fstream>
#include <vector>

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
  std::uint32_t sum = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, sum, 16);
  if (text.size() > 8 || error != std::errc() || stop != end) return std::nullopt;
  return sum;
}

}  // namespace qv::tool
