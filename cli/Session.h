#pragma once

#include <iosfwd>

#include "CommandLine.h"

namespace qv {

// The library, started for one server and stopped at the end; one at a time.
class Session {
 public:
  explicit Session(const Connection& connection);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Hands the token and the deadlines to the transport. False, with the reason on `err`, when it
  // does not take one: sending on without it would not be what the user asked for.
  [[nodiscard]] bool Configure(std::ostream& err) const;

  // Asks the server whether it is there; also teaches the transport the state of the network.
  [[nodiscard]] bool Probe() const;

 private:
  const Connection& connection_;
};

}  // namespace qv
