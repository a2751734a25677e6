#include "Secret.h"

#include <cstddef>
#include <random>

namespace qv::standin {

std::string NewSecret() {
  constexpr std::size_t kDigits = 32;
  std::random_device random;  // not a generator that whoever knows its seed can follow
  std::uniform_int_distribution<std::size_t> digit(0, 15);
  std::string secret;
  while (secret.size() < kDigits) secret += "0123456789abcdef"[digit(random)];
  return secret;
}

bool SameSecret(std::string_view secret, std::string_view given) {
  std::size_t difference = secret.size() ^ given.size();
  for (std::size_t i = 0; i < given.size(); ++i) {
    const char expected = secret.empty() ? '\0' : secret[i % secret.size()];
    difference |= static_cast<unsigned char>(expected ^ given[i]);
  }
  return difference == 0;
}

}  // namespace qv::standin
