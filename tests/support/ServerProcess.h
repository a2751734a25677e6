// Programs that tests start; among them servers, on a port of their own choice, that can be killed.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace qv {

// Starts a program, found on the path, in `folder`, or in this program's when that is empty. What
// it prints, errors too when `with_errors`, goes to `output`, which must close on exec. -1 when it
// cannot be started.
pid_t Spawn(std::vector<std::string> words, int output, bool with_errors,
            const std::string& folder = "");

// Started by the constructor, killed by the destructor.
class ServerProcess {
 public:
  // Runs `command` and waits for the port at the end of the first line that it prints; 0 when it
  // ends without one.
  explicit ServerProcess(const std::vector<std::string>& command);
  ~ServerProcess() { Kill(); }
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  [[nodiscard]] std::uint16_t Port() const { return port_; }
  // At once, without a chance to put anything in order. Any thread, once.
  void Kill();

 private:
  pid_t pid_ = -1;
  std::uint16_t port_ = 0;
};

}  // namespace qv
