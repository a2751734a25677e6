// Where the SQL of a command comes from.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>

namespace qv::tool {

// All that `in` still has; none when it cannot be read, or is over 64 MiB.
[[nodiscard]] std::optional<std::string> ReadAll(std::istream& in);

// The statement that a command was given, or that `in` has when that is "-". Gives an exit status,
// and `err` says why, when it cannot be read or sent; else kDone.
[[nodiscard]] int ReadStatement(const std::string& given, std::istream& in, std::string& sql,
                                std::ostream& err);

}  // namespace qv::tool
