// The values that parameters of a transport can have.
#pragma once

#include <chrono>
#include <string>

namespace qv::wire {

// Each gives false, and leaves `target` alone, for a value that it cannot have.

// 1 to 3600000, in decimal digits and nothing else.
[[nodiscard]] bool SetMilliseconds(std::chrono::milliseconds& target, const std::string& value);
// At most as long as a token can be.
[[nodiscard]] bool SetText(std::string& target, const std::string& value);
// "0" or "1".
[[nodiscard]] bool SetSwitch(bool& target, const std::string& value);

}  // namespace qv::wire
