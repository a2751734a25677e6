#include "HttpParameters.h"

namespace qv::wire {

namespace {

using Settings = HttpSettings;

constexpr Parameter<Settings> kParameters[] = {
    TextParameter<Settings, &Settings::token>("token"),
    SwitchParameter<Settings, &Settings::use_tls>("tls"),
    TextParameter<Settings, &Settings::ca_file>("ca_file"),
    MillisecondsParameter<Settings, &Settings::connect_timeout>("connect_timeout_ms"),
    MillisecondsParameter<Settings, &Settings::io_timeout>("io_timeout_ms"),
};

}  // namespace

HttpParameters::HttpParameters() : ParameterSet(kParameters) {}

}  // namespace qv::wire
