// Serves one client from its first request to its last.
#pragma once

#include "ClientStream.h"
#include "SessionRules.h"
#include "tools/qvstandin/commands/Command.h"

namespace qv::standin {

// One whose frames follow each other on the connection, with nothing around them.
class Session {
 public:
  // All three outlive the session.
  Session(ClientStream& stream, Services& services, const SessionRules& rules)
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
