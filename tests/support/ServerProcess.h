// Programs that tests start, such as servers on a port of their own choice.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qv {

// Starts a program, found on the path, in `folder`, or in this program's working directory if that
// is empty. Its output, and its errors if `with_errors`, go to `output`, which must close on exec.
// Returns -1 on failure.
pid_t Spawn(std::vector<std::string> words, int output, bool with_errors,
            const std::string& folder = "");

// Starts a program, named by its path, on a new terminal whose other end is `terminal`. Returns -1
// if there are no terminals, as there are none if the system's files for them are not mounted.
pid_t SpawnOnTerminal(std::vector<std::string> words, int& terminal);
// Returns what can be read from `terminal` up to `last`, or all if `last` does not come.
std::string ReadUntil(int terminal, const std::string& last);

// Returns all that can be read from `output`, which is then closed.
std::string ReadToEnd(int output);

struct Ended {
  int status;  // the negative signal if one ended the program; -1 if it could not be started
  std::string output;
};
// Waits for a program whose output comes from `output`, which is then closed.
Ended WaitFor(pid_t pid, int output);
// Runs a program like Spawn, to its end, with its errors in its output.
Ended RunToEnd(const std::vector<std::string>& words, const std::string& folder = "");

// A server that the constructor starts and the destructor kills.
class ServerProcess {
 public:
  // Runs `command` and waits for the ports at the ends of the first lines that it prints. A port is
  // 0 if it ends without one.
  explicit ServerProcess(const std::vector<std::string>& command, std::size_t ports = 1);
  ~ServerProcess() { Kill(); }
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  [[nodiscard]] std::uint16_t Port(std::size_t line = 0) const { return ports_[line]; }
  // Kills the process at once. Any thread, once.
  void Kill();

 private:
  pid_t pid_ = -1;
  std::vector<std::uint16_t> ports_;
};

}  // namespace qv
