// Programs that tests start, such as servers on a port of their own choice.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace qv {

// Starts a program, found on the path, in `folder`, or in this program's working directory if that
// is empty. Its output, and its errors if `with_errors`, go to `output`, which must close on exec.
// Returns -1 on failure.
pid_t Spawn(std::vector<std::string> words, int output, bool with_errors,
            const std::string& folder = "");

struct Ended {
  int status;  // the negative signal if one ended the program; -1 if it could not be started
  std::string output;
};
// Runs a program like Spawn, to its end, with its errors in its output.
Ended RunToEnd(const std::vector<std::string>& words, const std::string& folder = "");

// A server that the constructor starts and the destructor kills.
class ServerProcess {
 public:
  // Runs `command` and waits for the port at the end of the first line that it prints. Port() is 0
  // if it ends without one.
  explicit ServerProcess(const std::vector<std::string>& command);
  ~ServerProcess() { Kill(); }
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  [[nodiscard]] std::uint16_t Port() const { return port_; }
  // Kills the process at once. Any thread, once.
  void Kill();

 private:
  pid_t pid_ = -1;
  std::uint16_t port_ = 0;
};

}  // namespace qv
