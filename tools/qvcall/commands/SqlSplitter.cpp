#include "SqlSplitter.h"

#include <algorithm>

#include "base/text/SqlText.h"

namespace qv::tool {
using text::SqlPart;

std::vector<ScriptStatement> SplitStatements(std::string_view script) {
  std::vector<ScriptStatement> statements;
  std::size_t line = 1;
  bool inside = false;  // the last of `statements` is still open
  for (std::size_t at = 0; at < script.size();) {
    const auto [part, bytes] = text::NextSqlPiece(script.substr(at), text::kAnyEngine);
    if (part == SqlPart::kSemicolon) {
      inside = false;
    } else if (part != SqlPart::kBlanks && part != SqlPart::kComment) {
      if (!inside) statements.push_back({script.substr(at, 0), line});
      std::string_view& text = statements.back().text;
      const std::size_t begin = static_cast<std::size_t>(text.data() - script.data());
      text = script.substr(begin, at + bytes - begin);
      inside = true;
    }
    const std::string_view piece = script.substr(at, bytes);
    line += static_cast<std::size_t>(std::count(piece.begin(), piece.end(), '\n'));
    at += bytes;
  }
  return statements;
}

}  // namespace qv::tool
