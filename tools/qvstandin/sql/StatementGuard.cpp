#include "ClientSql.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "base/text/Letters.h"

namespace qv::standin {

namespace {

using text::SqlPart;

// Messages truncate longer words.
constexpr std::size_t kLongestKeyword = 16;

constexpr std::array<std::string_view, 21> kBeginnings{
    "alter",  "analyze", "comment", "create",   "delete",  "drop",    "explain",
    "grant",  "insert",  "lock",    "merge",    "refresh", "reindex", "replace",
    "revoke", "select",  "table",   "truncate", "update",  "values",  "with"};
// Other words that begin statements of engines, and are refused as such.
constexpr std::array<std::string_view, 36> kForbidden{
    "abort",   "attach",     "begin",    "call",   "checkpoint", "close",     "cluster",  "commit",
    "copy",    "deallocate", "declare",  "detach", "discard",    "do",        "end",      "exec",
    "execute", "fetch",      "import",   "listen", "load",       "move",      "notify",   "pragma",
    "prepare", "reassign",   "release",  "reset",  "rollback",   "savepoint", "security", "set",
    "show",    "start",      "unlisten", "vacuum"};
constexpr std::array<std::string_view, 2> kNeverUnquoted{"commit", "rollback"};

template <std::size_t kCount>
bool IsOneOf(const std::array<std::string_view, kCount>& words, std::string_view word) {
  return std::ranges::any_of(
      words, [word](std::string_view known) { return text::EqualIgnoringCase(known, word); });
}

// Reads a text from left to right and stops at the first thing to refuse.
class Guard {
 public:
  Guard(std::string_view sql, std::vector<std::string_view>& statements)
      : rest_(sql), statements_(statements) {}

  Outcome Run() {
    while (complaint_.empty() && !rest_.empty()) {
      const text::SqlPiece piece = text::NextSqlPiece(rest_, text::kPostgreSql);
      Read(piece.part, rest_.substr(0, piece.length));
      rest_.remove_prefix(piece.length);
    }
    EndStatement();
    if (complaint_.empty()) return {};
    return {ErrorCode::kNotPermitted, complaint_, error_class_};
  }

 private:
  // The position relative to a text E'...': after its E, or after its end.
  enum class Escaped { kNo, kBegins, kEnded };

  void Read(SqlPart part, std::string_view piece) {
    if (part == SqlPart::kBlanks || part == SqlPart::kComment) {
      if (escaped_ == Escaped::kBegins) escaped_ = Escaped::kNo;
      return;
    }
    const Escaped escaped = std::exchange(escaped_, Escaped::kNo);
    if (part == SqlPart::kSemicolon) return EndStatement();
    if (start_ == nullptr) start_ = piece.data();
    if (part == SqlPart::kWord) return Word(piece);
    if (!has_begun_ && piece == "(") return;
    Begin({});
    if (piece.starts_with('\'')) Text(piece, escaped);
  }

  void Word(std::string_view word) {
    Begin(word);
    if (IsOneOf(kNeverUnquoted, word)) RefuseWord(word);
    if (text::EqualIgnoringCase(word, "e")) escaped_ = Escaped::kBegins;
  }

  // In E'...' a backslash may or may not escape a quote, depending on the character set. Such a
  // text can continue on another line under the same rules.
  void Text(std::string_view text, Escaped escaped) {
    if (escaped == Escaped::kNo) return;
    if (escaped == Escaped::kEnded) Refuse("a text in two lines");
    if (text.find("\\'") != std::string_view::npos) Refuse("\\' in a text");
    escaped_ = Escaped::kEnded;
  }

  // The first piece of a statement must be a known word.
  void Begin(std::string_view word) {
    if (std::exchange(has_begun_, true) || IsOneOf(kBeginnings, word)) return;
    if (word.empty()) return Refuse("a statement that begins with no word");
    if (!IsOneOf(kForbidden, word) && complaint_.empty()) error_class_ = error::kSyntax;
    RefuseWord(word);
  }

  void EndStatement() {
    if (start_ != nullptr) {
      statements_.emplace_back(start_, static_cast<std::size_t>(rest_.data() - start_));
    }
    start_ = nullptr;
    has_begun_ = false;
  }

  void RefuseWord(std::string_view word) { Refuse(text::ToLower(word.substr(0, kLongestKeyword))); }

  void Refuse(std::string_view what) {
    if (complaint_.empty()) complaint_ = "clients may not use: " + std::string(what);
  }

  std::string_view rest_;
  std::vector<std::string_view>& statements_;
  const char* start_ = nullptr;  // of the statement; null between two of them
  bool has_begun_ = false;       // its first word is known
  Escaped escaped_ = Escaped::kNo;
  std::string complaint_;
  error::Class error_class_ = error::kNotAllowed;
};

Outcome GuardText(std::string_view sql, GuardedText& guarded) {
  guarded.text = WithPlainTableNames(sql, text::kPostgreSql);
  Outcome outcome = GuardStatements(guarded.text, guarded.statements);
  if (!outcome.Ok() || !guarded.statements.empty()) return outcome;
  return {ErrorCode::kSqlFailed, "there is no statement", error::kSyntax};
}

}  // namespace

Outcome GuardStatements(std::string_view sql, std::vector<std::string_view>& statements) {
  return Guard(sql, statements).Run();
}

Outcome GuardQuery(std::string_view sql, GuardedText& query) {
  if (Outcome guarded = GuardText(sql, query); !guarded.Ok()) return guarded;
  if (query.statements.size() == 1) return {};
  return {ErrorCode::kNotPermitted, "a query must be one statement"};
}

Outcome GuardBatch(std::span<const std::string_view> batch, std::deque<GuardedText>& texts,
                   std::int32_t& failed) {
  failed = 0;
  for (const std::string_view sql : batch) {
    ++failed;
    if (Outcome guarded = GuardText(sql, texts.emplace_back()); !guarded.Ok()) return guarded;
  }
  failed = 0;
  return {};
}

}  // namespace qv::standin
