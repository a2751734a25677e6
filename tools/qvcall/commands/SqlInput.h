// Reads the SQL of a command, splits a batch into statements and measures it.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qv::tool {

// Returns the rest of `in`, or nullopt if it cannot be read or exceeds 64 MiB.
[[nodiscard]] std::optional<std::string> ReadAll(std::istream& in);

// Sets `sql` to the statement of a command: `given`, or the content of `in` if that is "-". Returns
// kDone or, with the reason on `err`, the exit status if it cannot be read or sent.
[[nodiscard]] int ReadStatement(const std::string& given, std::istream& in, std::string& sql,
                                std::ostream& err);

struct ScriptStatement {
  std::string_view text;  // in the script, without the white space and the comments around it
  std::size_t line;       // where it starts; the script's first line is 1
};

// Splits a script at each ";" that is not inside a quote (single, double or back quotes, square
// brackets, dollar signs) or a comment. A quote or comment that is not closed runs to the end of
// the script. Statements of nothing but white space and comments are left out.
[[nodiscard]] std::vector<ScriptStatement> SplitStatements(std::string_view script);

// The size of a batch, compared with what one request can hold.
struct RequestSize {
  std::size_t bytes;    // the size of the whole batch on the wire
  std::size_t fitting;  // how many statements, counted from the first, fit into one request
};

// The largest size of a request's fields, in bytes.
constexpr std::size_t kRequestRoom = 0x100000 - 269 - 1;

[[nodiscard]] RequestSize MeasureBatch(std::string_view database,
                                       const std::vector<ScriptStatement>& statements);

}  // namespace qv::tool
