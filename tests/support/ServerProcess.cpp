#include "ServerProcess.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>

#include "Process.h"

namespace qv {

ServerProcess::ServerProcess(const std::vector<std::string>& command) {
  std::array<int, 2> pipe_ends{};
  if (pipe2(pipe_ends.data(), O_CLOEXEC) != 0) return;
  pid_ = Spawn(command, pipe_ends[1], false);
  close(pipe_ends[1]);
  std::string line;
  for (char ch = 0; read(pipe_ends[0], &ch, 1) == 1 && ch != '\n';) line += ch;
  close(pipe_ends[0]);
  port_ = static_cast<std::uint16_t>(std::atoi(line.c_str() + line.rfind(':') + 1));
}

void ServerProcess::Kill() {
  if (pid_ <= 0) return;
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
  pid_ = -1;
}

}  // namespace qv
