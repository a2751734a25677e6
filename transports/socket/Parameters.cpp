#include "Parameters.h"

namespace qv::wire {

namespace {

using Settings = TransportSettings;

constexpr Parameter<Settings> kParameters[] = {
    TextParameter<Settings, &Settings::display_messages>("dispmsg"),
    TextParameter<Settings, &Settings::token>("token"),
    MillisecondsParameter<Settings, &Settings::connect_timeout>("connect_timeout_ms"),
    MillisecondsParameter<Settings, &Settings::io_timeout>("io_timeout_ms"),
    MillisecondsParameter<Settings, &Settings::retry_after>("retry_after_ms"),
    {"tls", [](const Settings&) { return std::string("0"); },
     [](Settings&, const std::string& value) { return value == "0"; }},
    {"ca_file", [](const Settings&) { return std::string(); },
     [](Settings&, const std::string& value) { return value.empty(); }},
};

}  // namespace

Parameters::Parameters() : ParameterSet(kParameters) {}

}  // namespace qv::wire
