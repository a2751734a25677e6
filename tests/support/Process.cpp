#include "Process.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

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

}  // namespace qv
