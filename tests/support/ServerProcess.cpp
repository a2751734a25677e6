#include "ServerProcess.h"

#include <fcntl.h>
#include <pty.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utmp.h>

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

pid_t SpawnOnTerminal(std::vector<std::string> words, int& terminal) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  int near_end = -1;
  int far_end = -1;
  if (openpty(&near_end, &far_end, nullptr, nullptr, nullptr) != 0) return -1;
  const pid_t pid = fork();
  if (pid == 0) {
    login_tty(far_end);
    execv(arguments[0], arguments.data());
    _exit(127);
  }
  close(far_end);
  terminal = near_end;
  return pid;
}

std::string ReadUntil(int terminal, const std::string& last) {
  std::string all;
  for (char ch = 0; !all.ends_with(last) && read(terminal, &ch, 1) == 1;) all += ch;
  return all;
}

std::string ReadToEnd(int output) {
  std::string all;
  std::array<char, 4096> piece;
  // A terminal whose other end is closed reports an error.
  for (ssize_t got = 0; (got = read(output, piece.data(), piece.size())) > 0;) {
    all.append(piece.data(), static_cast<std::size_t>(got));
  }
  close(output);
  return all;
}

Ended WaitFor(pid_t pid, int output) {
  Ended ended{-1, ReadToEnd(output)};
  int status = -1;
  if (pid > 0) waitpid(pid, &status, 0);
  if (pid > 0) ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  return ended;
}

Ended RunToEnd(const std::vector<std::string>& words, const std::string& folder) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return {-1, "no pipe"};
  const pid_t pid = Spawn(words, ends[1], true, folder);
  close(ends[1]);
  return WaitFor(pid, ends[0]);
}

ServerProcess::ServerProcess(const std::vector<std::string>& command, std::size_t ports)
    : ports_(ports) {
  std::array<int, 2> pipe_ends{};
  if (pipe2(pipe_ends.data(), O_CLOEXEC) != 0) return;
  pid_ = Spawn(command, pipe_ends[1], false);
  close(pipe_ends[1]);
  for (std::uint16_t& port : ports_) {
    const std::string line = ReadUntil(pipe_ends[0], "\n");
    port = static_cast<std::uint16_t>(std::atoi(line.c_str() + line.rfind(':') + 1));
  }
  close(pipe_ends[0]);
}

void ServerProcess::Kill() {
  if (pid_ <= 0) return;
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
  pid_ = -1;
}

}  // namespace qv
