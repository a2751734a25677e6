// The names of the files in a cache's folder. The name of an answer tells what is in the file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qv {

// The length and the checksum of bytes.
class ContentSum {
 public:
  void Add(std::string_view bytes);
  // Adds the bytes of a file. Returns false if it cannot be read to its end, or if the call is
  // cancelled.
  [[nodiscard]] bool AddFile(const std::string& path);

  [[nodiscard]] std::uint32_t Checksum() const { return checksum_; }
  [[nodiscard]] std::uint64_t Length() const { return length_; }

 private:
  std::uint32_t checksum_ = 0;
  std::uint64_t length_ = 0;
};

inline constexpr std::size_t kCachedNameLength = 50;

// Files are not flushed to the disk, so that after a power cut an entry may name a file that lacks
// bytes. Then `content` does not fit the name.
[[nodiscard]] std::string NewCachedName(const ContentSum& content);
[[nodiscard]] bool IsCachedName(std::string_view name);
// Returns whether the file of that name, which IsCachedName accepts, has that content. Names that
// say nothing, as earlier versions of this library gave them, fit everything: those files were
// flushed.
[[nodiscard]] bool Fits(std::string_view name, const ContentSum& content);

// The name of a file while it is written.
[[nodiscard]] std::string NewTemporaryName();
[[nodiscard]] bool IsTemporaryName(std::string_view name);

}  // namespace qv
