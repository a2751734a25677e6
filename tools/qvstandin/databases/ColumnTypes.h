// Which kind of column a declared type of SQL stands for.
#pragma once

#include <optional>
#include <string_view>

#include "Database.h"

namespace qv::standin {

struct DeclaredType {
  ColumnKind kind;
  std::uint32_t length;  // of "VARCHAR(40)"; 0 when none is given
};

// Names are taken in any case. Nothing for a type that is not known.
[[nodiscard]] std::optional<DeclaredType> ParseDeclaredType(std::string_view type);

}  // namespace qv::standin
