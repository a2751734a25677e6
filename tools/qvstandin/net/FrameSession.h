// The rules that all sessions of a server share, and sessions over plain sockets.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "ClientStream.h"
#include "tools/qvstandin/commands/Command.h"

namespace qv::standin {

class FrameExchange;

// The server's record of one request.
struct ServedCommand {
  std::uint32_t command;  // 0 for what was refused because it is no request, or one too many
  // Any bytes, like the other texts: the database or the file that the command names; empty if it
  // names neither.
  std::string database;
  std::string outcome;  // "done", or why not
  std::uint64_t bytes;  // of the reply: its fields and its file
  std::chrono::milliseconds time;
  error::Class error_class = error::kNone;
  std::string peer = {};                  // the client's address and port
  std::string statement = {};             // the beginning of it; it may contain passwords
  std::optional<std::int32_t> rows = {};  // of an answer with rows
  std::chrono::system_clock::time_point at = std::chrono::system_clock::now();
};

// What all sessions of a server have in common.
struct SessionRules {
  std::string token;        // every request must carry it; empty: no token is required
  std::string login_token;  // accepted instead over HTTP; this server hands it out
  std::chrono::milliseconds idle_timeout;  // until a client sends its next request
  std::chrono::milliseconds statement_limit;
  std::uint64_t request_limit;  // the longest payload, in bytes
  std::uint64_t upload_limit;   // the longest file that a command may carry, in bytes
  std::function<void(ServedCommand)> on_served;
};

// Returns the record of what a client sent that is not a request, or not one that can be read.
[[nodiscard]] ServedCommand RecordOfRefusal(const ClientStream& client, std::string why,
                                            error::Class error_class);

// Waits for the client's next request. Returns false if there is none. A client that pauses keeps
// no databases open.
[[nodiscard]] bool AwaitRequest(ClientStream& client, const Services& services,
                                const SessionRules& rules);

// Says once per second that a request is being worked on.
class ProgressClock {
 public:
  // Returns how long the work has taken, if it is time to say so.
  [[nodiscard]] std::optional<std::chrono::milliseconds> IsDue();

 private:
  using Clock = std::chrono::steady_clock;

  const Clock::time_point start_ = Clock::now();
  Clock::time_point next_ = start_ + std::chrono::seconds(1);
};

// Returns a progress frame.
using ProgressFrame = std::array<unsigned char, wire::kFrameHeaderSize>;
[[nodiscard]] ProgressFrame ProgressOf(std::chrono::milliseconds at_work);

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
  // Returns what the client may send now.
  [[nodiscard]] wire::FrameKinds Expected() const;
  // Answers the client's hello.
  [[nodiscard]] bool Greet(wire::FrameKind hello);
  [[nodiscard]] bool Answer(FrameExchange& exchange);
  // Refuses a frame that cannot be received, with a reason if the client takes one.
  void Reject(FrameExchange& exchange, wire::FrameStatus status);

  ClientStream& stream_;
  Services& services_;
  const SessionRules& rules_;
  bool is_new_ = true;  // nothing was received yet
  int version_ = 1;     // what the client knows
};

}  // namespace qv::standin
