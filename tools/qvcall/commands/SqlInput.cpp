#include "SqlInput.h"

#include <fmt/ostream.h>

#include <algorithm>
#include <array>
#include <istream>
#include <string_view>

#include "base/text/Letters.h"
#include "base/text/SqlText.h"
#include "tools/qvcall/options/CommandLine.h"

namespace qv::tool {
namespace {

using text::SqlPart;

// More than the largest request. Stops reading an endless input.
constexpr std::size_t kLongestText = std::size_t{64} << 20;

// A field consists of a length, the bytes and a zero.
constexpr std::size_t FieldBytes(std::size_t length) { return length + 5; }
constexpr std::size_t kCountBytes = 4;

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
    fmt::print(err, "qvcall: standard input cannot be read, or exceeds 64 MB\n");
    return kFailed;
  }
  // Trimmed, because the cache would treat a statement with a line feed at its end as another
  // query.
  sql = text::Trimmed(*text);
  if (!sql.empty() && sql.find('\0') == std::string::npos) return kDone;
  fmt::print(err, "qvcall: the statement is empty or contains a NUL byte\n");
  return kUsage;
}

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

RequestSize MeasureBatch(std::string_view database,
                         const std::vector<ScriptStatement>& statements) {
  RequestSize size{FieldBytes(database.size()) + FieldBytes(kCountBytes), 0};
  bool has_room = true;
  for (const ScriptStatement& statement : statements) {
    size.bytes += FieldBytes(statement.text.size());
    // The field that crosses the limit is still sent; all fields after it are lost.
    if (has_room) ++size.fitting;
    has_room = has_room && size.bytes <= kRequestRoom;
  }
  return size;
}

}  // namespace qv::tool
