// The transport's own parameters, and the two commands by which hosts set and read them.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "base/text/ParameterSet.h"
#include "message/MsgContent.h"

namespace qv::wire {

struct SocketSettings {
  // Whether a user interface may show messages. Only stored here, for the host to read back.
  std::string display_messages = "1";
  std::string token;
  std::chrono::milliseconds connect_timeout{5000};
  // The longest time without progress.
  std::chrono::milliseconds io_timeout{30000};
  // The shortest time between two probes of a bad network.
  std::chrono::milliseconds retry_after{3000};
};

//   name                values
//   dispmsg             any text
//   token               any text; sent with every request
//   connect_timeout_ms  1 to 3600000
//   io_timeout_ms       1 to 3600000
//   retry_after_ms      1 to 3600000
//   tls                 only "0", since this transport does not encrypt
//   ca_file             only empty, since this transport does not encrypt
class SocketParameters : public text::ParameterSet<SocketSettings> {
 public:
  SocketParameters();
};

// Request: text name. Reply: text "1" and text value, or text "0" for an unknown name. An empty
// value is omitted, since a text field has at least one character.
inline constexpr std::uint32_t kGetParameterCommand = 0xFFFFFFFF;
// Request: text name, text value (omitted if empty). Reply: text "1", or "0" if the value was
// rejected.
inline constexpr std::uint32_t kSetParameterCommand = 0xFFFFFFFE;

[[nodiscard]] inline bool IsParameterCommand(std::uint32_t command) {
  return command == kGetParameterCommand || command == kSetParameterCommand;
}

// Fills `reply`. Returns false if the answer does not fit.
[[nodiscard]] bool AnswerParameterCommand(SocketParameters& parameters, const CMsgContent& request,
                                          CMsgContent& reply);

}  // namespace qv::wire
