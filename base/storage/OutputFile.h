// A file while it is written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "base/platform/Folder.h"
#include "base/platform/Platform.h"

namespace qv::storage {

// Whether the bytes of a file are on the disk before anything else happens. kNo is for files that
// are worth nothing after a power cut: answers that are deleted once they have been read, and parts
// of files that are not whole yet.
enum class Flush { kNo, kYes };

// One thread at a time. Destruction closes the file and leaves it where it is.
class OutputFile {
 public:
  // Not open.
  OutputFile() = default;
  // Creates a file that only its owner can read; if that fails, it is not open, and errno says why.
  OutputFile(const std::string& path, platform::Create how);
  // Opens an ordinary file of `size` bytes that only its owner can read, to write after its end.
  // Not open if the file at `path` is another one.
  [[nodiscard]] static OutputFile Append(const std::string& path, std::uint64_t size);

  [[nodiscard]] bool IsOpen() const { return file_ != nullptr; }

  // Return false if not all of `bytes` could be written. Close() fails then too.
  bool Write(std::string_view bytes) { return Write(bytes.data(), bytes.size()); }
  bool Write(std::span<const unsigned char> bytes) { return Write(bytes.data(), bytes.size()); }

  // Closes the file. Returns false if it was not open, or if anything that was written to it is
  // missing: that the disk is full may only show when the last bytes leave the buffer.
  [[nodiscard]] bool Close(Flush flush = Flush::kNo);

 private:
  bool Write(const void* bytes, std::size_t count);

  platform::FilePtr file_;
};

}  // namespace qv::storage
