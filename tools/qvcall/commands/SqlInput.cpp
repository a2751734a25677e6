#include "SqlInput.h"

#include <fmt/ostream.h>

#include <array>
#include <istream>
#include <string_view>

#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {
namespace {

// More than the largest request; an input without an end is not read for ever.
constexpr std::size_t kLongestText = std::size_t{64} << 20;

constexpr std::string_view kWhiteSpace = " \t\r\n\v\f";

}  // namespace

std::optional<std::string> ReadAll(std::istream& in) {
  std::string text;
  std::array<char, 65536> block;
  while (in.read(block.data(), block.size()) || in.gcount() > 0) {
    text.append(block.data(), static_cast<std::size_t>(in.gcount()));
    if (text.size() > kLongestText) return std::nullopt;
  }
  if (in.bad() || !in.eof()) return std::nullopt;
  return text;
}

int ReadStatement(const std::string& given, std::istream& in, std::string& sql, std::ostream& err) {
  const std::optional<std::string> text = given == "-" ? ReadAll(in) : given;
  if (!text) {
    fmt::print(err, "qvcall: standard input cannot be read, or is over 64 MB\n");
    return kFailed;
  }
  // Without the white space around it: a line feed that a file ends with must not make it another
  // query for the cache.
  sql = *text;
  sql.erase(sql.find_last_not_of(kWhiteSpace) + 1);
  sql.erase(0, sql.find_first_not_of(kWhiteSpace));
  if (!sql.empty() && sql.find('\0') == std::string::npos) return kDone;
  fmt::print(err, "qvcall: the statement is empty or holds a NUL byte\n");
  return kUsage;
}

}  // namespace qv::tool
