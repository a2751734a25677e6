#include "SqlSplitter.h"

#include <algorithm>

namespace qv::tool {
namespace {

enum class Part { kText, kBlank, kEnd };

struct Piece {
  Part part;
  std::size_t bytes;
};

// The bytes up to and with `close`, which is looked for behind the first `opening` bytes.
std::size_t Through(std::string_view rest, std::string_view close, std::size_t opening) {
  const std::size_t found = rest.find(close, opening);
  return found == std::string_view::npos ? rest.size() : found + close.size();
}

// What `rest`, which is not empty, begins with.
Piece NextPiece(std::string_view rest) {
  constexpr std::string_view kWhiteSpace = " \t\r\n\v\f";
  const std::string_view first = rest.substr(0, 1);
  if (first == ";") return {Part::kEnd, 1};
  if (kWhiteSpace.find(first) != std::string_view::npos) return {Part::kBlank, 1};
  if (rest.substr(0, 2) == "--") return {Part::kBlank, Through(rest, "\n", 2)};
  if (rest.substr(0, 2) == "/*") return {Part::kBlank, Through(rest, "*/", 2)};
  // A doubled quote closes one text and opens the next at once, which comes to the same.
  if (first == "'" || first == "\"") return {Part::kText, Through(rest, first, 1)};
  if (first == "[") return {Part::kText, Through(rest, "]", 1)};
  return {Part::kText, 1};
}

}  // namespace

std::vector<ScriptStatement> SplitStatements(std::string_view script) {
  std::vector<ScriptStatement> statements;
  std::size_t line = 1;
  bool inside = false;  // the last of `statements` is still open
  for (std::size_t at = 0; at < script.size();) {
    const auto [part, bytes] = NextPiece(script.substr(at));
    if (part == Part::kText) {
      if (!inside) statements.push_back({script.substr(at, 0), line});
      std::string_view& text = statements.back().text;
      const std::size_t begin = static_cast<std::size_t>(text.data() - script.data());
      text = script.substr(begin, at + bytes - begin);
    }
    if (part != Part::kBlank) inside = part == Part::kText;
    const std::string_view piece = script.substr(at, bytes);
    line += static_cast<std::size_t>(std::count(piece.begin(), piece.end(), '\n'));
    at += bytes;
  }
  return statements;
}

}  // namespace qv::tool
