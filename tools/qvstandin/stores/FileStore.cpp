#include "FileStore.h"

#include <filesystem>
#include <system_error>

#include "StoreNames.h"
#include "TemporaryFile.h"
#include "base/platform/Platform.h"

namespace qv::standin {

namespace {

using platform::Entry;
using platform::EntryKind;
using platform::Folder;

// Bounds a listing, which is sorted in memory.
constexpr std::size_t kMostListed = 100'000;

std::size_t LongestNameOf(EntryKind kind) {
  return kind == EntryKind::kFolder ? kLongestFolderName : kLongestFileName;
}

Outcome BadName() { return {ErrorCode::kBadName, "the name is not allowed"}; }
Outcome NoFolder() { return {ErrorCode::kNoFile, "no such folder"}; }

}  // namespace

Outcome FileStore::Put(std::string_view path, const std::string& file) {
  std::optional<Place> place;
  if (Outcome found = Find(path, place); !found.Ok()) return found;
  if (place->name.size() > kLongestFileName) return BadName();
  const std::lock_guard lock(placing_);
  return PutFile(*place, file);
}

Outcome FileStore::Open(std::string_view path, std::optional<platform::OpenedFile>& opened) const {
  std::optional<Place> place;
  if (Outcome found = Find(path, place); !found.Ok()) return found;
  return OpenFile(*place, opened);
}

Outcome FileStore::Delete(std::string_view path) {
  std::optional<Place> place;
  if (Outcome found = Find(path, place); !found.Ok()) return found;
  return RemoveFile(*place);
}

Outcome FileStore::Copy(std::string_view from, std::string_view to, WorkLimit& limit) {
  std::optional<platform::OpenedFile> source;
  if (Outcome opened = Open(from, source); !opened.Ok()) return opened;
  TemporaryFile copy(incoming_);
  if (Outcome read = ReadAll(std::move(*source), copy, limit); !read.Ok()) return read;
  return Put(to, copy.Path());
}

Outcome FileStore::Look(std::string_view path, Entry& entry) const {
  std::optional<Place> place;
  if (Outcome found = Find(path, place); !found.Ok()) return found;
  const auto there = place->folder.Look(place->name);
  if (!there || there->kind != EntryKind::kFile) return {ErrorCode::kNoFile, "no such file"};
  entry = *there;
  return {};
}

Outcome FileStore::Rename(std::string_view from, std::string_view to) {
  std::optional<Place> source;
  std::optional<Place> target;
  if (Outcome found = Find(from, source); !found.Ok()) return found;
  if (Outcome found = Find(to, target); !found.Ok()) return found;
  const std::lock_guard lock(placing_);
  const auto there = source->folder.Look(source->name);
  if (!there || there->kind == EntryKind::kOther)
    return {ErrorCode::kNoFile, "there is nothing to rename"};
  if (target->name.size() > LongestNameOf(there->kind)) return BadName();
  if (!target->folder.Look(target->name) &&
      source->folder.Move(source->name, target->folder, target->name)) {
    return {};
  }
  return {ErrorCode::kStoreFailed, "the new place is taken or cannot be used"};
}

Outcome FileStore::MakeFolder(std::string_view path) {
  std::optional<Place> place;
  if (Outcome found = Find(path, place); !found.Ok()) return found;
  if (place->name.size() > kLongestFolderName) return BadName();
  const std::lock_guard lock(placing_);
  if (place->folder.MakeFolder(place->name)) return {};
  const bool is_taken = place->folder.Look(place->name).has_value();
  return {ErrorCode::kStoreFailed, is_taken ? "a folder or file of that name already exists"
                                            : "the folder cannot be created"};
}

Outcome FileStore::DeleteFolder(std::string_view path) {
  std::optional<Place> place;
  if (Outcome found = Find(path, place); !found.Ok()) return found;
  if (place->folder.RemoveFolder(place->name)) return {};
  return {ErrorCode::kStoreFailed, "there is no such folder, or it is not empty"};
}

Outcome FileStore::List(std::string_view folder, EntryKind kind, std::string_view pattern,
                        WorkLimit& limit, std::vector<Entry>& found) const {
  const auto listed = FindFolder(folder);
  if (!listed) return NoFolder();
  const bool is_whole = listed->ForEach([&](const Entry& entry) {
    const bool is_wanted = entry.kind == kind && entry.name.size() <= LongestNameOf(kind) &&
                           IsStoreName(entry.name) && MatchesPattern(entry.name, pattern);
    if (is_wanted) found.push_back(entry);
    return found.size() <= kMostListed && !limit.IsOver();
  });
  if (limit.Reason() != ErrorCode::kNone) return limit.Failure("the call");
  if (found.size() > kMostListed)
    return {ErrorCode::kAnswerLost, "there are too many entries to list", error::kTooLarge};
  if (!is_whole) return {ErrorCode::kStoreFailed, "the folder cannot be read", error::kInternal};
  return {};
}

Outcome FileStore::FindParents(std::string_view folder, const std::vector<Entry>& folders,
                               WorkLimit& limit, std::vector<bool>& are_parents) const {
  const auto above = FindFolder(folder);
  if (!above) return NoFolder();
  for (const Entry& entry : folders) {
    bool is_parent = false;
    const auto inside = above->Enter(entry.name);
    const auto visit = [&](const Entry& child) {
      is_parent = child.kind == EntryKind::kFolder && IsStoreName(child.name);
      return !is_parent && !limit.IsOver();
    };
    // A folder that has vanished or cannot be read counts as empty.
    if (inside && !inside->ForEach(visit) && limit.Reason() != ErrorCode::kNone) {
      return limit.Failure("the call");
    }
    are_parents.push_back(is_parent);
  }
  return {};
}

std::uint64_t FileStore::FreeBytes() const {
  std::error_code error;
  const std::uintmax_t free =
      std::filesystem::space(platform::PathFromNarrow(incoming_), error).available;
  return error ? 0 : free;
}

Outcome FileStore::Find(std::string_view path, std::optional<Place>& place) const {
  auto names = PartsOf(path);
  if (!names) return BadName();
  std::string name = std::move(names->back());
  names->pop_back();
  auto folder = Walk(*names);
  if (!folder) return NoFolder();
  place = Place{std::move(*folder), std::move(name)};
  return {};
}

std::optional<Folder> FileStore::Walk(const std::vector<std::string>& names) const {
  std::optional<Folder> folder = top_;
  for (const std::string& name : names) {
    folder = folder->Enter(name);
    if (!folder) return std::nullopt;
  }
  return folder;
}

std::optional<Folder> FileStore::FindFolder(std::string_view path) const {
  if (path == kTop) return top_;
  const auto names = PartsOf(path);
  return names ? Walk(*names) : std::nullopt;
}

}  // namespace qv::standin
