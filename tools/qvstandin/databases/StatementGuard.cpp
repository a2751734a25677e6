#include "StatementGuard.h"

#include <algorithm>
#include <array>
#include <string>

namespace qv::standin {

namespace {

constexpr std::string_view kBlanks = " \t\r\n\f\v";
constexpr std::size_t kLongestKeyword = 16;

constexpr std::array<std::string_view, 21> kBeginnings{
    "alter",  "analyze", "comment", "create",   "delete",  "drop",    "explain",
    "grant",  "insert",  "lock",    "merge",    "refresh", "reindex", "replace",
    "revoke", "select",  "table",   "truncate", "update",  "values",  "with"};
constexpr std::array<std::string_view, 2> kNeverUnquoted{"commit", "rollback"};

bool IsDigit(char ch) { return ch >= '0' && ch <= '9'; }

bool BeginsWord(char ch) {
  return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') || ch == '_' ||
         static_cast<unsigned char>(ch) >= 0x80;
}

bool ContinuesWord(char ch) { return BeginsWord(ch) || IsDigit(ch) || ch == '$'; }

// Words longer than any that matters come out cut.
std::string Lower(std::string_view word) {
  std::string lower(word.substr(0, kLongestKeyword));
  std::ranges::transform(lower, lower.begin(), [](char ch) {
    return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch + ('a' - 'A')) : ch;
  });
  return lower;
}

// Reads a text from left to right and stops at the first thing to refuse.
class Guard {
 public:
  Guard(std::string_view sql, std::vector<std::string_view>& statements)
      : rest_(sql), statements_(statements) {}

  Outcome Run() {
    while (complaint_.empty() && SkipGap()) Token();
    EndStatement();
    if (complaint_.empty()) return {};
    return {ErrorCode::kNotPermitted, complaint_};
  }

 private:
  void Take(std::size_t length) { rest_.remove_prefix(std::min(length, rest_.size())); }

  // Through the mark, looked for behind the first `from` bytes.
  void TakeThrough(std::string_view mark, std::size_t from) {
    const std::size_t found = rest_.find(mark, from);
    Take(found == std::string_view::npos ? rest_.size() : found + mark.size());
  }

  // Blanks and comments. False at the end.
  bool SkipGap() {
    for (;;) {
      Take(std::min(rest_.find_first_not_of(kBlanks), rest_.size()));
      if (rest_.starts_with("--")) {
        Take(std::min(rest_.find_first_of("\r\n"), rest_.size()));
      } else if (rest_.starts_with("/*")) {
        SkipComment();
      } else {
        return !rest_.empty();
      }
    }
  }

  void SkipComment() {
    Take(2);
    for (int depth = 1; depth > 0 && !rest_.empty();) {
      Take(std::min(rest_.find_first_of("/*"), rest_.size()));
      const bool opens = rest_.starts_with("/*");
      const bool closes = rest_.starts_with("*/");
      depth += opens ? 1 : closes ? -1 : 0;
      Take(opens || closes ? 2 : 1);
    }
  }

  void Token() {
    const char ch = rest_.front();
    if (ch == ';') {
      EndStatement();
      return Take(1);
    }
    if (start_ == nullptr) start_ = rest_.data();
    if (BeginsWord(ch)) return Word();
    if (!has_begun_ && ch == '(') return Take(1);
    Begin({});
    if (IsDigit(ch)) return Take(std::min(rest_.find_first_not_of("0123456789"), rest_.size()));
    if (ch == '\'' || ch == '"') return TakeQuoted(ch);
    if (ch == '$') return Dollar();
    Take(1);
  }

  void Word() {
    const auto end = std::ranges::find_if_not(rest_, ContinuesWord);
    const auto length = static_cast<std::size_t>(end - rest_.begin());
    const std::string word = Lower(rest_.substr(0, length));
    Begin(word);
    if (std::ranges::find(kNeverUnquoted, word) != kNeverUnquoted.end()) Refuse(word);
    Take(length);
    if (word == "e" && rest_.starts_with('\'')) EscapedText();
  }

  // E'...', where a backslash may keep a quote from ending the text, but need not in every
  // character set.
  void EscapedText() {
    const std::string_view before = rest_;
    TakeQuoted('\'');
    const std::string_view text = before.substr(0, before.size() - rest_.size());
    if (text.find("\\'") != std::string_view::npos) Refuse("\\' in a text");
    // In another line it goes on, under the same rules.
    if (SkipGap() && rest_.starts_with('\'')) Refuse("a text in two lines");
  }

  // The first token of a statement is a word that is known.
  void Begin(const std::string& word) {
    if (has_begun_) return;
    has_begun_ = true;
    const bool known = std::ranges::find(kBeginnings, word) != kBeginnings.end();
    if (!known) Refuse(word.empty() ? "a statement that begins with no word" : word);
  }

  // A doubled quote ends one text and begins the next, which comes to the same.
  void TakeQuoted(char quote) {
    do {
      TakeThrough(std::string_view(&quote, 1), 1);
    } while (rest_.starts_with(quote));
  }

  // $$text$$ or $tag$text$tag$; any other dollar sign is no more than that.
  void Dollar() {
    std::size_t end = 1;
    if (end < rest_.size() && BeginsWord(rest_[end])) {
      while (end < rest_.size() && (BeginsWord(rest_[end]) || IsDigit(rest_[end]))) ++end;
    }
    if (end == rest_.size() || rest_[end] != '$') return Take(1);
    const std::string tag(rest_.substr(0, end + 1));
    TakeThrough(tag, tag.size());
  }

  void EndStatement() {
    if (start_ != nullptr) {
      statements_.emplace_back(start_, static_cast<std::size_t>(rest_.data() - start_));
    }
    start_ = nullptr;
    has_begun_ = false;
  }

  void Refuse(std::string_view what) {
    if (complaint_.empty()) complaint_ = "clients may not use: " + std::string(what);
  }

  std::string_view rest_;
  std::vector<std::string_view>& statements_;
  const char* start_ = nullptr;  // of the statement; null between two of them
  bool has_begun_ = false;       // its first word is known
  std::string complaint_;
};

}  // namespace

Outcome GuardStatements(std::string_view sql, std::vector<std::string_view>& statements) {
  return Guard(sql, statements).Run();
}

}  // namespace qv::standin
