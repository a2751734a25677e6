#include "tests/support/System.h"

#include <sys/stat.h>

#include <cstdlib>

namespace qv {

void SetVariable(const std::string& name, const char* value) {
  value != nullptr ? ::setenv(name.c_str(), value, 1) : ::unsetenv(name.c_str());
}

bool MakeLink(const std::filesystem::path& target, const std::filesystem::path& link) {
  std::filesystem::create_symlink(target, link);
  return true;
}

bool MakePipe(const std::filesystem::path& path) { return ::mkfifo(path.c_str(), 0600) == 0; }

}  // namespace qv
