#include "Database.h"

#include <algorithm>
#include <charconv>

#include "base/text/Letters.h"
#include "base/text/SqlText.h"

namespace qv::standin {

namespace {

bool IsWordByte(char ch) { return text::IsLetterOrDigit(ch) || ch == '_' || ch == '.'; }

// Reads a call from left to right and removes what it has read.
class CallScanner {
 public:
  explicit CallScanner(std::string_view text) : rest_(text) {}

  bool AtEnd() {
    SkipBlanks();
    return rest_.empty();
  }

  bool Take(char ch) {
    SkipBlanks();
    if (rest_.empty() || rest_.front() != ch) return false;
    rest_.remove_prefix(1);
    return true;
  }

  std::string Word() {
    SkipBlanks();
    const auto end = std::ranges::find_if_not(rest_, IsWordByte);
    const auto length = static_cast<std::size_t>(end - rest_.begin());
    const std::string word(rest_.substr(0, length));
    rest_.remove_prefix(length);
    return word;
  }

  std::string LowerWord() { return text::ToLower(Word()); }

  std::optional<ProcedureCall::Argument> Argument() {
    SkipBlanks();
    if (rest_.starts_with("N'") || rest_.starts_with("n'")) rest_.remove_prefix(1);
    if (rest_.starts_with('\'')) return text::TakeSqlText(rest_);
    if (rest_.starts_with('N') || rest_.starts_with('n')) {
      if (LowerWord() == "null") return std::monostate();
      return std::nullopt;
    }
    return Number();
  }

 private:
  void SkipBlanks() {
    while (!rest_.empty() && text::IsSpace(rest_.front())) rest_.remove_prefix(1);
  }

  std::optional<ProcedureCall::Argument> Number() {
    const char* const end = rest_.data() + rest_.size();
    std::int64_t whole = 0;
    const auto as_whole = std::from_chars(rest_.data(), end, whole);
    double decimal = 0;
    const auto as_decimal = std::from_chars(rest_.data(), end, decimal);
    if (as_decimal.ec != std::errc()) return std::nullopt;
    rest_.remove_prefix(static_cast<std::size_t>(as_decimal.ptr - rest_.data()));
    if (as_whole.ec == std::errc() && as_whole.ptr == as_decimal.ptr) return whole;
    return decimal;
  }

  std::string_view rest_;
};

bool IsCallWord(std::string_view word) {
  return word == "call" || word == "exec" || word == "execute";
}

}  // namespace

bool IsProcedureCall(std::string_view text) { return IsCallWord(CallScanner(text).LowerWord()); }

std::optional<ProcedureCall> ParseProcedureCall(std::string_view text) {
  CallScanner scanner(text);
  ProcedureCall call;
  if (!IsCallWord(scanner.LowerWord())) return std::nullopt;
  call.name = scanner.Word();
  if (call.name.empty()) return std::nullopt;
  // "dbo.name" and "X.dbo.name" mean the procedure itself: a database has one owner.
  call.name.erase(0, call.name.rfind('.') + 1);
  const bool in_brackets = scanner.Take('(');
  bool more = in_brackets ? !scanner.Take(')') : !scanner.AtEnd() && !scanner.Take(';');
  while (more) {
    auto argument = scanner.Argument();
    if (!argument) return std::nullopt;
    call.arguments.push_back(std::move(*argument));
    if (scanner.Take(',')) continue;
    more = false;
    if (in_brackets && !scanner.Take(')')) return std::nullopt;
  }
  scanner.Take(';');
  if (!scanner.AtEnd()) return std::nullopt;
  return call;
}

}  // namespace qv::standin
