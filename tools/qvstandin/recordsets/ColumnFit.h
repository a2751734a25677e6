// Decides whether the declared kind of a column holds all of its values.
#pragma once

#include <cstdint>
#include <string_view>

#include "tools/qvstandin/databases/Database.h"

namespace qv::standin {

// Looks at all cells of one column. Some engines store numbers that the declared type of their
// column does not hold, or other things than numbers, and expressions have no declared type at all.
class ColumnFit {
 public:
  explicit ColumnFit(ColumnKind kind);

  void Add(const Cell& cell);
  // Returns the declared kind if it holds every value without loss, and for decimals the double if
  // it does; else the narrowest integer kind that does, or the double, or the decimal, or text if
  // some value is of another kind altogether.
  [[nodiscard]] ColumnKind Fitted() const;

 private:
  void AddInteger(std::int64_t value);
  void AddDouble(double value);
  void AddDecimal(std::string_view text);
  [[nodiscard]] ColumnKind FittedInteger() const;

  const ColumnKind kind_;
  const bool is_integer_;
  const bool is_double_;
  const bool is_number_;
  std::int64_t lowest_ = 0;
  std::int64_t highest_ = 0;
  bool has_misfit_ = false;     // a value is no number, no date or no truth value
  bool integers_lose_ = false;  // a value is not an integer of 64 bits
  bool doubles_lose_ = false;   // a value has more digits than a double holds
};

}  // namespace qv::standin
