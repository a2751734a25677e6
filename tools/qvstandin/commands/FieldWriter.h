// The fields of a reply, back to back, as the client reads them.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace qv::standin {

class FieldWriter {
 public:
  // A text of at least one character.
  void Text(std::string_view text) { Append(text.data(), text.size()); }
  void Integer(std::int32_t value) { Append(&value, sizeof value); }
  // At least one byte.
  void Bytes(std::string_view bytes) { Append(bytes.data(), bytes.size()); }

  [[nodiscard]] const std::vector<unsigned char>& Payload() const { return payload_; }

 private:
  void Append(const void* body, std::size_t length);

  std::vector<unsigned char> payload_;
};

}  // namespace qv::standin
