#include "base/text/ParameterSet.h"

#include <cstdint>

#include "base/text/Numbers.h"

namespace qv::text {

namespace {

constexpr std::int64_t kLongestMilliseconds = 3'600'000;

}  // namespace

bool SetMilliseconds(std::chrono::milliseconds& target, const std::string& value) {
  const auto number = ParseNumber<std::int64_t>(value);
  if (!number || *number < 1 || *number > kLongestMilliseconds) return false;
  target = std::chrono::milliseconds(*number);
  return true;
}

bool SetText(std::string& target, const std::string& value) {
  if (value.size() > kLongestParameter) return false;
  target = value;
  return true;
}

bool SetSwitch(bool& target, const std::string& value) {
  if (value != "0" && value != "1") return false;
  target = value == "1";
  return true;
}

}  // namespace qv::text
