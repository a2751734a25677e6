// The two commands that the transport answers itself.
#pragma once

#include <cstdint>

#include "Parameters.h"
#include "message/MsgContent.h"

namespace qv::wire {

// Request: text name. Reply: text "1" and text value, or text "0" for an unknown name. An empty
// value has no field, since a text has at least one character.
inline constexpr std::uint32_t kGetParameterCommand = 0xFFFFFFFF;
// Request: text name, text value (left out for an empty one). Reply: text "1", or "0" when the
// value was not taken.
inline constexpr std::uint32_t kSetParameterCommand = 0xFFFFFFFE;

[[nodiscard]] inline bool IsParameterCommand(std::uint32_t command) {
  return command == kGetParameterCommand || command == kSetParameterCommand;
}

// Fills `reply`. False when the answer does not fit it.
[[nodiscard]] bool AnswerParameterCommand(Parameters& parameters, const CMsgContent& request,
                                          CMsgContent& reply);

}  // namespace qv::wire
