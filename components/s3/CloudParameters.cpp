#include "CloudParameters.h"

#include "base/text/Letters.h"
#include "base/text/Numbers.h"

namespace qv::components {

namespace {

using Settings = TransferSettings;

// What servers take for a part that is not the last.
constexpr std::uint64_t kLeastPart = 5U << 20;
constexpr std::uint64_t kLargestPart = std::uint64_t{5} << 30;

bool SetPartBytes(Settings& to, const std::string& value) {
  const auto bytes = text::ParseNumber<std::uint64_t>(value);
  if (!bytes || *bytes < kLeastPart || *bytes > kLargestPart) return false;
  to.part_bytes = *bytes;
  return true;
}

// It becomes part of a header.
bool SetRegion(Settings& to, const std::string& value) {
  const auto is_allowed = [](char c) { return text::IsLetterOrDigit(c) || c == '-' || c == '_'; };
  if (value.empty() || !std::all_of(value.begin(), value.end(), is_allowed)) return false;
  return text::SetText(to.region, value);
}

constexpr text::Parameter<Settings> kParameters[] = {
    text::TextParameter<Settings, &Settings::ca_file>("ca_file"),
    text::MillisecondsParameter<Settings, &Settings::connect_timeout>("connect_timeout_ms"),
    text::MillisecondsParameter<Settings, &Settings::io_timeout>("io_timeout_ms"),
    {"region", [](const Settings& from) { return from.region; }, &SetRegion},
    {"part_bytes", [](const Settings& from) { return std::to_string(from.part_bytes); },
     &SetPartBytes},
};

}  // namespace

CloudParameters::CloudParameters() : ParameterSet(kParameters) {}

}  // namespace qv::components
