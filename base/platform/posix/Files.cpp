#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#if defined(__linux__)
#include <linux/magic.h>
#include <sys/vfs.h>
#endif

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "base/platform/Platform.h"

namespace qv::platform {

const char kSeparator = '/';

namespace {

constexpr const char kDefaultTempFolder[] = "/tmp/";
// The longest path that hosts have room for, without the NUL.
constexpr std::size_t kMaxTempFolder = 259;

#if defined(__linux__)
// Missing in the system's header, since its code is kept elsewhere.
constexpr long kZfs = 0x2fc12fc1;
#endif

// The rights of a new file, before the user's mask is applied.
constexpr mode_t kAsTheUserLikes = 0666;

void CloseKeepingErrno(int descriptor) {
  const int cause = errno;
  ::close(descriptor);
  errno = cause;
}

// Makes a stream that owns the descriptor. Closes the descriptor if there is no memory for a
// stream; accepts -1.
std::FILE* StreamOf(int descriptor, const char* mode) {
  if (descriptor < 0) return nullptr;
  std::FILE* const file = ::fdopen(descriptor, mode);
  if (file == nullptr) CloseKeepingErrno(descriptor);
  return file;
}

bool HasOwnerOnly(const struct stat& status) { return (status.st_mode & (S_IRWXG | S_IRWXO)) == 0; }

// Removes everybody else's rights to an open file. Returns false and sets errno if it is not a file
// or belongs to somebody else.
bool MakePrivate(int descriptor) {
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) return false;
  if (!S_ISREG(status.st_mode)) {
    errno = EEXIST;
    return false;
  }
  return HasOwnerOnly(status) || ::fchmod(descriptor, S_IRUSR | S_IWUSR) == 0;
}

}  // namespace

std::string TempFolder() {
  const char* const named = std::getenv("TMPDIR");
  std::string folder = named != nullptr ? named : "";
  // A relative path would move with the working directory, and a truncated one names another
  // folder.
  if (!folder.starts_with(kSeparator)) return kDefaultTempFolder;
  folder = WithSeparator(std::move(folder));
  return folder.size() <= kMaxTempFolder ? folder : kDefaultTempFolder;
}

std::FILE* CreatePrivateFile(const std::string& path, Create how) {
  // A link or a pipe in a shared temporary folder may be a trap: links are not followed, and pipes
  // are not waited for.
  const int on_existing = how == Create::kNew ? O_EXCL : O_TRUNC;
  const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | on_existing;
  const int descriptor = ::open(path.c_str(), flags, S_IRUSR | S_IWUSR);
  if (descriptor < 0) return nullptr;
  if (MakePrivate(descriptor)) return StreamOf(descriptor, "wb");
  CloseKeepingErrno(descriptor);
  return nullptr;
}

std::FILE* OpenFile(const std::string& path, Opening how) {
  if (how == Opening::kRead) return StreamOf(OpenDescriptor(path), "rb");
  const int on_missing = how == Opening::kChange ? 0 : O_CREAT;
  const int on_existing = how == Opening::kCreate ? O_TRUNC : 0;
  const int flags = O_RDWR | O_CLOEXEC | on_missing | on_existing;
  return StreamOf(::open(path.c_str(), flags, kAsTheUserLikes), "r+b");
}

int OpenDescriptor(const std::string& path) { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC); }

void CloseDescriptor(int descriptor) { ::close(descriptor); }

std::optional<std::size_t> ReadAt(int descriptor, std::uint64_t offset, char* to,
                                  std::size_t count) {
  std::size_t done = 0;
  while (done < count) {
    const ssize_t got =
        ::pread(descriptor, to + done, count - done, static_cast<off_t>(offset + done));
    if (got == 0) break;
    if (got > 0) done += static_cast<std::size_t>(got);
    if (got < 0 && errno != EINTR) return std::nullopt;
  }
  return done;
}

bool IsPrivate(std::FILE* file) {
  struct stat status {};
  return ::fstat(::fileno(file), &status) == 0 && S_ISREG(status.st_mode) && HasOwnerOnly(status);
}

bool CreatePrivateFolder(const std::string& path) {
  std::error_code error;
  const std::filesystem::path folder(path);
  if (std::filesystem::is_directory(folder, error)) return true;
  const std::filesystem::path above = folder.parent_path();
  if (!above.empty() && above != folder && !CreatePrivateFolder(above.string())) return false;
  return ::mkdir(path.c_str(), S_IRWXU) == 0 || std::filesystem::is_directory(folder, error);
}

std::optional<std::string> AbsolutePath(const std::string& path) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(path, error);
  if (error) return std::nullopt;
  std::string whole = std::filesystem::weakly_canonical(absolute, error).string();
  return error ? std::nullopt : std::optional(std::move(whole));
}

bool IsLocalFolder([[maybe_unused]] const std::string& path) {
#if defined(__linux__)
  constexpr long kLocal[] = {EXT4_SUPER_MAGIC,
                             XFS_SUPER_MAGIC,
                             BTRFS_SUPER_MAGIC,
                             F2FS_SUPER_MAGIC,
                             TMPFS_MAGIC,
                             OVERLAYFS_SUPER_MAGIC,
                             kZfs};
  struct statfs about {};
  return ::statfs(path.c_str(), &about) == 0 &&
         std::ranges::find(kLocal, static_cast<long>(about.f_type)) != std::end(kLocal);
#else
  return false;
#endif
}

std::filesystem::file_type TypeOf(const std::string& path) {
  std::error_code error;
  return std::filesystem::symlink_status(path, error).type();
}

bool MayCreateFile(const std::string& folder, std::uint64_t bytes) {
  const char* const place = folder.empty() ? "." : folder.c_str();
  rlimit largest{};
  struct statvfs disk {};
  if (::access(place, W_OK | X_OK) != 0 || ::getrlimit(RLIMIT_FSIZE, &largest) != 0 ||
      ::statvfs(place, &disk) != 0) {
    return false;
  }
  // Some file systems have no fixed number of files.
  const bool takes_files = disk.f_files == 0 || disk.f_favail != 0;
  return takes_files && disk.f_frsize != 0 && bytes <= largest.rlim_cur &&
         bytes / disk.f_frsize < disk.f_bavail;
}

bool RemoveFile(const std::string& path) { return ::unlink(path.c_str()) == 0; }

bool ReplaceByRename(const std::string& from, const std::string& to) {
  return std::rename(from.c_str(), to.c_str()) == 0;
}

bool FlushToDisk(std::FILE* file) { return std::fflush(file) == 0 && ::fsync(::fileno(file)) == 0; }

void SurviveFileLimits() { std::signal(SIGXFSZ, SIG_IGN); }

void SurviveClosedPipes() { std::signal(SIGPIPE, SIG_IGN); }

bool StandardErrorHasRoom() {
  pollfd target{.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
  return ::poll(&target, 1, 0) == 1;
}

}  // namespace qv::platform
