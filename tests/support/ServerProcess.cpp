#include "ServerProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>

extern char** environ;

namespace qv {

pid_t Spawn(std::vector<std::string> words, int output, bool with_errors,
            const std::string& folder) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (!folder.empty()) posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  if (with_errors) posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t pid = -1;
  if (posix_spawnp(&pid, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) pid = -1;
  posix_spawn_file_actions_destroy(&actions);
  return pid;
}

Ended RunToEnd(const std::vector<std::string>& words, const std::string& folder) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return {-1, "no pipe"};
  const pid_t pid = Spawn(words, ends[1], true, folder);
  close(ends[1]);
  Ended ended{-1, {}};
  for (char ch = 0; read(ends[0], &ch, 1) == 1;) ended.output += ch;
  close(ends[0]);
  int status = -1;
  if (pid > 0) waitpid(pid, &status, 0);
  if (pid > 0) ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  return ended;
}

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
