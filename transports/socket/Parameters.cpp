#include "Parameters.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "transports/frame/Frame.h"

namespace qv {

namespace {

constexpr std::int64_t kLongestMilliseconds = 3'600'000;

struct Parameter {
  const char* name;
  std::string (*get)(const TransportSettings&);
  bool (*set)(TransportSettings&, const std::string&);
};

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

template <std::chrono::milliseconds TransportSettings::*kMember>
constexpr Parameter Milliseconds(const char* name) {
  return {
      name, [](const TransportSettings& from) { return std::to_string((from.*kMember).count()); },
      [](TransportSettings& to, const std::string& v) { return SetMilliseconds(to.*kMember, v); }};
}

template <std::string TransportSettings::*kMember>
constexpr Parameter Text(const char* name) {
  return {name, [](const TransportSettings& from) { return from.*kMember; },
          [](TransportSettings& to, const std::string& v) { return SetText(to.*kMember, v); }};
}

constexpr Parameter kParameters[] = {
    Text<&TransportSettings::display_messages>("dispmsg"),
    Text<&TransportSettings::token>("token"),
    Milliseconds<&TransportSettings::connect_timeout>("connect_timeout_ms"),
    Milliseconds<&TransportSettings::io_timeout>("io_timeout_ms"),
    Milliseconds<&TransportSettings::retry_after>("retry_after_ms"),
    {"tls", [](const TransportSettings&) { return std::string("0"); },
     [](TransportSettings&, const std::string& value) { return value == "0"; }},
    {"ca_file", [](const TransportSettings&) { return std::string(); },
     [](TransportSettings&, const std::string& value) { return value.empty(); }},
};

const Parameter* Find(const std::string& name) {
  const auto* const found = std::find_if(std::begin(kParameters), std::end(kParameters),
                                         [&](const Parameter& one) { return name == one.name; });
  return found != std::end(kParameters) ? found : nullptr;
}

}  // namespace

std::optional<std::string> Parameters::Get(const std::string& name) const {
  const Parameter* const parameter = Find(name);
  if (parameter == nullptr) return std::nullopt;
  const std::lock_guard lock(mutex_);
  return parameter->get(settings_);
}

bool Parameters::Set(const std::string& name, const std::string& value) {
  const Parameter* const parameter = Find(name);
  if (parameter == nullptr) return false;
  const std::lock_guard lock(mutex_);
  return parameter->set(settings_, value);
}

TransportSettings Parameters::Snapshot() const {
  const std::lock_guard lock(mutex_);
  return settings_;
}

}  // namespace qv
