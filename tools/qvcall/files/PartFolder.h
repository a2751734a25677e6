#pragma once

#include <mutex>
#include <string>

namespace qv::tool {

// A temporary folder in which files are downloaded before they are moved beside it. So a download
// that fails leaves an existing file of that name unchanged.
class PartFolder {
 public:
  // Chooses an unused name in `folder`. Make() creates the folder later, so that a handler that
  // removes it on an interrupt can be installed first.
  explicit PartFolder(const std::string& folder);
  ~PartFolder() { Remove(); }
  PartFolder(const PartFolder&) = delete;
  PartFolder& operator=(const PartFolder&) = delete;

  // Creates the folder. Returns false if that fails, if the path is too long for the library, or
  // after Remove().
  [[nodiscard]] bool Make();

  // The path to download the next file to.
  [[nodiscard]] const std::string& File() const { return file_; }
  // Moves that file to `place`, replacing an existing file, and gives it the permissions of a new
  // file. Returns an error text, empty on success.
  [[nodiscard]] std::string MoveTo(const std::string& place) const;
  // Removes the folder with its contents for good. Any thread may call this, even while a file is
  // being written there.
  void Remove();

 private:
  const std::string folder_;
  const std::string file_;
  const std::string usual_;  // an empty file with the default permissions

  std::mutex mutex_;  // guards the members below
  bool is_made_ = false;
  bool is_over_ = false;
};

// The library truncates longer paths.
constexpr std::size_t kLongestLocalPath = 1024;

}  // namespace qv::tool
