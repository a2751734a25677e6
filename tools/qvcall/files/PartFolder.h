#pragma once

#include <mutex>
#include <string>

namespace qv::tool {

// A folder of our own in which files come into being that are wanted beside it: whatever goes wrong
// with one, a file that has its name already stays as it is.
class PartFolder {
 public:
  // Of a name in `folder` that nothing else has. It is not there before Make(), so that whoever
  // removes it at an interrupt can be ready by then.
  explicit PartFolder(const std::string& folder);
  ~PartFolder() { Remove(); }
  PartFolder(const PartFolder&) = delete;
  PartFolder& operator=(const PartFolder&) = delete;

  // False when it cannot be made, when the way to it is too long for the library, or after
  // Remove().
  [[nodiscard]] bool Make();

  // Where the next file is to come into being.
  [[nodiscard]] const std::string& File() const { return file_; }
  // Gives that file its place, in which a file may stand, with the permissions that new files get
  // here. The reason when it cannot be, else empty.
  [[nodiscard]] std::string MoveTo(const std::string& place) const;
  // Removes the folder with what is in it, for good. Any thread, also while a file is written
  // there.
  void Remove();

 private:
  const std::string folder_;
  const std::string file_;
  const std::string usual_;  // a file as any program makes them here

  std::mutex mutex_;  // of what follows
  bool is_made_ = false;
  bool is_over_ = false;
};

// The library cuts longer paths.
constexpr std::size_t kLongestLocalPath = 1024;

}  // namespace qv::tool
