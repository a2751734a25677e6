#include "Checksum.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

#include "transports/frame/Frame.h"

namespace qv::standin {

bool Checksum::Write(std::string_view bytes) {
  checksum_ =
      wire::Crc32(checksum_, {reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
  size_ += bytes.size();
  return true;
}

std::string Checksum::Text() const { return fmt::format("{:08X}", checksum_); }

std::int32_t Checksum::Size() const {
  constexpr std::uint64_t kMost = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(size_, kMost));
}

}  // namespace qv::standin
