#include "IdStore.h"

#include <fmt/format.h>

#include <array>

#include "StoreNames.h"
#include "TemporaryFile.h"
#include "base/platform/Platform.h"

namespace qv::standin {

namespace {

// Returns the folders from the top down to the identifier's own: the millions, the next two pairs
// of digits, and the whole number.
std::array<std::string, 4> FoldersOf(std::int32_t id) {
  return {std::to_string(id / 1'000'000), fmt::format("{:02}", id / 10'000 % 100),
          fmt::format("{:02}", id / 100 % 100), std::to_string(id)};
}

}  // namespace

std::string IdStore::FolderOf(std::int32_t id) {
  std::string path;
  for (const std::string& folder : FoldersOf(id)) path += folder + "\\";
  return path;
}

Outcome IdStore::Put(const IdName& target, const std::string& file) {
  std::optional<Place> place;
  if (Outcome found = Find(target, true, place); !found.Ok()) return found;
  return PutFile(*place, file);
}

Outcome IdStore::Open(const IdName& wanted, std::optional<platform::OpenedFile>& opened) const {
  std::optional<Place> place;
  if (Outcome found = Find(wanted, false, place); !found.Ok()) return found;
  return OpenFile(*place, opened);
}

Outcome IdStore::Delete(const IdName& wanted) {
  std::optional<Place> place;
  if (Outcome found = Find(wanted, false, place); !found.Ok()) return found;
  return RemoveFile(*place);
}

Outcome IdStore::Copy(const IdName& from, const IdName& to, WorkLimit& limit) {
  std::optional<platform::OpenedFile> source;
  if (Outcome opened = Open(from, source); !opened.Ok()) return opened;
  TemporaryFile copy(incoming_);
  if (Outcome read = ReadAll(std::move(*source), copy, limit); !read.Ok()) return read;
  return Put(to, copy.Path());
}

Outcome IdStore::Find(const IdName& wanted, bool make, std::optional<Place>& place) const {
  if (wanted.id < 0 || !IsStoreName(wanted.name) || wanted.name.size() > kLongestFileName) {
    return {ErrorCode::kBadName, "the name or the identifier is not allowed"};
  }
  platform::Folder folder = top_;
  for (const std::string& name : FoldersOf(wanted.id)) {
    auto next = folder.Enter(name);
    if (!next && make) {
      // If this fails, another request may have created it meanwhile.
      const bool made = folder.MakeFolder(name);
      next = folder.Enter(name);
      if (!next && !made) return {ErrorCode::kStoreFailed, "its folder cannot be created"};
    }
    if (!next) return {ErrorCode::kNoFile, "no such file"};
    folder = std::move(*next);
  }
  place = Place{std::move(folder), wanted.name};
  return {};
}

}  // namespace qv::standin
