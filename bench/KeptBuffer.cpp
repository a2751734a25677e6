#include "KeptBuffer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace qv {

namespace {

[[noreturn]] void Fail(const std::string& path) {
  throw std::system_error(errno, std::generic_category(), path);
}

class OpenFile {
 public:
  explicit OpenFile(const std::string& path) : number_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (number_ < 0) Fail(path);
  }
  ~OpenFile() { ::close(number_); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  [[nodiscard]] int Number() const { return number_; }

 private:
  int number_;
};

}  // namespace

void KeptBuffer::Load(const std::string& path) {
  // Fastest if a block stays in the processor's cache between reading and copying it.
  constexpr std::size_t kChunk = 0x200000;
  const OpenFile file(path);
  struct stat status {};
  if (::fstat(file.Number(), &status) != 0) Fail(path);
  const auto wanted = static_cast<std::size_t>(status.st_size);
  if (wanted + 1 > capacity_) {
    bytes_.reset();
    bytes_ = std::make_unique_for_overwrite<char[]>(wanted + 1);
    capacity_ = wanted + 1;
  }
  for (size_ = 0; size_ < wanted;) {
    const ssize_t got =
        ::read(file.Number(), bytes_.get() + size_, std::min(wanted - size_, kChunk));
    if (got < 0) Fail(path);
    if (got == 0) break;
    size_ += static_cast<std::size_t>(got);
  }
  bytes_[size_] = '\0';
}

}  // namespace qv
