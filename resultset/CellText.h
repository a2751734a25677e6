// The text forms of values, and how long they are, for display.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qvnetcall/framework/OleDateTime.h"

namespace qv {

// "%d", "%f", "%Y-%m-%d %H:%M:%S" (empty for a date of exactly 0.0), and text as it is.
[[nodiscard]] std::string CellText(std::int32_t value);
[[nodiscard]] std::string CellText(double value);
[[nodiscard]] std::string CellText(const COleDateTime& value);
[[nodiscard]] inline std::string CellText(std::string_view text) { return std::string(text); }

// The length of "%d" of `value`.
[[nodiscard]] std::int32_t DecimalLength(std::int32_t value);
// The length of "%f" of `value`.
[[nodiscard]] std::int32_t FixedLength(double value);

}  // namespace qv
