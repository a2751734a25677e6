#include "CacheFolder.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "GzipFile.h"
#include "QueryCache.h"
#include "base/call/CancelFlag.h"
#include "base/platform/Folder.h"
#include "base/platform/Platform.h"
#include "base/storage/FileNames.h"

namespace qv {

namespace {

namespace fs = std::filesystem;

constexpr const char kIndexName[] = "qvdbcache.db3";
constexpr std::string_view kPrefix = "QvCache_";
constexpr std::string_view kAnswer = ".dat";
constexpr std::string_view kTemporary = ".tmp";
constexpr std::size_t kNameLength = kPrefix.size() + platform::kGuidLength + kAnswer.size();
// Longer paths cannot be unpacked.
constexpr std::size_t kPathLimit = 1024;
// A temporary file of this age is no longer being written.
constexpr std::chrono::hours kTemporaryLife(24);

bool IsName(std::string_view name, std::string_view extension) {
  return name.size() == kNameLength && name.starts_with(kPrefix) && name.ends_with(extension) &&
         platform::IsGuid(name.substr(kPrefix.size(), platform::kGuidLength));
}

bool IsFile(const std::string& path) { return platform::TypeOf(path) == fs::file_type::regular; }

bool IsOld(const fs::path& path) {
  std::error_code error;
  const fs::file_time_type written = fs::last_write_time(path, error);
  return !error && fs::file_time_type::clock::now() - written > kTemporaryLife;
}

// Copies a file to a new one at `target`, and finishes that, unless the call is cancelled.
std::optional<storage::PartFile> CopyFile(const std::string& source, const std::string& target,
                                          storage::Flush flush) {
  const platform::FilePtr from(platform::OpenFile(source, platform::Opening::kRead));
  if (from == nullptr) return std::nullopt;
  storage::PartFile copy(target);
  std::array<char, 32768> buffer;
  std::size_t got = 0;
  do {
    if (call::IsCancelled()) return std::nullopt;
    got = std::fread(buffer.data(), 1, buffer.size(), from.get());
    if (!copy.Write(std::string_view(buffer.data(), got))) return std::nullopt;
  } while (got == buffer.size());
  if (std::ferror(from.get()) != 0 || !copy.Finish(flush)) return std::nullopt;
  return copy;
}

// Copies a file for the caller, who deletes it.
bool CopyForCaller(const std::string& source, const std::string& target) {
  auto copy = CopyFile(source, target, storage::Flush::kNo);
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
  if (whole.size() + kNameLength >= kPathLimit) return nullptr;
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
  if (!entry || !IsName(entry->file, kAnswer)) return std::nullopt;
  const auto folder = platform::Folder::Open(path_);
  const auto file = folder ? folder->Look(entry->file) : std::nullopt;
  if (!file || file->kind != platform::EntryKind::kFile) return std::nullopt;
  return file->modified;
}

CacheFolder::TakeOutResult CacheFolder::TakeOut(const CacheIndex::Entry& entry,
                                                const std::string& target) {
  const bool packed = entry.flag == kCacheGzip;
  if (!IsName(entry.file, kAnswer) || (!packed && entry.flag != kCachePlain))
    return TakeOutResult::kDamaged;
  const std::string source = path_ + entry.file;
  if (!IsFile(source)) return TakeOutResult::kGone;
  const int unpacked = packed ? GunzipFile(source, target) : kGunzipDone;
  const bool done = packed ? unpacked == kGunzipDone : CopyForCaller(source, target);
  if (done) return TakeOutResult::kDone;
  if (!IsFile(source)) return TakeOutResult::kGone;
  // Any other failure may concern the target, and says nothing about the entry.
  return unpacked == kGunzipUnreadable ? TakeOutResult::kDamaged : TakeOutResult::kFailed;
}

void CacheFolder::Discard(const std::string& key, const CacheIndex::Entry& entry) {
  const std::lock_guard lock(mutex_);
  if (index_->Remove(key, entry.file)) RemoveAnswer(entry.file);
}

bool CacheFolder::Store(const std::string& key, const std::string& file, int flag) {
  if (flag != kCacheGzip && flag != kCachePlain) return false;
  const std::string stem = std::string(kPrefix) + platform::NewGuid();
  auto copy = CopyFile(file, path_ + stem + std::string(kTemporary), storage::Flush::kYes);
  if (!copy) return false;
  const CacheIndex::Entry entry{stem + std::string(kAnswer), flag};
  if (Enter(key, entry, *copy)) return true;
  RemoveAnswer(entry.file);
  return false;
}

bool CacheFolder::Enter(const std::string& key, const CacheIndex::Entry& entry,
                        storage::PartFile& copy) {
  const std::lock_guard lock(mutex_);
  CacheIndex::Transaction transaction(*index_);
  if (!transaction.Begin()) return false;
  const std::optional<CacheIndex::Entry> old = index_->Find(key);
  if (!copy.MoveTo(path_ + entry.file)) return false;
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
  if (IsName(name, kAnswer)) platform::RemoveFile(path_ + name);
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
    const bool left_over = IsName(name, kAnswer) && !entered->contains(name);
    const bool abandoned = IsName(name, kTemporary) && IsOld(at->path());
    if (left_over || abandoned) platform::RemoveFile(path_ + name);
  }
  return !error;
}

}  // namespace qv
