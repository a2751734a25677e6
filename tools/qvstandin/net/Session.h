// What all sessions of a server have in common, and those over sockets.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "ClientStream.h"
#include "tools/qvstandin/commands/Command.h"

namespace qv::standin {

// What the server remembers of a request.
struct ServedCommand {
  std::uint32_t command;
  std::string database;  // or the file that the command names; empty when it names neither
  std::string outcome;   // "done", or why not
  std::uint64_t bytes;   // of the reply: its fields, and its file
  std::chrono::milliseconds time;
};

struct SessionRules {
  std::string token;        // what every request must carry; empty when none is asked for
  std::string login_token;  // what may stand in its place over HTTP; handed out by this server
  std::chrono::milliseconds first_timeout;  // how long a newcomer may say nothing
  std::chrono::milliseconds idle_timeout;   // how long it may afterwards
  std::chrono::milliseconds statement_limit;
  std::uint64_t request_limit;  // the longest payload, in bytes
  std::uint64_t upload_limit;   // the longest file that comes along with a command
  std::function<void(ServedCommand)> on_served;
  std::function<void()> on_malformed_frame;
};

// A new one that nobody can guess: 32 hexadecimal digits. Throws when the system has no random
// numbers.
[[nodiscard]] std::string NewSecret();

// Takes the same time wherever the two differ.
[[nodiscard]] bool SameSecret(std::string_view secret, std::string_view given);

// Serves one client, whose frames follow each other on the connection with nothing around them,
// from its first request to its last.
class FrameSession {
 public:
  // All three outlive the session.
  FrameSession(ClientStream& stream, Services& services, const SessionRules& rules)
      : stream_(stream), services_(services), rules_(rules) {}

  // Returns when the client is gone, breaks the rules, or its stream is closed.
  void Serve();

 private:
  [[nodiscard]] bool ServeRequest();

  ClientStream& stream_;
  Services& services_;
  const SessionRules& rules_;
};

}  // namespace qv::standin
