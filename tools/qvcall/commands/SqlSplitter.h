#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace qv::tool {

struct ScriptStatement {
  std::string_view text;  // in the script, without the white space and the comments around it
  std::size_t line;       // where it starts; the script's first line is 1
};

// Splits a script at each ";" that is not inside a quote (single, double or back quotes, square
// brackets, dollar signs) or a comment. What is not closed runs to the end of the script.
// Statements of nothing but white space and comments are left out.
[[nodiscard]] std::vector<ScriptStatement> SplitStatements(std::string_view script);

}  // namespace qv::tool
