// A folder that is held open, and what is in it.
#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace qv::platform {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

enum class EntryKind { kFile, kFolder, kOther };  // a link is another, wherever it leads

struct Entry {
  std::string name;
  EntryKind kind = EntryKind::kOther;
  std::uint64_t size = 0;     // of a file, in bytes
  std::int64_t modified = 0;  // seconds since 1970
};

struct OpenedFile {
  FilePtr file;
  std::uint64_t size = 0;
};

// Names are those of single entries, without separators, and links are never followed: whatever is
// renamed or put in place of something else meanwhile, work stays inside this folder. Copies share
// what they hold. Any thread.
class Folder {
 public:
  // The folder at `path`; links on the way to it are followed.
  [[nodiscard]] static std::optional<Folder> Open(const std::string& path);
  // The folder of that name in this one.
  [[nodiscard]] std::optional<Folder> Enter(const std::string& name) const;

  [[nodiscard]] std::optional<Entry> Look(const std::string& name) const;
  // Opens a file for reading.
  [[nodiscard]] std::optional<OpenedFile> OpenFile(const std::string& name) const;
  // Calls `visit` for each entry, in no order, until it says false. False also when the folder
  // cannot be read to its end.
  [[nodiscard]] bool ForEach(const std::function<bool(const Entry&)>& visit) const;

  // Makes a folder that only its owner can enter; false when the name is taken.
  [[nodiscard]] bool MakeFolder(const std::string& name) const;
  // Removes a folder that has nothing in it.
  [[nodiscard]] bool RemoveFolder(const std::string& name) const;
  [[nodiscard]] bool RemoveFile(const std::string& name) const;
  // Gives a file or folder another place; what is there may be replaced.
  [[nodiscard]] bool Move(const std::string& name, const Folder& to,
                          const std::string& to_name) const;
  // Moves the file at `path` here, replacing a file of that name in one step. False also when it is
  // on another file system.
  [[nodiscard]] bool TakeFile(const std::string& path, const std::string& name) const;

 private:
  struct Handle;

  explicit Folder(std::shared_ptr<const Handle> handle) : handle_(std::move(handle)) {}

  std::shared_ptr<const Handle> handle_;
};

}  // namespace qv::platform
