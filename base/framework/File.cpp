#include "qvnetcall/framework/File.h"

#include <cerrno>
#include <limits>
#include <type_traits>
#include <utility>

#include "base/platform/Platform.h"

namespace {

// A long cannot hold every position on every system. Where the C library's position type is a
// number, it is wide enough and used directly; elsewhere, long is as wide as the system's file
// sizes.
template <typename Native>
long long Tell(std::FILE* stream) noexcept {
  if constexpr (std::is_integral_v<Native>) {
    Native place = 0;
    return std::fgetpos(stream, &place) == 0 ? static_cast<long long>(place) : -1;
  } else {
    return std::ftell(stream);
  }
}

template <typename Native>
bool MoveTo(std::FILE* stream, long long place) noexcept {
  if constexpr (std::is_integral_v<Native>) {
    const Native native = place;
    return std::fsetpos(stream, &native) == 0;
  } else {
    return std::in_range<long>(place) &&
           std::fseek(stream, static_cast<long>(place), SEEK_SET) == 0;
  }
}

std::FILE* OpenStream(const char* path, unsigned flags) {
  using qv::platform::Opening;
  const bool writes = (flags & (CFile::modeWrite | CFile::modeReadWrite)) != 0;
  Opening how = writes ? Opening::kChange : Opening::kRead;
  if ((flags & CFile::modeCreate) != 0) {
    how = (flags & CFile::modeNoTruncate) != 0 ? Opening::kChangeOrCreate : Opening::kCreate;
  }
  return qv::platform::OpenFile(path, how);
}

void Unbuffer(std::FILE* stream) noexcept {
  if (stream != nullptr) std::setvbuf(stream, nullptr, _IONBF, 0);
}

}  // namespace

CFile::CFile(std::FILE* stream) noexcept : stream_(stream) { Unbuffer(stream_); }

CFile::CFile(const char* path, unsigned flags) {
  CFileException error;
  if (!CFile::Open(path, flags, &error)) throw error;
}

CFile::~CFile() { CFile::Abort(); }

bool CFile::Open(const char* path, unsigned flags, CFileException* error) {
  CFile::Abort();
  path_ = path;
  errno = 0;
  stream_ = OpenStream(path_, flags);
  if (stream_ == nullptr) {
    const int os_error = errno != 0 ? errno : EIO;
    if (error != nullptr) {
      *error = CFileException(CFileException::OsErrorToException(os_error), os_error, path_);
    }
    path_.Empty();
    return false;
  }
  Unbuffer(stream_);
  return true;
}

unsigned CFile::Read(void* buffer, unsigned count) {
  std::FILE* stream = Opened();
  if (count == 0) return 0;
  Turn(Last::kRead);
  errno = 0;
  const std::size_t done = std::fread(buffer, 1, count, stream);
  if (done < count && std::ferror(stream) != 0) {
    const int os_error = errno;
    std::clearerr(stream);
    ThrowLast(os_error);
  }
  std::clearerr(stream);  // so that what another writer appends later can be read
  return static_cast<unsigned>(done);
}

void CFile::Write(const void* buffer, unsigned count) {
  std::FILE* stream = Opened();
  if (count == 0) return;
  Turn(Last::kWrite);
  errno = 0;
  if (std::fwrite(buffer, 1, count, stream) == count) return;
  const int os_error = errno;
  std::clearerr(stream);
  ThrowLast(os_error);
}

unsigned long long CFile::Seek(long long offset, unsigned from) {
  std::FILE* stream = Opened();
  long long base = 0;
  if (from == current) base = static_cast<long long>(GetPosition());
  if (from == end) base = static_cast<long long>(GetLength());
  const bool fits = from <= end && offset <= std::numeric_limits<long long>::max() - base;
  if (!fits || base + offset < 0) ThrowLast(EINVAL);
  errno = 0;
  if (!MoveTo<std::fpos_t>(stream, base + offset)) ThrowLast(errno);
  last_ = Last::kNone;
  return static_cast<unsigned long long>(base + offset);
}

unsigned long long CFile::GetPosition() const {
  errno = 0;
  const long long place = Tell<std::fpos_t>(Opened());
  if (place < 0) ThrowLast(errno);
  return static_cast<unsigned long long>(place);
}

unsigned long long CFile::GetLength() const {
  const auto place = static_cast<long long>(GetPosition());
  errno = 0;
  if (std::fseek(stream_, 0, SEEK_END) != 0) ThrowLast(errno);
  const long long length = Tell<std::fpos_t>(stream_);
  if (!MoveTo<std::fpos_t>(stream_, place) || length < 0) ThrowLast(errno);
  return static_cast<unsigned long long>(length);
}

void CFile::Flush() {
  std::FILE* stream = Opened();
  errno = 0;
  if (last_ == Last::kWrite && std::fflush(stream) != 0) ThrowLast(errno);
}

void CFile::Close() {
  if (stream_ == nullptr) return;
  last_ = Last::kNone;
  errno = 0;
  if (std::fclose(std::exchange(stream_, nullptr)) != 0) ThrowLast(errno);
}

void CFile::Abort() noexcept {
  last_ = Last::kNone;
  if (stream_ != nullptr) std::fclose(std::exchange(stream_, nullptr));
}

std::FILE* CFile::Opened() const {
  if (stream_ == nullptr) ThrowLast(EBADF);
  return stream_;
}

// The standard requires a seek between reading and writing, in either direction.
void CFile::Turn(Last next) {
  errno = 0;
  if (last_ != Last::kNone && last_ != next && std::fseek(stream_, 0, SEEK_CUR) != 0) {
    ThrowLast(errno);
  }
  last_ = next;
}

void CFile::ThrowLast(int os_error) const {
  CFileException::ThrowOsError(os_error != 0 ? os_error : EIO, path_);
}
