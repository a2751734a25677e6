// A connection to a database that waits for its client's next request.
#pragma once

#include <string>

namespace qv::standin {

class KeptSession {
 public:
  KeptSession() = default;
  virtual ~KeptSession() = default;
  KeptSession(const KeptSession&) = delete;
  KeptSession& operator=(const KeptSession&) = delete;

  // Sessions of one key can replace each other.
  [[nodiscard]] virtual const std::string& Key() const = 0;
  // Makes the engine forget what the last request has done. Returns false if the session cannot
  // serve another one.
  [[nodiscard]] virtual bool Refresh() = 0;
  // Returns whether another request finds the session as if it were new.
  [[nodiscard]] virtual bool IsFresh() = 0;
};

}  // namespace qv::standin
