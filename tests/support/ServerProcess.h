// A program that serves on a port of its own choice, as a process that can be killed.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace qv {

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
