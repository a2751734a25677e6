// The checksum of frames, of files that are moved, and of answers that are kept.
#pragma once

#include <cstdint>
#include <span>

namespace qv::storage {

// Continues a CRC-32 (of zlib, PNG and Ethernet): returns the checksum of the bytes that `start` is
// the checksum of, followed by `bytes`. Start with 0.
[[nodiscard]] std::uint32_t Crc32(std::uint32_t start, std::span<const unsigned char> bytes);

}  // namespace qv::storage
