#include "base/text/ConnectionText.h"

#include <algorithm>
#include <array>

#include "base/text/Letters.h"

namespace qv::text {

namespace {

constexpr std::string_view kHidden = "***";
constexpr std::size_t kShortestInWords = 3;
constexpr std::size_t kShortestValue = 4;

// Returns the value without the braces that `written` may have around it.
std::string ValueIn(std::string_view written) {
  written = Trimmed(written);
  if (!written.starts_with('{')) return std::string(written);
  std::string value;
  for (std::size_t at = 1; at < written.size(); ++at) {
    if (written[at] == '}' && written.substr(at, 2) != "}}") break;
    if (written[at] == '}') ++at;
    value += written[at];
  }
  return value;
}

bool IsWordAt(std::string_view text, std::size_t at, std::size_t length) {
  const std::size_t end = at + length;
  return (at == 0 || !IsLetterOrDigit(text[at - 1])) &&
         (end == text.size() || !IsLetterOrDigit(text[end]));
}

void HideIn(std::string& said, std::string_view secret) {
  for (std::size_t at = 0; (at = said.find(secret, at)) != std::string::npos;) {
    if (secret.size() >= kShortestInWords || IsWordAt(said, at, secret.size())) {
      said.replace(at, secret.size(), kHidden);
      at += kHidden.size();
    } else {
      ++at;
    }
  }
}

}  // namespace

std::size_t ConnectionValueLength(std::string_view rest) {
  const std::size_t first = std::min(rest.find_first_not_of(" \t\r\n"), rest.size());
  std::size_t close = first;
  if (rest.substr(first).starts_with('{')) {
    close = rest.find('}', first);
    while (close < rest.size() && rest.substr(close).starts_with("}}")) {
      close = rest.find('}', close + 2);
    }
  }
  return std::min(rest.find(';', close), rest.size());
}

bool IsSecretKey(std::string_view key) {
  constexpr std::array<std::string_view, 4> kWords = {"pwd", "pass", "secret", "token"};
  return std::any_of(kWords.begin(), kWords.end(), [key](std::string_view word) {
    return FindIgnoringCase(key, word) != std::string_view::npos;
  });
}

ConnectionText::ConnectionText(std::string_view text) : text_(text) { Split(); }

void ConnectionText::Split() {
  for (std::string_view rest = text_; !rest.empty();) {
    const std::size_t equals = rest.find('=');
    std::size_t end = std::min(rest.find(';'), rest.size());
    if (equals < end) {
      const std::string_view key = Trimmed(rest.substr(0, equals));
      rest.remove_prefix(equals + 1);
      end = ConnectionValueLength(rest);
      const std::string_view written = Trimmed(rest.substr(0, end));
      settings_.push_back({std::string(key), ValueIn(written), std::string(written)});
    }
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
}

const std::string* ConnectionText::ValueOf(std::string_view key) const {
  const auto found =
      std::find_if(settings_.begin(), settings_.end(),
                   [key](const Setting& setting) { return EqualIgnoringCase(setting.key, key); });
  return found != settings_.end() ? &found->value : nullptr;
}

std::string ConnectionText::WithoutSecrets(std::string said, Hide hide) const {
  std::vector<std::string_view> hidden;
  if (text_.size() >= kShortestInWords) hidden.push_back(text_);
  for (const auto& [key, value, written] : settings_) {
    const bool is_value = hide == Hide::kAllValues && value.size() >= kShortestValue;
    if (value.empty() || (!is_value && !IsSecretKey(key))) continue;
    hidden.push_back(value);
    hidden.push_back(written);
  }
  // The longest first: a value that is part of another one would leave the rest of that one.
  std::stable_sort(hidden.begin(), hidden.end(),
                   [](std::string_view a, std::string_view b) { return a.size() > b.size(); });
  for (const std::string_view secret : hidden) HideIn(said, secret);
  return said;
}

}  // namespace qv::text
