// The files that clients keep on the server by path.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "StoredFiles.h"

namespace qv::standin {

// Everything lies below one folder. Paths come from strangers: one that could lead anywhere else is
// kBadName, and links are not followed. Any thread.
class FileStore {
 public:
  // The name of the top folder itself, for the functions that say so.
  static constexpr std::string_view kTop = ".";

  // `top` is the folder, `incoming` the one for files on their way, on the same file system and
  // with a separator at its end.
  FileStore(platform::Folder top, std::string incoming)
      : top_(std::move(top)), incoming_(std::move(incoming)) {}

  // Moves the finished file at `file` to a place in a folder that exists; a file that was there is
  // replaced in one step.
  Outcome Put(std::string_view path, const std::string& file);
  Outcome Open(std::string_view path, std::optional<platform::OpenedFile>& opened) const;
  Outcome Delete(std::string_view path);
  // Replaces a file at `to`.
  Outcome Copy(std::string_view from, std::string_view to, WorkLimit& limit);
  // Of a file.
  Outcome Look(std::string_view path, platform::Entry& entry) const;
  // Gives a file or folder another place, unless something is there already.
  Outcome Rename(std::string_view from, std::string_view to);

  // In a folder that exists.
  Outcome MakeFolder(std::string_view path);
  // One that has nothing in it.
  Outcome DeleteFolder(std::string_view path);
  // Adds the entries of a folder, which may be kTop, that are of this kind and whose names match
  // and fit into records; in no order. kAnswerLost when there are too many.
  Outcome List(std::string_view folder, platform::EntryKind kind, std::string_view pattern,
               WorkLimit& limit, std::vector<platform::Entry>& found) const;
  // Whether each of these folders, which were listed in `folder`, has folders in it.
  Outcome FindParents(std::string_view folder, const std::vector<platform::Entry>& folders,
                      WorkLimit& limit, std::vector<bool>& are_parents) const;
  // What the disk has left, in bytes.
  [[nodiscard]] std::uint64_t FreeBytes() const;

 private:
  // The place that a path means, in a folder that exists.
  Outcome Find(std::string_view path, std::optional<Place>& place) const;
  [[nodiscard]] std::optional<platform::Folder> Walk(const std::vector<std::string>& names) const;
  [[nodiscard]] std::optional<platform::Folder> FindFolder(std::string_view path) const;

  const platform::Folder top_;
  const std::string incoming_;
  // Held by what gives a place to something: two clients shall not both find it free.
  std::mutex placing_;
};

}  // namespace qv::standin
