// Files and folders of this machine. Paths are narrow text, as the user writes them and the library
// takes them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qv::tool {

enum class LocalKind { kNone, kFile, kFolder, kOther };

// Returns the kind of what the path leads to, through links.
[[nodiscard]] LocalKind KindOf(const std::string& path);
[[nodiscard]] bool IsLinkToFolder(const std::string& path);
// Returns the size in bytes, 0 if it is unknown.
[[nodiscard]] std::uint64_t SizeOf(const std::string& file);

// Whether a name, which a server may have chosen, is safe for a local file or folder: not a path
// out of its folder, not a device, not a stream of another file.
[[nodiscard]] bool IsLocalName(std::string_view name);

[[nodiscard]] std::string JoinLocal(const std::string& folder, std::string_view name);
// Returns the folder of the path, "." if the path has none.
[[nodiscard]] std::string LocalFolderOf(const std::string& path);
// Returns the last name of the path after "." and ".." were resolved, or nullopt if narrow text
// cannot represent it.
[[nodiscard]] std::optional<std::string> LocalNameOf(const std::string& path);

struct LocalEntries {
  std::vector<std::string> paths;     // sorted
  std::vector<std::string> nameless;  // nearest texts of paths that narrow text cannot represent
  std::string error;                  // empty if the listing is complete
};
[[nodiscard]] LocalEntries EntriesOf(const std::string& folder);

// Creates the last folder of the path. Returns false if it exists or cannot be created.
bool MakeLocalFolder(const std::string& path);
// Creates all missing folders of the path. A failure shows when the folder is used.
void MakeLocalFolders(const std::string& path);
// Removes the folder with its contents. Returns false if anything is left.
[[nodiscard]] bool RemoveLocalFolder(const std::string& path);
// Renames `file` to `place` on the same file system, replacing an existing file, and gives it the
// permissions of `like`. Returns an error text, empty on success.
[[nodiscard]] std::string MoveLocalFile(const std::string& file, const std::string& like,
                                        const std::string& place);

}  // namespace qv::tool
