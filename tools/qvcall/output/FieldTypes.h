// What the types of columns mean for output.
#pragma once

#include "qvnetcall/RvoDbRes.h"

namespace qv::tool {

// Whether the cells of a column of that type (CRvoDbRes::GetFieldType) are numbers, however they
// are kept. Booleans count as numbers, because their text is 1 or 0.
constexpr bool IsNumber(int type) {
  switch (type) {
    case field_type::kSmallInt:
    case field_type::kInteger:
    case field_type::kBoolean:
    case field_type::kUnsignedTinyInt:
    case field_type::kBigInt:
    case field_type::kDouble:
    case field_type::kSingle:
    case field_type::kNumeric:
      return true;
    default:
      return false;
  }
}

}  // namespace qv::tool
