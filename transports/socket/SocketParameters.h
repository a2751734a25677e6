// The transport's own parameters, and the two commands by which hosts set and read them.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "base/text/ParameterSet.h"
#include "message/MsgContent.h"

namespace qv::wire {

struct SocketSettings {
  // Whether a user interface may report what is going on; kept for the host, which reads it back.
  std::string display_messages = "1";
  std::string token;
  std::chrono::milliseconds connect_timeout{5000};
  // How long a stretch without progress may be.
  std::chrono::milliseconds io_timeout{30000};
  // How often a bad network is probed at most.
  std::chrono::milliseconds retry_after{3000};
};

//   name                values
//   dispmsg             any text
//   token               any text; travels with every request
//   connect_timeout_ms  1 to 3600000
//   io_timeout_ms       1 to 3600000
//   retry_after_ms      1 to 3600000
//   tls                 "0": this transport does not encrypt and says so rather than pretend
//   ca_file             empty: only an encrypting transport would use it
class SocketParameters : public text::ParameterSet<SocketSettings> {
 public:
  SocketParameters();
};

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
[[nodiscard]] bool AnswerParameterCommand(SocketParameters& parameters, const CMsgContent& request,
                                          CMsgContent& reply);

}  // namespace qv::wire
