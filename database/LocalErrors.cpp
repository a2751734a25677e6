#include "LocalErrors.h"

#include "base/odbc/Diagnostics.h"
#include "base/text/Letters.h"

namespace qv {

namespace {

struct Words {
  std::string_view words;
  error::Class error_class;
};

constexpr Words kWords[] = {
    {"syntax error", error::kSyntax},     {"incomplete input", error::kSyntax},
    {"no such ", error::kUnknownObject},  {"constraint failed", error::kConstraint},
    {"database is locked", error::kBusy}, {"readonly database", error::kNotAllowed}};

constexpr std::size_t kStateLength = 5;

// Returns the next five characters in brackets, and removes them and what is before them.
std::string_view TakeState(std::string_view& said) {
  while (!said.empty()) {
    const std::size_t open = said.find('[');
    if (open == std::string_view::npos) break;
    said.remove_prefix(open + 1);
    if (said.size() > kStateLength && said[kStateLength] == ']')
      return said.substr(0, kStateLength);
  }
  said = {};
  return {};
}

}  // namespace

error::Class ClassOfLocalError(std::string_view said) {
  std::string_view rest = said;
  for (auto state = TakeState(rest); !state.empty(); state = TakeState(rest)) {
    if (const auto known = odbc::ClassOfState(state)) return *known;
  }
  for (const auto& [words, error_class] : kWords) {
    if (text::FindIgnoringCase(said, words) != std::string_view::npos) return error_class;
  }
  return error::kLocal;
}

}  // namespace qv
