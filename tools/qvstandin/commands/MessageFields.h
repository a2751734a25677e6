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
// A field is a 4-byte little-endian length, that many bytes, and one zero byte. The payload is not
// trusted: a field must lie entirely inside it. A read that fails consumes nothing.
class FieldReader {
 public:
  // The payload outlives the reader.
  explicit FieldReader(std::span<const unsigned char> payload) : rest_(payload) {}

  // Returns whether no bytes are left, valid or not.
  [[nodiscard]] bool AtEnd() const { return rest_.empty(); }
  // Returns a text of at least one byte and without a zero byte.
  [[nodiscard]] std::optional<std::string> Text();
  // The same without a copy: the view points into the payload.
  [[nodiscard]] std::optional<std::string_view> View();
  [[nodiscard]] std::optional<std::int32_t> Integer();

 private:
  [[nodiscard]] std::optional<std::span<const unsigned char>> Peek() const;
  void Consume(std::size_t length);

  std::span<const unsigned char> rest_;
};

// Writes the fields of a reply one after another.
class FieldWriter {
 public:
  // Precondition: `text` is not empty.
  void Text(std::string_view text) { Append(text.data(), text.size()); }
  void Integer(std::int32_t value) { Append(&value, sizeof value); }
  // Precondition: `bytes` is not empty.
  void Bytes(std::string_view bytes) { Append(bytes.data(), bytes.size()); }

  [[nodiscard]] const std::vector<unsigned char>& Payload() const { return payload_; }

 private:
  void Append(const void* body, std::size_t length);

  std::vector<unsigned char> payload_;
};

// The name field of a request's header block.
inline constexpr std::size_t kNameFieldAt = 13;
inline constexpr std::size_t kNameFieldSize = 256;
using NameField = std::span<const unsigned char>;

// Returns the path in the field. Returns nothing if there is none or if it fills the field: clients
// truncate longer paths, and a truncated path may name another file.
[[nodiscard]] std::optional<std::string> PathIn(NameField field);

// Returns the name in the field and the identifier after it.
[[nodiscard]] std::optional<IdName> IdNameIn(NameField field);

}  // namespace qv::standin
