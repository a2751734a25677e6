// The files that clients store by path.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "StoredFiles.h"

namespace qv::standin {

// Everything is below one folder. Paths are not trusted: one that could lead elsewhere is kBadName,
// and links are not followed. Any thread may use it.
class FileStore {
 public:
  // The name of the top folder itself, for the functions that accept it.
  static constexpr std::string_view kTop = ".";

  // `top` is the folder. `incoming` is the folder for unfinished files; it is on the same file
  // system and ends with a separator.
  FileStore(platform::Folder top, std::string incoming)
      : top_(std::move(top)), incoming_(std::move(incoming)) {}

  // Moves the file at `file`, which is whole and on the disk, into an existing folder and
  // atomically replaces a file that is there.
  Outcome Put(std::string_view path, const std::string& file);
  Outcome Open(std::string_view path, std::optional<platform::OpenedFile>& opened) const;
  Outcome Delete(std::string_view path);
  // Replaces a file at `to`.
  Outcome Copy(std::string_view from, std::string_view to, WorkLimit& limit);
  // Describes a file.
  Outcome Look(std::string_view path, platform::Entry& entry) const;
  // Moves a file or folder, unless something exists at `to`.
  Outcome Rename(std::string_view from, std::string_view to);

  // Creates a folder in an existing one.
  Outcome MakeFolder(std::string_view path);
  // Removes an empty folder.
  Outcome DeleteFolder(std::string_view path);
  // Adds to `found` the entries of a folder, which may be kTop, that have this kind, match the
  // pattern and fit into records, in no particular order. Fails with kAnswerLost if there are too
  // many.
  Outcome List(std::string_view folder, platform::EntryKind kind, std::string_view pattern,
               WorkLimit& limit, std::vector<platform::Entry>& found) const;
  // Adds to `are_parents` whether each of these folders, which List() found in `folder`, contains
  // folders.
  Outcome FindParents(std::string_view folder, const std::vector<platform::Entry>& folders,
                      WorkLimit& limit, std::vector<bool>& are_parents) const;
  // Returns the free space of the disk, in bytes.
  [[nodiscard]] std::uint64_t FreeBytes() const;

 private:
  // Finds the place of a path in an existing folder.
  Outcome Find(std::string_view path, std::optional<Place>& place) const;
  [[nodiscard]] std::optional<platform::Folder> Walk(const std::vector<std::string>& names) const;
  [[nodiscard]] std::optional<platform::Folder> FindFolder(std::string_view path) const;

  const platform::Folder top_;
  const std::string incoming_;
  // Held while a place is taken, so that two clients cannot both find it free.
  std::mutex placing_;
};

}  // namespace qv::standin
