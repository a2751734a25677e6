// Words of messages and frames, in the byte order of the wire.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace qv {

// Both sides read the message block natively; it is little-endian because every system of the
// platform is.
static_assert(std::endian::native == std::endian::little);

inline std::uint32_t LoadU32(const void* from) {
  std::uint32_t value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

inline void StoreU32(void* to, std::uint32_t value) { std::memcpy(to, &value, sizeof value); }

inline std::uint64_t LoadU64(const void* from) {
  std::uint64_t value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

inline void StoreU64(void* to, std::uint64_t value) { std::memcpy(to, &value, sizeof value); }

}  // namespace qv
