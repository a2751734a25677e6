#include "CloudParameters.h"

#include <charconv>

namespace qv::components {

namespace {

using Settings = TransferSettings;

// What servers take for a part that is not the last.
constexpr std::uint64_t kLeastPart = 5U << 20;
constexpr std::uint64_t kLargestPart = std::uint64_t{5} << 30;

bool SetPartBytes(Settings& to, const std::string& value) {
  std::uint64_t bytes = 0;
  const char* const end = value.data() + value.size();
  const auto [stop, error] = std::from_chars(value.data(), end, bytes);
  if (error != std::errc() || stop != end) return false;
  if (bytes < kLeastPart || bytes > kLargestPart) return false;
  to.part_bytes = bytes;
  return true;
}

// It becomes part of a header.
bool SetRegion(Settings& to, const std::string& value) {
  const auto is_allowed = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_';
  };
  if (value.empty() || !std::all_of(value.begin(), value.end(), is_allowed)) return false;
  return wire::SetText(to.region, value);
}

constexpr wire::Parameter<Settings> kParameters[] = {
    wire::TextParameter<Settings, &Settings::ca_file>("ca_file"),
    wire::MillisecondsParameter<Settings, &Settings::connect_timeout>("connect_timeout_ms"),
    wire::MillisecondsParameter<Settings, &Settings::io_timeout>("io_timeout_ms"),
    {"region", [](const Settings& from) { return from.region; }, &SetRegion},
    {"part_bytes", [](const Settings& from) { return std::to_string(from.part_bytes); },
     &SetPartBytes},
};

}  // namespace

CloudParameters::CloudParameters() : ParameterSet(kParameters) {}

}  // namespace qv::components
