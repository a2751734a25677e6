// A slow and obvious reader of both recordset dialects, for checking the real ones against. It is
// written from the format's rules alone and shares no code with what it checks.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace qv {

struct ReferenceDate {
  std::int32_t year, month, day, hour, minute, second;
};

// What a binary cell's file holds; nothing when the cell is empty and has no file.
struct ReferenceBinary {
  std::optional<std::string> bytes;
};

// A date without a value is the date 0.0.
using ReferenceCell =
    std::variant<std::int32_t, double, std::optional<ReferenceDate>, std::string, ReferenceBinary>;

// What the extensions give for a cell. `integer` is not kept for doubles, and `text` for doubles
// and binary cells.
struct ReferenceExact {
  bool is_null = false;
  std::int64_t integer = 0;
  std::string text;
};

struct ReferenceColumn {
  std::string name;
  std::int32_t declared_length = 0;
  // Not kept for binary columns: only the real reader knows the paths.
  std::size_t display_length = 0;
  int type = 0;
  std::vector<ReferenceCell> cells;
  std::vector<ReferenceExact> exact;  // one for each of the cells
};

struct ReferenceTable {
  std::vector<ReferenceColumn> columns;
  // The binary cell that was written last; in the schema dialect its bytes are what the shared file
  // holds in the end.
  std::optional<std::string> last_binary;
};

// Append the columns of a file, given as its bytes, to those of `table`. Return false if the file
// is refused.
[[nodiscard]] bool ReadRowsetByReference(const std::string& file, ReferenceTable& table);
[[nodiscard]] bool ReadSchemaByReference(const std::string& file, ReferenceTable& table);

// Returns the number that a text starts with, after white space and a sign, or the nearest limit of
// 32 bits; 0 if there are no digits.
[[nodiscard]] std::int32_t DecimalByReference(const std::string& text);

}  // namespace qv
