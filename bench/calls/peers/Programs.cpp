#include "Programs.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

namespace qv::bench {

namespace {

class WithoutOutput {
 public:
  WithoutOutput() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  }
  ~WithoutOutput() { posix_spawn_file_actions_destroy(&actions_); }
  WithoutOutput(const WithoutOutput&) = delete;
  WithoutOutput& operator=(const WithoutOutput&) = delete;

  [[nodiscard]] const posix_spawn_file_actions_t* Actions() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

}  // namespace

void RunProgram(const std::vector<std::string>& words) {
  std::vector<std::string> kept = words;
  std::vector<char*> arguments;
  for (std::string& word : kept) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const WithoutOutput actions;
  pid_t pid = -1;
  int status = -1;
  const bool ran = posix_spawnp(&pid, arguments[0], actions.Actions(), nullptr, arguments.data(),
                                environ) == 0 &&
                   waitpid(pid, &status, 0) == pid;
  if (!ran || status != 0) throw std::runtime_error(words.front() + " failed");
}

}  // namespace qv::bench
