#include "ConnectionSecrets.h"

#include <algorithm>
#include <vector>

namespace qv::tool {
namespace {

constexpr std::string_view kHidden = "***";
// What is shorter would be found in many words, and each "***" in one would tell it.
constexpr std::size_t kShortestHidden = 3;

char ToLower(char ch) { return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch; }

bool IsSecret(std::string_view key) {
  std::string name(key);
  std::transform(name.begin(), name.end(), name.begin(), ToLower);
  for (const std::string_view part : {"pwd", "pass", "secret", "token"}) {
    if (name.find(part) != std::string::npos) return true;
  }
  return false;
}

// Takes the value off that `rest` begins with, and the ";" behind it. One in braces may hold ";",
// and "}" by doubling it.
std::string TakeValue(std::string_view& rest) {
  std::string value;
  std::size_t at = 0;
  if (!rest.empty() && rest.front() == '{') {
    for (at = 1; at < rest.size(); ++at) {
      if (rest[at] == '}' && rest.substr(at, 2) != "}}") break;
      if (rest[at] == '}') ++at;
      value += rest[at];
    }
  } else {
    value = rest.substr(0, rest.find(';'));
  }
  const std::size_t end = rest.find(';', at);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return value;
}

std::vector<std::string> SecretsOf(std::string_view connection_text) {
  std::vector<std::string> secrets = {std::string(connection_text)};
  for (std::string_view rest = connection_text; !rest.empty();) {
    const std::size_t equals = rest.find('=');
    if (equals == std::string_view::npos) break;
    const std::string_view key = rest.substr(0, equals);
    rest.remove_prefix(equals + 1);
    std::string value = TakeValue(rest);
    if (IsSecret(key)) secrets.push_back(std::move(value));
  }
  return secrets;
}

}  // namespace

std::string WithoutSecrets(std::string text, std::string_view connection_text) {
  for (const std::string& secret : SecretsOf(connection_text)) {
    if (secret.size() < kShortestHidden) continue;
    for (std::size_t at = 0; (at = text.find(secret, at)) != std::string::npos;) {
      text.replace(at, secret.size(), kHidden);
      at += kHidden.size();
    }
  }
  return text;
}

}  // namespace qv::tool
