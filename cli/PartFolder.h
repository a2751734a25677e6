#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace qv {

// A folder of our own in which files come into being that are wanted beside it: whatever goes wrong
// with one, a file that has its name already stays as it is.
class PartFolder {
 public:
  // Null when none can be made in `folder`, or when the way to it is too long for the library.
  [[nodiscard]] static std::unique_ptr<PartFolder> Make(const std::filesystem::path& folder);
  ~PartFolder() { Remove(); }
  PartFolder(const PartFolder&) = delete;
  PartFolder& operator=(const PartFolder&) = delete;

  // Where the next file is to come into being.
  [[nodiscard]] const std::string& File() const { return file_; }
  // Gives that file its place, in which a file may stand, with the permissions that new files get
  // here. The reason when it cannot be, else empty.
  [[nodiscard]] std::string MoveTo(const std::filesystem::path& place) const;
  // Removes the folder with what is in it. Any thread, also while a file is written there.
  void Remove() const;

 private:
  explicit PartFolder(std::filesystem::path folder);

  const std::filesystem::path folder_;
  const std::string file_;
  std::filesystem::perms usual_;
};

// The library cuts longer paths.
constexpr std::size_t kLongestLocalPath = 1024;

}  // namespace qv
