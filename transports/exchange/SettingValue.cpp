#include "SettingValue.h"

#include <cstdint>

#include "base/text/Numbers.h"
#include "transports/frame/Frame.h"

namespace qv::wire {

namespace {

constexpr std::int64_t kLongestMilliseconds = 3'600'000;

}  // namespace

bool SetMilliseconds(std::chrono::milliseconds& target, const std::string& value) {
  const auto number = text::ParseNumber<std::int64_t>(value);
  if (!number || *number < 1 || *number > kLongestMilliseconds) return false;
  target = std::chrono::milliseconds(*number);
  return true;
}

bool SetText(std::string& target, const std::string& value) {
  if (value.size() > kMaxToken) return false;
  target = value;
  return true;
}

bool SetSwitch(bool& target, const std::string& value) {
  if (value != "0" && value != "1") return false;
  target = value == "1";
  return true;
}

}  // namespace qv::wire
