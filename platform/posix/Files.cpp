#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "../Platform.h"

namespace qv::platform {

const char kSeparator = '/';

std::string TempFolder() {
  const char* const named = std::getenv("TMPDIR");
  std::string folder = named != nullptr && *named != '\0' ? named : "/tmp";
  if (folder.back() != kSeparator) folder += kSeparator;
  return folder;
}

std::FILE* CreatePrivateFile(const std::string& path, Create how) {
  // A link in a shared temporary folder may be somebody's trap, so none is followed.
  const int on_existing = how == Create::kNew ? O_EXCL : O_TRUNC;
  const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | on_existing;
  const int descriptor = ::open(path.c_str(), flags, S_IRUSR | S_IWUSR);
  if (descriptor < 0) return nullptr;
  std::FILE* const file = ::fdopen(descriptor, "wb");
  if (file == nullptr) ::close(descriptor);
  return file;
}

bool CreatePrivateFolder(const std::string& path) {
  std::error_code error;
  const std::filesystem::path folder(path);
  if (std::filesystem::is_directory(folder, error)) return true;
  const std::filesystem::path above = folder.parent_path();
  if (!above.empty() && above != folder && !CreatePrivateFolder(above.string())) return false;
  return ::mkdir(path.c_str(), S_IRWXU) == 0 || std::filesystem::is_directory(folder, error);
}

bool RemoveFile(const std::string& path) { return ::unlink(path.c_str()) == 0; }

bool ReplaceFile(const std::string& from, const std::string& to) {
  return std::rename(from.c_str(), to.c_str()) == 0;
}

bool FlushToDisk(std::FILE* file) { return std::fflush(file) == 0 && ::fsync(::fileno(file)) == 0; }

}  // namespace qv::platform
