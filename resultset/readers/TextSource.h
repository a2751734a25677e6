// Where the text of a recordset comes from: a file, or bytes in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace qv {

// Any number of threads may read at once.
class TextSource {
 public:
  // Opens a file. IsReadable() is false afterwards if the path is not a readable file.
  [[nodiscard]] static TextSource OfFile(const char* path) { return TextSource(path); }
  // The bytes must outlive the source.
  [[nodiscard]] static TextSource OfBytes(std::string_view bytes) { return TextSource(bytes); }
  ~TextSource();
  TextSource(const TextSource&) = delete;
  TextSource& operator=(const TextSource&) = delete;

  [[nodiscard]] bool IsReadable() const { return is_readable_; }
  // The number of bytes; a file may change it later.
  [[nodiscard]] std::uint64_t Size() const { return size_; }
  // Copies `count` bytes from `offset` on to `to`. Returns how many there were, which is fewer only
  // at the end, or nothing after an error.
  [[nodiscard]] std::optional<std::size_t> Read(std::uint64_t offset, char* to,
                                                std::size_t count) const;

 private:
  explicit TextSource(const char* path);
  explicit TextSource(std::string_view bytes)
      : bytes_(bytes), size_(bytes.size()), is_readable_(true) {}

  const int descriptor_ = -1;
  const std::string_view bytes_;
  std::uint64_t size_ = 0;
  bool is_readable_ = false;
};

}  // namespace qv
