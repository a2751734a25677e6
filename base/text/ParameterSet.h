// Parameters: settings that hosts read and write by name, as texts.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <mutex>
#include <optional>
#include <span>
#include <string>

namespace qv::text {

// The longest value of a text parameter, in bytes.
inline constexpr std::size_t kLongestParameter = 4096;

// Each returns false, and leaves `target` unchanged, if `value` is not allowed.

// Allows 1 to 3600000, in decimal digits.
[[nodiscard]] bool SetMilliseconds(std::chrono::milliseconds& target, const std::string& value);
// Allows at most kLongestParameter bytes.
[[nodiscard]] bool SetText(std::string& target, const std::string& value);
// Allows "0" and "1".
[[nodiscard]] bool SetSwitch(bool& target, const std::string& value);

// The name of a parameter, and how a member of `Settings` is converted to text and back.
template <class Settings>
struct Parameter {
  const char* name;
  std::string (*get)(const Settings&);
  bool (*set)(Settings&, const std::string&);
};

template <class Settings, std::chrono::milliseconds Settings::*kMember>
constexpr Parameter<Settings> MillisecondsParameter(const char* name) {
  return {name, [](const Settings& from) { return std::to_string((from.*kMember).count()); },
          [](Settings& to, const std::string& v) { return SetMilliseconds(to.*kMember, v); }};
}

template <class Settings, std::string Settings::*kMember>
constexpr Parameter<Settings> TextParameter(const char* name) {
  return {name, [](const Settings& from) { return from.*kMember; },
          [](Settings& to, const std::string& v) { return SetText(to.*kMember, v); }};
}

template <class Settings, bool Settings::*kMember>
constexpr Parameter<Settings> SwitchParameter(const char* name) {
  return {name, [](const Settings& from) { return std::string(from.*kMember ? "1" : "0"); },
          [](Settings& to, const std::string& v) { return SetSwitch(to.*kMember, v); }};
}

// Thread-safe.
template <class Settings>
class ParameterSet {
 public:
  // `table` must outlive the set.
  explicit ParameterSet(std::span<const Parameter<Settings>> table) : table_(table) {}

  // Returns nothing for an unknown name.
  [[nodiscard]] std::optional<std::string> Get(const std::string& name) const {
    const Parameter<Settings>* const parameter = Find(name);
    if (parameter == nullptr) return std::nullopt;
    const std::lock_guard lock(mutex_);
    return parameter->get(settings_);
  }

  // Returns false, and changes nothing, for an unknown name or a value that is not allowed.
  [[nodiscard]] bool Set(const std::string& name, const std::string& value) {
    const Parameter<Settings>* const parameter = Find(name);
    if (parameter == nullptr) return false;
    const std::lock_guard lock(mutex_);
    return parameter->set(settings_, value);
  }

  // A copy of the values, for one exchange.
  [[nodiscard]] Settings Snapshot() const {
    const std::lock_guard lock(mutex_);
    return settings_;
  }

 private:
  const Parameter<Settings>* Find(const std::string& name) const {
    const auto found = std::find_if(table_.begin(), table_.end(),
                                    [&](const auto& one) { return name == one.name; });
    return found != table_.end() ? &*found : nullptr;
  }

  std::span<const Parameter<Settings>> table_;
  mutable std::mutex mutex_;
  Settings settings_;
};

}  // namespace qv::text
