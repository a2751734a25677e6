#include "SocketParameters.h"

#include <cstring>
#include <initializer_list>
#include <string>

#include "transports/exchange/RequestFrame.h"
#include "transports/frame/Frame.h"

namespace qv::wire {

namespace {

static_assert(text::kLongestParameter <= kMaxToken, "a token that was taken can be sent");

using Settings = SocketSettings;

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

constexpr std::size_t kLengthWord = 4;

// Removes and returns the next text of `fields`, or an empty one if there is none.
std::string TakeText(Bytes& fields) {
  if (fields.size() < CFIFOClass::kFieldOverhead) return {};
  const std::uint64_t length = LoadU32(fields.data());
  if (length > fields.size() - CFIFOClass::kFieldOverhead) return {};
  const Bytes body = fields.subspan(kLengthWord, static_cast<std::size_t>(length));
  fields = fields.subspan(body.size() + CFIFOClass::kFieldOverhead);
  return {body.begin(), body.end()};
}

std::string Fields(std::initializer_list<std::string> texts) {
  std::string fields;
  for (const std::string& text : texts) {
    if (text.empty()) continue;
    char length[kLengthWord];
    StoreU32(length, static_cast<std::uint32_t>(text.size()));
    fields.append(length, sizeof length).append(text).push_back('\0');
  }
  return fields;
}

std::string Answer(SocketParameters& parameters, const CMsgContent& request) {
  Bytes fields = RequestPayload(request).value_or(Bytes());
  const std::string name = TakeText(fields);
  if (request.Command() == kSetParameterCommand) {
    return Fields({parameters.Set(name, TakeText(fields)) ? "1" : "0"});
  }
  const std::optional<std::string> value = parameters.Get(name);
  return value ? Fields({"1", *value}) : Fields({"0"});
}

}  // namespace

SocketParameters::SocketParameters() : ParameterSet(kParameters) {}

bool AnswerParameterCommand(SocketParameters& parameters, const CMsgContent& request,
                            CMsgContent& reply) {
  const std::string fields = Answer(parameters, request);
  if (!reply.Queue().SetFilled(static_cast<std::uint32_t>(fields.size()))) return false;
  std::memcpy(reply.Queue().Area(), fields.data(), fields.size());
  return true;
}

}  // namespace qv::wire
