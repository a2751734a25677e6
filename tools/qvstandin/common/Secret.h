// What only those who were told may know.
#pragma once

#include <string>
#include <string_view>

namespace qv::standin {

// A new one that nobody can guess: 32 hexadecimal digits. Throws when the system has no random
// numbers.
[[nodiscard]] std::string NewSecret();

// Takes the same time wherever the two differ.
[[nodiscard]] bool SameSecret(std::string_view secret, std::string_view given);

}  // namespace qv::standin
