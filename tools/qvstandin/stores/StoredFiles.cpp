#include "StoredFiles.h"

#include <vector>

namespace qv::standin {

namespace {

constexpr std::size_t kAtOnce = 256U << 10;

Outcome NoFile() { return {ErrorCode::kNoFile, "no such file"}; }

}  // namespace

Outcome PutFile(const Place& place, const std::string& path) {
  const auto there = place.folder.Look(place.name);
  const bool is_free = !there || there->kind == platform::EntryKind::kFile;
  if (is_free && place.folder.TakeFile(path, place.name)) return {};
  return {ErrorCode::kStoreFailed, "the file cannot be stored there"};
}

Outcome OpenFile(const Place& place, std::optional<platform::OpenedFile>& opened) {
  opened = place.folder.OpenFile(place.name);
  return opened ? Outcome{} : NoFile();
}

Outcome RemoveFile(const Place& place) {
  const auto there = place.folder.Look(place.name);
  if (!there || there->kind != platform::EntryKind::kFile) return NoFile();
  if (place.folder.RemoveFile(place.name)) return {};
  return {ErrorCode::kStoreFailed, "the file cannot be removed"};
}

Outcome ReadAll(platform::OpenedFile source, ByteSink& target, WorkLimit& limit) {
  std::vector<char> buffer(kAtOnce);
  for (;;) {
    if (limit.IsOver()) return limit.Failure("the call");
    const std::size_t length = std::fread(buffer.data(), 1, buffer.size(), source.file.get());
    if (length == 0) break;
    if (!target.Write({buffer.data(), length})) {
      return {ErrorCode::kStoreFailed, "no room for the copy", error::kInternal};
    }
  }
  if (std::ferror(source.file.get()) != 0)
    return {ErrorCode::kStoreFailed, "the file cannot be read", error::kInternal};
  if (!target.Finish()) return {ErrorCode::kStoreFailed, "no room for the copy", error::kInternal};
  return {};
}

}  // namespace qv::standin
