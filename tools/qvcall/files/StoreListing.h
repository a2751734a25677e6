// Lists a server's store. Names are not validated: a server may send any bytes. A request that was
// not delivered looks like an empty result; CRvoServer::GetIsNetworkBad() tells them apart.
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
  std::int64_t modified;  // seconds since 1970, UTC; negative if unknown
  bool has_folders;       // false if unknown
};

struct SubStore {
  std::string name;
  std::string path;
  std::uint64_t free;  // bytes
};

// Returns the topmost folders whose names match.
[[nodiscard]] std::vector<SubStore> SubStoresLike(const std::string& pattern);

struct FolderList {
  std::vector<ServerFolder> folders;
  bool is_whole;  // false if a part of the listing is missing
};

// Returns the folders in a folder, sorted by name. Here and below, the empty path means the store
// itself: it is not sent, and servers take the store then.
[[nodiscard]] FolderList FoldersIn(const std::string& path);

// Passes each file of a folder whose name matches to `take`, sorted by name, page by page as the
// server sends them. Returns false if files are missing, or if `take` returned false to stop.
[[nodiscard]] bool ForEachFile(const std::string& path, const std::string& pattern,
                               const std::function<bool(const ServerFile&)>& take);
constexpr const char kEveryFile[] = "*.*";

// Return the entry of that path, which must not be empty, or nullopt.
[[nodiscard]] std::optional<ServerFile> FindFile(const std::string& path);
[[nodiscard]] std::optional<ServerFolder> FindFolder(const std::string& path);

}  // namespace qv::tool
