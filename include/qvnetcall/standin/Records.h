// The layout of the plain records that the stand-in server sends, which docs/records.md describes.
// Other servers have layouts of their own. All functions may be called from any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "qvnetcall/ServerRecords.h"

namespace qv::records {

// A field of a record, in bytes. Numbers are little-endian; a text ends at its first NUL, which it
// always has.
struct Field {
  std::size_t offset;
  std::size_t size;
};

namespace file {
inline constexpr Field kSize{0, 8};      // bytes
inline constexpr Field kModified{8, 8};  // seconds since 1970, UTC
inline constexpr Field kFlags{16, 4};    // 0
inline constexpr Field kName{24, 200};
}  // namespace file

namespace folder {
inline constexpr Field kModified{0, 8};
inline constexpr Field kFlags{8, 4};
inline constexpr Field kName{12, 120};
inline constexpr std::uint64_t kHasFolders = 1;  // a flag
}  // namespace folder

namespace sub_store {
inline constexpr Field kFree{0, 8};  // bytes
inline constexpr Field kName{8, 128};
inline constexpr Field kPath{136, 128};
}  // namespace sub_store

namespace directory {
inline constexpr Field kKind{0, 4};
inline constexpr Field kId{4, 4};
inline constexpr Field kName{8, 124};
inline constexpr Field kDisplayName{132, 128};
inline constexpr std::uint64_t kGroup = 1;  // kinds
inline constexpr std::uint64_t kUser = 2;
inline constexpr std::uint64_t kDepartment = 3;
}  // namespace directory

// Returns the number in a field of a record; a signed number is returned as two's complement.
template <class Record>
[[nodiscard]] constexpr std::uint64_t Number(const Record& record, Field field) {
  std::uint64_t value = 0;
  for (std::size_t i = field.size; i-- > 0;) value = value << 8 | record.bytes[field.offset + i];
  return value;
}

// Returns the text in a field of a record; if the server sent no NUL, the whole field.
template <class Record>
[[nodiscard]] std::string Text(const Record& record, Field field) {
  const std::string_view whole(reinterpret_cast<const char*>(record.bytes) + field.offset,
                               field.size);
  return std::string(whole.substr(0, whole.find('\0')));
}

// Writes a number to a field of a record.
template <class Record>
constexpr void SetNumber(Record& record, Field field, std::uint64_t value) {
  for (std::size_t i = 0; i < field.size; ++i, value >>= 8) {
    record.bytes[field.offset + i] = static_cast<unsigned char>(value & 0xFF);
  }
}
// Writes a text to a field of a record and fills the rest with NULs. Returns true. Returns false
// and writes nothing if the field has no room for the text and a NUL.
template <class Record>
[[nodiscard]] bool SetText(Record& record, Field field, std::string_view text) {
  if (text.size() >= field.size) return false;
  for (std::size_t i = 0; i < field.size; ++i) {
    record.bytes[field.offset + i] =
        i < text.size() ? static_cast<unsigned char>(text[i]) : static_cast<unsigned char>(0);
  }
  return true;
}

}  // namespace qv::records
