#include "HttpParameters.h"

#include "transports/frame/Frame.h"

namespace qv::wire {

namespace {

static_assert(text::kLongestParameter <= kMaxToken, "a token that was taken can be sent");

using Settings = HttpSettings;

constexpr text::Parameter<Settings> kParameters[] = {
    text::TextParameter<Settings, &Settings::token>("token"),
    text::SwitchParameter<Settings, &Settings::use_tls>("tls"),
    text::TextParameter<Settings, &Settings::ca_file>("ca_file"),
    text::MillisecondsParameter<Settings, &Settings::connect_timeout>("connect_timeout_ms"),
    text::MillisecondsParameter<Settings, &Settings::io_timeout>("io_timeout_ms"),
};

}  // namespace

HttpParameters::HttpParameters() : ParameterSet(kParameters) {}

}  // namespace qv::wire
