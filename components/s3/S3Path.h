// Server paths of a cloud store.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qv::components {

// "bucket/key"; slashes at the start of what a caller writes are dropped.
struct S3Path {
  std::string bucket;
  std::string key;

  // One object; nothing when the text can name none.
  [[nodiscard]] static std::optional<S3Path> OfObject(std::string_view path);
  // The objects below a folder; the key ends with a slash. Nothing for a bare bucket, too, whose
  // deletion would be a slip of the hand.
  [[nodiscard]] static std::optional<S3Path> OfFolder(std::string_view path);

  bool operator==(const S3Path&) const = default;
};

}  // namespace qv::components
