// A file's bytes in a buffer that is kept from file to file, for the peers, who may write in it.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace qv {

class KeptBuffer {
 public:
  // Reads the whole file and appends a NUL. Throws std::system_error.
  void Load(const std::string& path);

  [[nodiscard]] char* Data() { return bytes_.get(); }
  [[nodiscard]] std::size_t Size() const { return size_; }
  [[nodiscard]] std::string_view View() const { return {bytes_.get(), size_}; }

 private:
  std::unique_ptr<char[]> bytes_;
  std::size_t capacity_ = 0;
  std::size_t size_ = 0;
};

}  // namespace qv
