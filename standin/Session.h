// Serves one client from its first request to its last.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "ClientStream.h"
#include "Command.h"
#include "ServedCommand.h"
#include "transports/frame/FrameIo.h"

namespace qv::standin {

struct SessionRules {
  std::string token;  // what every request must carry; empty when none is asked for
  std::chrono::milliseconds first_timeout;  // how long a newcomer may say nothing
  std::chrono::milliseconds idle_timeout;   // how long it may afterwards
  std::chrono::milliseconds statement_limit;
  std::uint64_t request_limit;  // the longest payload, in bytes
  std::function<void(ServedCommand)> on_served;
  std::function<void()> on_malformed_frame;
};

class Session {
 public:
  // All three outlive the session.
  Session(ClientStream& stream, Services& services, const SessionRules& rules)
      : stream_(stream), services_(services), rules_(rules) {}

  // Returns when the client is gone, breaks the rules, or its stream is closed.
  void Serve();

 private:
  struct Message {
    std::vector<unsigned char> token;
    std::vector<unsigned char> block;
    std::vector<unsigned char> payload;
  };

  [[nodiscard]] bool ServeRequest();
  [[nodiscard]] FrameStatus Receive(Message& message);
  [[nodiscard]] bool MayEnter(const Message& message) const;
  [[nodiscard]] bool Send(std::uint32_t command, const Reply& reply);
  void Record(std::uint32_t command, const Reply& reply,
              std::chrono::steady_clock::time_point start);

  ClientStream& stream_;
  Services& services_;
  const SessionRules& rules_;
};

}  // namespace qv::standin
