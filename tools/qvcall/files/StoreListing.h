// What there is in a server's store. Names are as they came, and a server may name things as it
// likes. What was not delivered looks like nothing: CRvoServer::GetIsNetworkBad() tells them apart.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace qv::tool {

struct ServerFile {
  std::string name;
  std::uint64_t size;     // bytes
  std::int64_t modified;  // seconds since 1970, UTC
};

struct ServerFolder {
  std::string name;
  std::int64_t modified;  // likewise; negative when it is not known
  bool has_folders;       // as far as is known
};

struct SubStore {
  std::string name;
  std::string path;
  std::uint64_t free;  // bytes
};

// The topmost folders whose names match.
[[nodiscard]] std::vector<SubStore> SubStoresLike(const std::string& pattern);

struct FolderList {
  std::vector<ServerFolder> folders;
  bool is_whole;  // false when a part of them did not come
};

// The folders in a folder, by name. Here and below the empty path, which cannot be sent, leaves it
// to the server to take the store itself.
[[nodiscard]] FolderList FoldersIn(const std::string& path);

// Hands over each file of a folder whose name matches, by name, as the server's pages of them come.
// False when they did not all come, or when `take` wants no more.
[[nodiscard]] bool ForEachFile(const std::string& path, const std::string& pattern,
                               const std::function<bool(const ServerFile&)>& take);
constexpr const char kEveryFile[] = "*.*";

// What stands under that path, which is not empty.
[[nodiscard]] std::optional<ServerFile> FindFile(const std::string& path);
[[nodiscard]] std::optional<ServerFolder> FindFolder(const std::string& path);

}  // namespace qv::tool
