// What is measured: ways to get from a recordset file to typed columns.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "RecordsetFiles.h"
#include "Summary.h"

namespace qv {

enum class Purpose { kMeasure, kCompare };

struct Subject {
  std::string_view name;
  // Whether it fills columns at all, so that it can be compared with the others.
  bool fills_columns;
  // Reads the file into a buffer that is kept from call to call, and from there into fresh columns.
  // To be measured, it only counts rows; to be compared, it sums up every cell. Throws
  // std::runtime_error.
  Summary (*read)(Dialect dialect, const std::string& path, Purpose purpose);
};

// The library's readers come first.
[[nodiscard]] std::span<const Subject> AllSubjects();

}  // namespace qv
