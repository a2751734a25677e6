#include "SettingValue.h"

#include <charconv>
#include <cstdint>

#include "transports/frame/Frame.h"

namespace qv::wire {

namespace {

constexpr std::int64_t kLongestMilliseconds = 3'600'000;

}  // namespace

bool SetMilliseconds(std::chrono::milliseconds& target, const std::string& value) {
  std::int64_t number = 0;
  const char* const end = value.data() + value.size();
  const auto [stop, error] = std::from_chars(value.data(), end, number);
  if (error != std::errc() || stop != end) return false;
  if (number < 1 || number > kLongestMilliseconds) return false;
  target = std::chrono::milliseconds(number);
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
