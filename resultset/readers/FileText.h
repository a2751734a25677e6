// The text of a recordset file, in a buffer that is reused from file to file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "resultset/Reading.h"

class CFile;

namespace qv {

// Scanners and copies may read some bytes after the end of the text, which are zero.
class FileText {
 public:
  static constexpr std::size_t kSlack = 64;

  // Loads a whole file. It is read in chunks of 2 MiB, and each chunk's text ends at its first NUL.
  // Returns kUnreadable if the path is not a readable file, or memory runs out.
  [[nodiscard]] Reading Load(const char* path);

  // Copies what a file with these bytes would have as its text. They are not this text's own.
  [[nodiscard]] Reading Copy(std::string_view bytes);

  [[nodiscard]] std::string_view View() const { return {buffer_.get(), length_}; }

 private:
  // Makes room for a text of up to `bytes` bytes, and drops the one before. Returns false if memory
  // runs out.
  [[nodiscard]] bool Reserve(std::uint64_t bytes);
  [[nodiscard]] Reading End();
  // Appends the text of the next chunk of `bytes`. Returns false if the file ends before it, or the
  // call is cancelled.
  [[nodiscard]] bool LoadChunk(CFile& file, std::size_t bytes);

  struct Freed {
    void operator()(char* buffer) const { std::free(buffer); }
  };

  std::unique_ptr<char, Freed> buffer_;
  std::size_t capacity_ = 0;
  std::size_t length_ = 0;
};

// Returns this thread's buffer. It grows to the largest file that the thread has read and never
// shrinks.
[[nodiscard]] FileText& KeptFileText();

}  // namespace qv
