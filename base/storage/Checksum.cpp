#include "Checksum.h"

#include <libdeflate.h>

namespace qv::storage {

// Small messages gain as well: zlib's tables must first come into the processor's cache.
std::uint32_t Crc32(std::uint32_t start, std::span<const unsigned char> bytes) {
  // A null pointer would be a request for the start value.
  if (bytes.empty()) return start;
  return ::libdeflate_crc32(start, bytes.data(), bytes.size());
}

}  // namespace qv::storage
