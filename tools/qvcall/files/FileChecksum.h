#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qv::tool {

// The CRC-32 of a local file; none when it cannot be read.
[[nodiscard]] std::optional<std::uint32_t> ChecksumOf(const std::string& file);

// The CRC-32 that a server wrote as hexadecimal digits, at most eight; none when it is none.
[[nodiscard]] std::optional<std::uint32_t> ReadChecksum(std::string_view text);

}  // namespace qv::tool
