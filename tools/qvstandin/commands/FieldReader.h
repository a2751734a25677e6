// The fields of a request, in the order in which the client wrote them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace qv::standin {

// A field is a 4-byte little-endian length, that many bytes, and one zero byte. The bytes come from
// a stranger: a field that does not lie whole inside the payload is no field. A failed read takes
// nothing away.
class FieldReader {
 public:
  // The payload outlives the reader.
  explicit FieldReader(std::span<const unsigned char> payload) : rest_(payload) {}

  // Whether nothing is left, not even what is no field.
  [[nodiscard]] bool AtEnd() const { return rest_.empty(); }
  // A text of at least one character and without a zero byte.
  [[nodiscard]] std::optional<std::string> Text();
  // The same without a copy: it lies inside the payload.
  [[nodiscard]] std::optional<std::string_view> View();
  [[nodiscard]] std::optional<std::int32_t> Integer();

 private:
  [[nodiscard]] std::optional<std::span<const unsigned char>> Peek() const;
  void Consume(std::size_t length);

  std::span<const unsigned char> rest_;
};

}  // namespace qv::standin
