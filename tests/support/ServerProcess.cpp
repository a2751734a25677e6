#include "ServerProcess.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>

extern char** environ;

namespace qv {

ServerProcess::ServerProcess(const std::vector<std::string>& command) {
  std::array<int, 2> pipe_ends{};
  if (pipe(pipe_ends.data()) != 0) return;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, pipe_ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, pipe_ends[0]);
  posix_spawn_file_actions_addclose(&actions, pipe_ends[1]);
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  if (posix_spawn(&pid_, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) {
    pid_ = -1;
  }
  posix_spawn_file_actions_destroy(&actions);
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
