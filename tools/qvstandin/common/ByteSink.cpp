#include "ByteSink.h"

#include <fmt/format.h>

#include "base/text/Numbers.h"
#include "transports/frame/Frame.h"

namespace qv::standin {

bool Checksum::Write(std::string_view bytes) {
  checksum_ =
      wire::Crc32(checksum_, {reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
  size_ += bytes.size();
  return true;
}

std::string Checksum::Text() const { return fmt::format("{:08X}", checksum_); }

std::int32_t Checksum::Size() const { return text::SaturatedTo32Bits(size_); }

}  // namespace qv::standin
