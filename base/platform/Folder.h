// A folder that is held open, and its entries.
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

enum class EntryKind { kFile, kFolder, kOther };  // a link is kOther, whatever it points to

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

// Names are those of single entries, without separators. Links are never followed, so all work
// stays inside this folder even if others rename or replace entries meanwhile. Copies share the
// open handle. Any thread.
class Folder {
 public:
  // Opens the folder at `path`; links in the path are followed.
  [[nodiscard]] static std::optional<Folder> Open(const std::string& path);
  // Opens the subfolder `name`.
  [[nodiscard]] std::optional<Folder> Enter(const std::string& name) const;

  [[nodiscard]] std::optional<Entry> Look(const std::string& name) const;
  // Opens a file for reading.
  [[nodiscard]] std::optional<OpenedFile> OpenFile(const std::string& name) const;
  // Calls `visit` for each entry, in no particular order, until it returns false. Returns false if
  // it did so, or if the folder cannot be read to its end.
  [[nodiscard]] bool ForEach(const std::function<bool(const Entry&)>& visit) const;

  // Creates a folder that only its owner can enter. Returns false if the name is taken.
  [[nodiscard]] bool MakeFolder(const std::string& name) const;
  // Removes an empty folder.
  [[nodiscard]] bool RemoveFolder(const std::string& name) const;
  [[nodiscard]] bool RemoveFile(const std::string& name) const;
  // Moves a file or folder; an existing entry at the new place may be replaced.
  [[nodiscard]] bool Move(const std::string& name, const Folder& to,
                          const std::string& to_name) const;
  // Moves the file at `path` here, atomically replacing a file of that name. Returns false also if
  // the file is on another file system.
  [[nodiscard]] bool TakeFile(const std::string& path, const std::string& name) const;

 private:
  struct Handle;

  explicit Folder(std::shared_ptr<const Handle> handle) : handle_(std::move(handle)) {}

  std::shared_ptr<const Handle> handle_;
};

}  // namespace qv::platform
