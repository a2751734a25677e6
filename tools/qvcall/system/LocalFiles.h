// The files and folders of this machine by their paths in narrow text, as the user writes them and
// the library takes them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qv::tool {

enum class LocalKind { kNone, kFile, kFolder, kOther };

// What is there, at the end of all links.
[[nodiscard]] LocalKind KindOf(const std::string& path);
[[nodiscard]] bool IsLinkToFolder(const std::string& path);
// In bytes; 0 when nobody knows.
[[nodiscard]] std::uint64_t SizeOf(const std::string& file);

// Whether a file or folder of that name, which a server may have chosen, is just that here:
// nothing outside its folder, no device, no part of another file.
[[nodiscard]] bool IsLocalName(std::string_view name);

[[nodiscard]] std::string JoinLocal(const std::string& folder, std::string_view name);
// The folder that the path is in; "." when that is not said.
[[nodiscard]] std::string LocalFolderOf(const std::string& path);
// What the path ends with once it is clear where it leads, as it is not for "..". None when narrow
// text cannot say that.
[[nodiscard]] std::optional<std::string> LocalNameOf(const std::string& path);

struct LocalEntries {
  std::vector<std::string> paths;     // sorted
  std::vector<std::string> nameless;  // those that narrow text cannot say, as nearly as it can
  std::string error;                  // empty when that is all
};
[[nodiscard]] LocalEntries EntriesOf(const std::string& folder);

// Makes the last folder of the path. False when it was there before, or cannot be made.
bool MakeLocalFolder(const std::string& path);
// Makes those that are missing, too. Whoever uses the folder sees whether that could be.
void MakeLocalFolders(const std::string& path);
// Removes the folder with all that is in it. False when something is left.
[[nodiscard]] bool RemoveLocalFolder(const std::string& path);
// Moves the file within its disk, to where a file may stand, and lets those have it who have
// `like`. The reason when it cannot be, else empty.
[[nodiscard]] std::string MoveLocalFile(const std::string& file, const std::string& like,
                                        const std::string& place);

}  // namespace qv::tool
