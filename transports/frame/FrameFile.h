// The two ends of a file that travels: the one that is read and the one that comes into being.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#include "Frame.h"
#include "base/platform/Folder.h"

namespace qv::wire {

// A file as it is sent: its length is fixed when it is opened.
class OutgoingFile {
 public:
  // Nothing when there is no regular file at `path` that can be read.
  [[nodiscard]] static std::optional<OutgoingFile> Open(const std::string& path);
  // An opened one; it stands at its beginning.
  explicit OutgoingFile(platform::OpenedFile opened)
      : file_(std::move(opened.file)), length_(opened.size) {}

  [[nodiscard]] std::uint64_t Length() const { return length_; }
  // Fills `bytes` with what comes next. False when there is less.
  [[nodiscard]] bool Read(WritableBytes bytes);

 private:
  platform::FilePtr file_;
  std::uint64_t length_;
};

// A file as it is received: under a temporary name beside `path` until it is whole, and gone when
// it never becomes so.
class IncomingFile {
 public:
  explicit IncomingFile(std::string path);
  ~IncomingFile();
  IncomingFile(const IncomingFile&) = delete;
  IncomingFile& operator=(const IncomingFile&) = delete;

  // False when the temporary file could not be made.
  [[nodiscard]] bool IsOpen() const { return file_ != nullptr; }
  [[nodiscard]] bool Write(Bytes bytes);
  // Gives the file its name.
  [[nodiscard]] bool Commit();

 private:
  bool Close();

  std::string path_;
  std::string temporary_;
  std::FILE* file_;
};

}  // namespace qv::wire
