// The rules that all sessions of a server share, and sessions over plain sockets.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "ClientStream.h"
#include "tools/qvstandin/commands/Command.h"

namespace qv::standin {

// The server's record of one request.
struct ServedCommand {
  std::uint32_t command;
  std::string database;  // or the file that the command names; empty if it names neither
  std::string outcome;   // "done", or why not
  std::uint64_t bytes;   // of the reply: its fields and its file
  std::chrono::milliseconds time;
};

// What all sessions of a server have in common.
struct SessionRules {
  std::string token;        // every request must carry it; empty: no token is required
  std::string login_token;  // accepted instead over HTTP; this server hands it out
  std::chrono::milliseconds first_timeout;  // until a new client sends its first request
  std::chrono::milliseconds idle_timeout;   // until a client sends its next request
  std::chrono::milliseconds statement_limit;
  std::uint64_t request_limit;  // the longest payload, in bytes
  std::uint64_t upload_limit;   // the longest file that a command may carry, in bytes
  std::function<void(ServedCommand)> on_served;
  std::function<void()> on_malformed_frame;
};

// Returns an unpredictable token of 32 hexadecimal digits. Throws if the system has no random
// numbers.
[[nodiscard]] std::string NewSecret();

// Compares in a time that does not depend on where the two differ.
[[nodiscard]] bool SameSecret(std::string_view secret, std::string_view given);

// Serves one client whose frames follow each other directly on the connection.
class FrameSession {
 public:
  // The arguments outlive the session.
  FrameSession(ClientStream& stream, Services& services, const SessionRules& rules)
      : stream_(stream), services_(services), rules_(rules) {}

  // Returns when the client is gone or breaks the protocol, or when the stream is closed.
  void Serve();

 private:
  [[nodiscard]] bool ServeRequest();

  ClientStream& stream_;
  Services& services_;
  const SessionRules& rules_;
};

}  // namespace qv::standin
