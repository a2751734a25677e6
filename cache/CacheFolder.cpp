#include "CacheFolder.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "CachedFile.h"
#include "GzipFile.h"
#include "QueryCache.h"
#include "base/call/CancelFlag.h"
#include "base/platform/Folder.h"
#include "base/platform/Platform.h"
#include "base/storage/FileNames.h"
#include "base/storage/PartFile.h"

namespace qv {

namespace {

namespace fs = std::filesystem;

constexpr const char kIndexName[] = "qvdbcache.db3";
// Longer paths cannot be unpacked.
constexpr std::size_t kPathLimit = 1024;
// A temporary file of this age is no longer being written.
constexpr std::chrono::hours kTemporaryLife(24);

bool IsFile(const std::string& path) { return platform::TypeOf(path) == fs::file_type::regular; }

bool IsOld(const fs::path& path) {
  std::error_code error;
  const fs::file_time_type written = fs::last_write_time(path, error);
  return !error && fs::file_time_type::clock::now() - written > kTemporaryLife;
}

// Copies a file to a new one at `target`, and finishes that, unless the call is cancelled; adds its
// bytes to `content`. Nothing is flushed: what a power cut takes of the copy does not fit its name.
std::optional<storage::PartFile> CopyFile(const std::string& source, const std::string& target,
                                          ContentSum& content) {
  const platform::FilePtr from(platform::OpenFile(source, platform::Opening::kRead));
  if (from == nullptr) return std::nullopt;
  storage::PartFile copy(target);
  std::array<char, 32768> buffer;
  std::size_t got = 0;
  do {
    if (call::IsCancelled()) return std::nullopt;
    got = std::fread(buffer.data(), 1, buffer.size(), from.get());
    const std::string_view bytes(buffer.data(), got);
    content.Add(bytes);
    if (!copy.Write(bytes)) return std::nullopt;
  } while (got == buffer.size());
  if (std::ferror(from.get()) != 0 || !copy.Finish(storage::Flush::kNo)) return std::nullopt;
  return copy;
}

// Copies a file for the caller, who deletes it.
bool CopyForCaller(const std::string& source, const std::string& target, ContentSum& content) {
  auto copy = CopyFile(source, target, content);
  if (copy) copy->Keep();
  return copy.has_value();
}

}  // namespace

std::unique_ptr<CacheFolder> CacheFolder::Open(const std::string& path) {
  // The host may change its working directory later, and the index must not be opened through a
  // link.
  const std::optional<std::string> absolute = platform::AbsolutePath(path);
  if (!absolute) return nullptr;
  const std::string whole = platform::WithSeparator(*absolute);
  if (whole.size() + kCachedNameLength >= kPathLimit) return nullptr;
  if (!platform::CreatePrivateFolder(whole)) return nullptr;
  std::unique_ptr<CacheIndex> index = CacheIndex::Open(whole + kIndexName);
  if (index == nullptr) return nullptr;
  std::unique_ptr<CacheFolder> folder(new CacheFolder(whole, std::move(index)));
  // If the index is too busy, a later opening sweeps.
  (void)folder->Sweep();
  return folder;
}

CacheFolder::CacheFolder(std::string path, std::unique_ptr<CacheIndex> index)
    : path_(std::move(path)), index_(std::move(index)) {}

std::optional<std::string> CacheFolder::Find(const std::string& key,
                                             const std::string& target_folder) {
  std::string target = target_folder.empty() ? "" : platform::WithSeparator(target_folder);
  target += storage::NewAnswerName();
  // A missing file was most likely replaced after the look-up, so there is a new entry.
  for (const bool last : {false, true}) {
    const std::optional<CacheIndex::Entry> entry = LookUp(key);
    if (!entry) return std::nullopt;
    const TakeOutResult result = TakeOut(*entry, target);
    if (result == TakeOutResult::kDone) return target;
    platform::RemoveFile(target);
    const bool gone = result == TakeOutResult::kGone;
    if (result == TakeOutResult::kDamaged || (gone && last)) Discard(key, *entry);
    if (!gone) return std::nullopt;
  }
  return std::nullopt;
}

std::optional<CacheIndex::Entry> CacheFolder::LookUp(const std::string& key) {
  const std::lock_guard lock(mutex_);
  return index_->Find(key);
}

// An answer's file is written once, by Store().
std::optional<std::int64_t> CacheFolder::StoredAt(const std::string& key) {
  const std::optional<CacheIndex::Entry> entry = LookUp(key);
  if (!entry || !IsCachedName(entry->file)) return std::nullopt;
  const auto folder = platform::Folder::Open(path_);
  const auto file = folder ? folder->Look(entry->file) : std::nullopt;
  if (!file || file->kind != platform::EntryKind::kFile) return std::nullopt;
  return file->modified;
}

CacheFolder::TakeOutResult CacheFolder::TakeOut(const CacheIndex::Entry& entry,
                                                const std::string& target) {
  const bool packed = entry.flag == kCacheGzip;
  if (!IsCachedName(entry.file) || (!packed && entry.flag != kCachePlain))
    return TakeOutResult::kDamaged;
  const std::string source = path_ + entry.file;
  if (!IsFile(source)) return TakeOutResult::kGone;
  ContentSum content;
  const bool read = packed ? content.AddFile(source) : CopyForCaller(source, target, content);
  const bool damaged = read && !Fits(entry.file, content);
  const int unpacked = read && packed && !damaged ? GunzipFile(source, target) : kGunzipDone;
  if (read && !damaged && unpacked == kGunzipDone) return TakeOutResult::kDone;
  if (!IsFile(source)) return TakeOutResult::kGone;
  // Any other failure may concern the target, and says nothing about the entry.
  return damaged || unpacked == kGunzipUnreadable ? TakeOutResult::kDamaged
                                                  : TakeOutResult::kFailed;
}

void CacheFolder::Discard(const std::string& key, const CacheIndex::Entry& entry) {
  const std::lock_guard lock(mutex_);
  if (index_->Remove(key, entry.file)) RemoveAnswer(entry.file);
}

bool CacheFolder::Store(const std::string& key, const std::string& file, int flag) {
  if (flag != kCacheGzip && flag != kCachePlain) return false;
  ContentSum content;
  auto copy = CopyFile(file, path_ + NewTemporaryName(), content);
  if (!copy) return false;
  return Enter(key, {NewCachedName(content), flag},
               [&](const std::string& place) { return copy->MoveTo(place); });
}

bool CacheFolder::Take(const std::string& key, const std::string& file, int flag) {
  if (!may_move_ || (flag != kCacheGzip && flag != kCachePlain)) return Store(key, file, flag);
  ContentSum content;
  if (!content.AddFile(file)) return false;
  bool is_moved = false;
  const auto move = [&](const std::string& place) {
    is_moved = platform::ReplaceByRename(file, place);
    may_move_ = is_moved;
    return is_moved;
  };
  if (Enter(key, {NewCachedName(content), flag}, move)) return true;
  return !is_moved && Store(key, file, flag);
}

bool CacheFolder::Enter(const std::string& key, const CacheIndex::Entry& entry, const Move& move) {
  if (TryToEnter(key, entry, move)) return true;
  RemoveAnswer(entry.file);
  return false;
}

bool CacheFolder::TryToEnter(const std::string& key, const CacheIndex::Entry& entry,
                             const Move& move) {
  const std::lock_guard lock(mutex_);
  CacheIndex::Transaction transaction(*index_);
  if (!transaction.Begin()) return false;
  const std::optional<CacheIndex::Entry> old = index_->Find(key);
  if (!move(path_ + entry.file)) return false;
  if (!index_->Put(key, entry) || !transaction.Commit()) return false;
  if (old) RemoveAnswer(old->file);
  return true;
}

bool CacheFolder::Clear() {
  {
    const std::lock_guard lock(mutex_);
    if (!index_->RemoveAll()) return false;
  }
  return Sweep();
}

void CacheFolder::RemoveAnswer(const std::string& name) {
  if (IsCachedName(name)) platform::RemoveFile(path_ + name);
}

bool CacheFolder::Sweep() {
  const std::lock_guard lock(mutex_);
  CacheIndex::Transaction transaction(*index_);
  if (!transaction.Begin()) return false;
  const auto entered = index_->Files();
  if (!entered) return false;
  std::error_code error;
  for (fs::directory_iterator at(platform::PathFromNarrow(path_), error), end; !error && at != end;
       at.increment(error)) {
    const std::string name = platform::NarrowFromPath(at->path().filename());
    const bool left_over = IsCachedName(name) && !entered->contains(name);
    const bool abandoned = IsTemporaryName(name) && IsOld(at->path());
    if (left_over || abandoned) platform::RemoveFile(path_ + name);
  }
  return !error;
}

}  // namespace qv
