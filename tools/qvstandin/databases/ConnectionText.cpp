#include "ConnectionText.h"

#include <algorithm>
#include <array>

namespace qv::standin {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
// Shorter values stand in every sentence, and give nothing away.
constexpr std::size_t kShortestSecret = 4;

struct Setting {
  const char* key;
  const char* value;
};

// Otherwise the driver gives truth values as text, and can undo statement by statement, which costs
// each one a savepoint.
constexpr std::array kForPostgres{Setting{"BoolsAsChar", "0"}, Setting{"Protocol", "7.4-1"}};
// It does so with cursors, and takes every WITH for one to open a cursor on.
constexpr std::array kInPieces{Setting{"UseDeclareFetch", "1"}, Setting{"Fetch", "100"}};

std::string Lower(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), [](char ch) {
    return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch + ('a' - 'A')) : ch;
  });
  return lower;
}

std::string_view Trimmed(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

// Takes a value off the front: in braces, where a closing one is doubled, or up to a semicolon.
std::string TakeValue(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
  std::string value;
  if (rest.starts_with('{')) {
    rest.remove_prefix(1);
    while (!rest.empty() && (rest.front() != '}' || rest.starts_with("}}"))) {
      value += rest.front();
      rest.remove_prefix(rest.front() == '}' ? 2 : 1);
    }
  } else {
    value = Trimmed(rest.substr(0, rest.find(';')));
  }
  rest.remove_prefix(std::min(rest.find(';'), rest.size()));
  return value;
}

bool IsPassword(std::string_view key) { return key == "pwd" || key == "password"; }

}  // namespace

ConnectionText::ConnectionText(std::string text) : text_(std::move(text)) { Split(); }

std::string ConnectionText::Whole(Rows rows) const {
  std::string whole = text_;
  if (!IsPostgres()) return whole;
  const auto add = [&](const Setting& setting) {
    if (ValueOf(Lower(setting.key)) != nullptr) return;
    whole += std::string(";") + setting.key + "=" + setting.value;
  };
  std::ranges::for_each(kForPostgres, add);
  if (rows == Rows::kInPieces) std::ranges::for_each(kInPieces, add);
  return whole;
}

bool ConnectionText::IsPostgres() const {
  const std::string* const driver = ValueOf("driver");
  if (driver == nullptr) return false;
  const std::string name = Lower(*driver);
  return name.find("postgresql") != std::string::npos || name.find("psqlodbc") != std::string::npos;
}

void ConnectionText::Split() {
  std::string_view rest = text_;
  while (!rest.empty()) {
    const std::size_t equals = rest.find('=');
    const std::size_t end = rest.find(';');
    if (equals < end) {
      const std::string key = Lower(Trimmed(rest.substr(0, equals)));
      rest.remove_prefix(equals + 1);
      values_.emplace_back(key, TakeValue(rest));
    } else {
      rest.remove_prefix(std::min(end, rest.size()));
    }
    if (!rest.empty()) rest.remove_prefix(1);
  }
}

const std::string* ConnectionText::ValueOf(std::string_view key) const {
  const auto found = std::ranges::find(values_, key, &std::pair<std::string, std::string>::first);
  return found != values_.end() ? &found->second : nullptr;
}

std::string ConnectionText::Blotted(std::string said) const {
  constexpr std::string_view kBlot = "***";
  for (const auto& [key, value] : values_) {
    if (value.empty() || (value.size() < kShortestSecret && !IsPassword(key))) continue;
    for (std::size_t at = 0; (at = said.find(value, at)) != std::string::npos;) {
      said.replace(at, value.size(), kBlot);
      at += kBlot.size();
    }
  }
  return said;
}

}  // namespace qv::standin
