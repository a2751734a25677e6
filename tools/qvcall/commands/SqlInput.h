// Where the SQL of a command comes from, and what becomes of a batch of it.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qv::tool {

// All that `in` still has; none when it cannot be read, or is over 64 MiB.
[[nodiscard]] std::optional<std::string> ReadAll(std::istream& in);

// The statement that a command was given, or that `in` has when that is "-". Gives an exit status,
// and `err` says why, when it cannot be read or sent; else kDone.
[[nodiscard]] int ReadStatement(const std::string& given, std::istream& in, std::string& sql,
                                std::ostream& err);

struct ScriptStatement {
  std::string_view text;  // in the script, without the white space and the comments around it
  std::size_t line;       // where it starts; the script's first line is 1
};

// Splits a script at each ";" that is not inside a quote (single, double or back quotes, square
// brackets, dollar signs) or a comment. What is not closed runs to the end of the script.
// Statements of nothing but white space and comments are left out.
[[nodiscard]] std::vector<ScriptStatement> SplitStatements(std::string_view script);

// How the bytes of a batch stand to what one request takes.
struct RequestSize {
  std::size_t bytes;    // of the whole batch as it would be sent
  std::size_t fitting;  // how many of the statements, from the first, go into one request
};

// How many bytes of fields a request has room for.
constexpr std::size_t kRequestRoom = 0x100000 - 269 - 1;

[[nodiscard]] RequestSize MeasureBatch(std::string_view database,
                                       const std::vector<ScriptStatement>& statements);

}  // namespace qv::tool
