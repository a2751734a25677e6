// The text that calls a stored procedure: "call name(1, 'a')" or "exec name 1, 'a'".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace qv::standin {

struct ProcedureCall {
  using Argument = std::variant<std::monostate, std::int64_t, double, std::string>;

  std::string name;
  std::vector<Argument> arguments;
};

// Whether `text` begins with "call", "exec" or "execute", in any case.
[[nodiscard]] bool IsProcedureCall(std::string_view text);

// Arguments are whole and decimal numbers, null, and texts in apostrophes (an apostrophe inside is
// doubled; an N before the first one is skipped). Nothing when the text is not such a call.
[[nodiscard]] std::optional<ProcedureCall> ParseProcedureCall(std::string_view text);

}  // namespace qv::standin
