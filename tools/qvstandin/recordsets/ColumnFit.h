// Decides whether the declared kind of a column holds all of its values.
#pragma once

#include <cstdint>
#include <string_view>

#include "tools/qvstandin/databases/Database.h"

namespace qv::standin {

// Looks at all cells of one column. Some engines store values that the declared type of their
// column does not hold, and expressions have no declared type at all.
class ColumnFit {
 public:
  explicit ColumnFit(ColumnKind kind) : kind_(kind) {}

  void Add(const Cell& cell);
  // Returns the declared kind if it holds every value without loss; else the narrowest integer kind
  // that does, or the double, or text.
  [[nodiscard]] ColumnKind Fitted() const;

 private:
  void AddInteger(std::int64_t value);
  void AddDouble(double value);
  void AddDecimal(std::string_view text);
  void AddNumber(const Cell& cell);
  [[nodiscard]] ColumnKind FittedInteger() const;

  const ColumnKind kind_;
  std::int64_t lowest_ = 0;
  std::int64_t highest_ = 0;
  bool integers_lose_ = false;  // a value is not an integer of 64 bits
  bool doubles_lose_ = false;   // a value has more digits than a double holds
  bool is_text_ = false;        // a value is not of the column's kind at all
};

}  // namespace qv::standin
