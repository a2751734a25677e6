// The fields of requests and replies.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/qvstandin/stores/IdStore.h"

namespace qv::standin {

// Reads the fields of a request, in the order in which the client wrote them.
//
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

// Writes the fields of a reply, back to back, as the client reads them.
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

// What the name field of a request's header block says.
inline constexpr std::size_t kNameFieldAt = 13;
inline constexpr std::size_t kNameFieldSize = 256;
using NameField = std::span<const unsigned char>;

// A path. Nothing when there is none, and when it fills the field: clients cut what does not fit,
// and the file that is left of a path may be another one.
[[nodiscard]] std::optional<std::string> PathIn(NameField field);

// A name, and an identifier behind it.
[[nodiscard]] std::optional<IdName> IdNameIn(NameField field);

}  // namespace qv::standin
