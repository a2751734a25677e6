#include "base/platform/Folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace qv::platform {

struct Folder::Handle {
  explicit Handle(int opened) : descriptor(opened) {}
  ~Handle() { ::close(descriptor); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  const int descriptor;
};

namespace {

constexpr int kOpenFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

EntryKind KindOf(const struct stat& status) {
  if (S_ISREG(status.st_mode)) return EntryKind::kFile;
  return S_ISDIR(status.st_mode) ? EntryKind::kFolder : EntryKind::kOther;
}

std::optional<Entry> LookAt(int folder, const char* name) {
  struct stat status {};
  if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
  const auto size = status.st_size > 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
  return Entry{name, KindOf(status), size, status.st_mtime};
}

bool IsDots(const char* name) {
  return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

struct DirCloser {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

}  // namespace

std::optional<Folder> Folder::Open(const std::string& path) {
  const int opened = ::open(path.c_str(), kOpenFolder);
  if (opened < 0) return std::nullopt;
  return Folder(std::make_shared<const Handle>(opened));
}

std::optional<Folder> Folder::Enter(const std::string& name) const {
  const int opened = ::openat(handle_->descriptor, name.c_str(), kOpenFolder | O_NOFOLLOW);
  if (opened < 0) return std::nullopt;
  return Folder(std::make_shared<const Handle>(opened));
}

std::optional<Entry> Folder::Look(const std::string& name) const {
  return LookAt(handle_->descriptor, name.c_str());
}

std::optional<OpenedFile> Folder::OpenFile(const std::string& name) const {
  // Prevents waiting for the other end of a pipe.
  const int flags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  const int opened = ::openat(handle_->descriptor, name.c_str(), flags);
  if (opened < 0) return std::nullopt;
  FilePtr file(::fdopen(opened, "rb"));
  if (file == nullptr) {
    ::close(opened);
    return std::nullopt;
  }
  struct stat status {};
  if (::fstat(opened, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return OpenedFile{std::move(file), static_cast<std::uint64_t>(status.st_size)};
}

bool Folder::ForEach(const std::function<bool(const Entry&)>& visit) const {
  // Uses a descriptor of its own, because a descriptor remembers how far it was read.
  const int opened = ::openat(handle_->descriptor, ".", kOpenFolder);
  if (opened < 0) return false;
  const std::unique_ptr<DIR, DirCloser> entries(::fdopendir(opened));
  if (entries == nullptr) {
    ::close(opened);
    return false;
  }
  for (;;) {
    errno = 0;
    const dirent* const found = ::readdir(entries.get());
    if (found == nullptr) return errno == 0;
    if (IsDots(found->d_name)) continue;
    const auto entry = LookAt(opened, found->d_name);
    if (entry && !visit(*entry)) return false;
  }
}

bool Folder::MakeFolder(const std::string& name) const {
  return ::mkdirat(handle_->descriptor, name.c_str(), S_IRWXU) == 0;
}

bool Folder::RemoveFolder(const std::string& name) const {
  return ::unlinkat(handle_->descriptor, name.c_str(), AT_REMOVEDIR) == 0;
}

bool Folder::RemoveFile(const std::string& name) const {
  return ::unlinkat(handle_->descriptor, name.c_str(), 0) == 0;
}

bool Folder::Move(const std::string& name, const Folder& to, const std::string& to_name) const {
  return ::renameat(handle_->descriptor, name.c_str(), to.handle_->descriptor, to_name.c_str()) ==
         0;
}

bool Folder::TakeFile(const std::string& path, const std::string& name) const {
  return ::renameat(AT_FDCWD, path.c_str(), handle_->descriptor, name.c_str()) == 0;
}

}  // namespace qv::platform
