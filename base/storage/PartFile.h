// A file that appears whole or not at all.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "OutputFile.h"

namespace qv::storage {

// The file is written under the name of a part, in the same file system as its place, and takes its
// place in one step when it is whole. Whoever looks there finds the previous file or the new one,
// whatever happens to the program.
//
// After a power cut the same holds for a file that was finished with Flush::kYes: the old one or
// the new one is there, with all its bytes. Which of them is not promised, since the folder is not
// flushed. Without the flush, a file may also be there that lacks bytes.
//
// One thread at a time. Destruction removes a part that neither took its place nor was kept.
class PartFile {
 public:
  // Creates the part; `how` says what happens to a file of its name. If that fails, the part is not
  // open, and an existing file is left unchanged.
  explicit PartFile(std::string part, platform::Create how = platform::Create::kNew);
  // Opens a part that was kept, to write after its end; it is open only if it is still there with
  // `size` bytes. A part that is not open stays as it is.
  [[nodiscard]] static PartFile Resume(std::string part, std::uint64_t size);

  PartFile(PartFile&& other) noexcept;
  PartFile& operator=(PartFile&& other) noexcept;
  ~PartFile() { Remove(); }

  // Its own path, not that of its place.
  [[nodiscard]] const std::string& Path() const { return path_; }
  [[nodiscard]] bool IsOpen() const { return file_.IsOpen(); }

  // Return false if not all of `bytes` could be written. Finish() fails then too.
  bool Write(std::string_view bytes) { return file_.Write(bytes); }
  bool Write(std::span<const unsigned char> bytes) { return file_.Write(bytes); }

  // Ends the writing. Returns false if anything that was written is missing.
  [[nodiscard]] bool Finish(Flush flush) { return file_.Close(flush); }
  // Moves the part to its place, replacing an existing file. Call it after Finish().
  [[nodiscard]] bool MoveTo(const std::string& place);
  // Leaves the part where it is, to be resumed.
  void Keep() { owns_part_ = false; }

 private:
  PartFile(std::string part, OutputFile file);

  void Remove();

  std::string path_;
  OutputFile file_;
  bool owns_part_;
};

}  // namespace qv::storage
