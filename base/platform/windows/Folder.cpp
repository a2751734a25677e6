#include "base/platform/Folder.h"

#include <utility>
#include <vector>

#include "Handle.h"
#include "OwnerOnly.h"
#include "RelativeOpen.h"
#include "base/platform/Platform.h"

namespace qv::platform {

struct Folder::Handle {
  explicit Handle(HandlePtr opened) : handle(std::move(opened)) {}

  const HandlePtr handle;
};

namespace {

constexpr ACCESS_MASK kUseFolder = FILE_LIST_DIRECTORY | FILE_TRAVERSE;
constexpr std::int64_t kUnitsOfSecond = 10'000'000;  // the system counts units of 100 ns since 1601
constexpr std::int64_t kSecondsTo1970 = 11'644'473'600;

std::int64_t Joined(DWORD high, DWORD low) {
  return static_cast<std::int64_t>(std::uint64_t{high} << 32 | low);
}

EntryKind KindOf(DWORD attributes) {
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return EntryKind::kOther;
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? EntryKind::kFolder : EntryKind::kFile;
}

Entry MakeEntry(std::string name, DWORD attributes, std::int64_t size, std::int64_t written) {
  return Entry{std::move(name), KindOf(attributes), static_cast<std::uint64_t>(size),
               written / kUnitsOfSecond - kSecondsTo1970};
}

bool IsFolder(HANDLE handle) {
  BY_HANDLE_FILE_INFORMATION known{};
  return Inform(handle, &known) && KindOf(known.dwFileAttributes) == EntryKind::kFolder;
}

// Skips entries whose name the code page cannot express.
HandlePtr OpenEntry(HANDLE folder, const std::string& name, const OpenHow& how) {
  return name.empty() ? nullptr : OpenIn(folder, name, how);
}

bool Remove(HANDLE folder, const std::string& name, ULONG kind) {
  const HandlePtr entry = OpenEntry(folder, name, {DELETE, FILE_OPEN, kind, nullptr});
  FILE_DISPOSITION_INFO gone{TRUE};
  return entry != nullptr && ::SetFileInformationByHandle(entry.get(), FileDispositionInfo, &gone,
                                                          sizeof gone) != FALSE;
}

std::string NameOf(const FILE_ID_BOTH_DIR_INFO& found) {
  const auto* const name = reinterpret_cast<const char16_t*>(found.FileName);
  return NarrowFromWide({name, found.FileNameLength / sizeof(char16_t)});
}

// Visits the entries of one answer of the system; returns false as soon as `visit` does.
bool VisitAll(const std::byte* answer, const std::function<bool(const Entry&)>& visit) {
  for (;;) {
    const auto& found = *reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(answer);
    const std::string name = NameOf(found);
    if (name != "." && name != ".." &&
        !visit(MakeEntry(name, found.FileAttributes, found.EndOfFile.QuadPart,
                         found.LastWriteTime.QuadPart))) {
      return false;
    }
    if (found.NextEntryOffset == 0) return true;
    answer += found.NextEntryOffset;
  }
}

}  // namespace

std::optional<Folder> Folder::Open(const std::string& path) {
  HandlePtr opened =
      Opened(::CreateFileA(path.c_str(), kUseFolder | FILE_READ_ATTRIBUTES,
                           FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                           OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (opened == nullptr || !IsFolder(opened.get())) return std::nullopt;
  return Folder(std::make_shared<const Handle>(std::move(opened)));
}

std::optional<Folder> Folder::Enter(const std::string& name) const {
  HandlePtr opened =
      OpenEntry(handle_->handle.get(), name, {kUseFolder, FILE_OPEN, FILE_DIRECTORY_FILE, nullptr});
  if (opened == nullptr || !IsFolder(opened.get())) return std::nullopt;
  return Folder(std::make_shared<const Handle>(std::move(opened)));
}

std::optional<Entry> Folder::Look(const std::string& name) const {
  const HandlePtr entry = OpenEntry(handle_->handle.get(), name, {0, FILE_OPEN, 0, nullptr});
  BY_HANDLE_FILE_INFORMATION known{};
  if (entry == nullptr || !Inform(entry.get(), &known)) return std::nullopt;
  const FILETIME& written = known.ftLastWriteTime;
  return MakeEntry(name, known.dwFileAttributes, Joined(known.nFileSizeHigh, known.nFileSizeLow),
                   Joined(written.dwHighDateTime, written.dwLowDateTime));
}

std::optional<OpenedFile> Folder::OpenFile(const std::string& name) const {
  HandlePtr opened = OpenEntry(handle_->handle.get(), name,
                               {FILE_READ_DATA, FILE_OPEN, FILE_NON_DIRECTORY_FILE, nullptr});
  BY_HANDLE_FILE_INFORMATION known{};
  if (opened == nullptr || !Inform(opened.get(), &known) || !IsFile(known.dwFileAttributes)) {
    return std::nullopt;
  }
  FilePtr file(StreamOf(std::move(opened), "rb"));
  if (file == nullptr) return std::nullopt;
  const auto size = Joined(known.nFileSizeHigh, known.nFileSizeLow);
  return OpenedFile{std::move(file), static_cast<std::uint64_t>(size)};
}

bool Folder::ForEach(const std::function<bool(const Entry&)>& visit) const {
  // Uses a handle of its own, because a handle remembers how far it was read.
  const HandlePtr folder = OpenIn(handle_->handle.get(), "",
                                  {FILE_LIST_DIRECTORY, FILE_OPEN, FILE_DIRECTORY_FILE, nullptr});
  if (folder == nullptr) return false;
  constexpr std::size_t kBytes = 64 * 1024;
  std::vector<std::max_align_t> answer(kBytes / sizeof(std::max_align_t));
  while (::GetFileInformationByHandleEx(folder.get(), FileIdBothDirectoryInfo, answer.data(),
                                        kBytes) != FALSE) {
    if (!VisitAll(reinterpret_cast<const std::byte*>(answer.data()), visit)) return false;
  }
  return ::GetLastError() == ERROR_NO_MORE_FILES;
}

bool Folder::MakeFolder(const std::string& name) const {
  OwnerOnly rights(Inherit::kToContents);
  if (rights.IsMissing()) return false;
  return OpenEntry(handle_->handle.get(), name,
                   {FILE_LIST_DIRECTORY, FILE_CREATE, FILE_DIRECTORY_FILE,
                    rights.Attributes()->lpSecurityDescriptor}) != nullptr;
}

bool Folder::RemoveFolder(const std::string& name) const {
  return Remove(handle_->handle.get(), name, FILE_DIRECTORY_FILE);
}

bool Folder::RemoveFile(const std::string& name) const {
  return Remove(handle_->handle.get(), name, FILE_NON_DIRECTORY_FILE);
}

bool Folder::Move(const std::string& name, const Folder& to, const std::string& to_name) const {
  const HandlePtr entry = OpenEntry(handle_->handle.get(), name, {DELETE, FILE_OPEN, 0, nullptr});
  return entry != nullptr && RenameInto(entry.get(), to.handle_->handle.get(), to_name);
}

bool Folder::TakeFile(const std::string& path, const std::string& name) const {
  const HandlePtr file = Opened(
      ::CreateFileA(path.c_str(), DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  return file != nullptr && RenameInto(file.get(), handle_->handle.get(), name);
}

}  // namespace qv::platform
