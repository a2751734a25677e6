#include "Parameters.h"

#include "transports/frame/Frame.h"

namespace qv::wire {

namespace {

static_assert(text::kLongestParameter <= kMaxToken, "a token that was taken can be sent");

using Settings = TransportSettings;

constexpr text::Parameter<Settings> kParameters[] = {
    text::TextParameter<Settings, &Settings::display_messages>("dispmsg"),
    text::TextParameter<Settings, &Settings::token>("token"),
    text::MillisecondsParameter<Settings, &Settings::connect_timeout>("connect_timeout_ms"),
    text::MillisecondsParameter<Settings, &Settings::io_timeout>("io_timeout_ms"),
    text::MillisecondsParameter<Settings, &Settings::retry_after>("retry_after_ms"),
    {"tls", [](const Settings&) { return std::string("0"); },
     [](Settings&, const std::string& value) { return value == "0"; }},
    {"ca_file", [](const Settings&) { return std::string(); },
     [](Settings&, const std::string& value) { return value.empty(); }},
};

}  // namespace

Parameters::Parameters() : ParameterSet(kParameters) {}

}  // namespace qv::wire
