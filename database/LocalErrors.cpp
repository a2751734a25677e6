#include "LocalErrors.h"

#include "base/text/Letters.h"

namespace qv {

namespace {

struct Rule {
  std::string_view start;
  error::Class error_class;
};

// States of the standard, of ODBC and of PostgreSQL; longer ones before the classes they are in.
constexpr Rule kStates[] = {{"42501", error::kNotAllowed},    {"42601", error::kSyntax},
                            {"42S", error::kUnknownObject},   {"42P01", error::kUnknownObject},
                            {"42P02", error::kUnknownObject}, {"427", error::kUnknownObject},
                            {"42883", error::kUnknownObject}, {"42", error::kSyntax},
                            {"37", error::kSyntax},           {"23", error::kConstraint},
                            {"28", error::kNotAllowed},       {"25006", error::kNotAllowed},
                            {"HYT", error::kTimeLimit},       {"57014", error::kTimeLimit},
                            {"40001", error::kBusy},          {"40P01", error::kBusy},
                            {"55P03", error::kBusy},          {"53", error::kTooLarge},
                            {"22001", error::kTooLarge},      {"HY001", error::kTooLarge},
                            {"08", error::kCannotConnect},    {"3D", error::kUnknownDatabase}};

constexpr Rule kWords[] = {
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
    for (const Rule& rule : kStates) {
      if (state.starts_with(rule.start)) return rule.error_class;
    }
  }
  for (const Rule& rule : kWords) {
    if (text::FindIgnoringCase(said, rule.start) != std::string_view::npos) return rule.error_class;
  }
  return error::kLocal;
}

}  // namespace qv
