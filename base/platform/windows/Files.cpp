#include <windows.h>

#include <io.h>

#include <cerrno>
#include <filesystem>
#include <utility>

#include "Handle.h"
#include "OwnerOnly.h"
#include "base/platform/Platform.h"

namespace qv::platform {

const char kSeparator = '\\';

namespace {

// The longest path that hosts have room for, without the NUL.
constexpr DWORD kMaxTempFolder = 259;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

HandlePtr Open(const std::string& path, DWORD access, DWORD share, DWORD how,
               SECURITY_ATTRIBUTES* rights = nullptr) {
  // Opens a link itself, whatever it points to.
  const DWORD flags = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT;
  return Opened(::CreateFileA(path.c_str(), access, share, rights, how, flags, nullptr));
}

// Returns null and sets errno on failure.
HandlePtr OpenShared(const std::string& path, DWORD access, DWORD how) {
  HandlePtr file = Opened(
      ::CreateFileA(path.c_str(), access, kShareAll, nullptr, how, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (file == nullptr) SetErrno();
  return file;
}

DWORD Disposition(Opening how) {
  if (how == Opening::kCreate) return CREATE_ALWAYS;
  return how == Opening::kChangeOrCreate ? OPEN_ALWAYS : OPEN_EXISTING;
}

bool IsFolder(const std::string& path) {
  const DWORD attributes = ::GetFileAttributesA(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsOrdinaryFile(HANDLE handle) {
  BY_HANDLE_FILE_INFORMATION known{};
  return Inform(handle, &known) && IsFile(known.dwFileAttributes);
}

// Returns the part of a path below the drive or the server's share, without separators at its end.
std::string FolderAbove(const std::string& path) {
  std::string_view rest = path;
  while (!rest.empty() && FolderLength(rest) == rest.size()) rest.remove_suffix(1);
  const std::size_t length = FolderLength(rest);
  return std::string(rest.substr(0, length == 0 ? 0 : length - 1));
}

}  // namespace

std::string TempFolder() {
  char folder[MAX_PATH + 2] = {};
  const DWORD length = ::GetTempPathA(sizeof folder, folder);
  if (length > 0 && length <= kMaxTempFolder) return folder;
  const UINT windows = ::GetSystemWindowsDirectoryA(folder, MAX_PATH);
  return std::string(folder, windows < MAX_PATH ? windows : 0) + "\\Temp\\";
}

std::FILE* CreatePrivateFile(const std::string& path, Create how) {
  OwnerOnly rights(Inherit::kNot);
  if (rights.IsMissing()) {
    SetErrno();
    return nullptr;
  }
  // CREATE_ALWAYS is not used, because it would follow a link.
  HandlePtr file = Open(path, GENERIC_WRITE | READ_CONTROL | WRITE_DAC, 0,
                        how == Create::kNew ? CREATE_NEW : OPEN_ALWAYS, rights.Attributes());
  if (file == nullptr) {
    SetErrno();
    return nullptr;
  }
  if (!IsOrdinaryFile(file.get())) {
    errno = EEXIST;
    return nullptr;
  }
  if (!rights.GiveTo(file.get()) || ::SetEndOfFile(file.get()) == FALSE) {
    errno = EACCES;
    return nullptr;
  }
  return StreamOf(std::move(file), "wb");
}

std::FILE* OpenFile(const std::string& path, Opening how) {
  const bool reads = how == Opening::kRead;
  const DWORD access = reads ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
  HandlePtr file = OpenShared(path, access, Disposition(how));
  return file != nullptr ? StreamOf(std::move(file), reads ? "rb" : "r+b") : nullptr;
}

int OpenDescriptor(const std::string& path) {
  HandlePtr file = OpenShared(path, GENERIC_READ, OPEN_EXISTING);
  return file != nullptr ? DescriptorOf(std::move(file)) : -1;
}

void CloseDescriptor(int descriptor) { ::_close(descriptor); }

std::optional<std::size_t> ReadAt(int descriptor, std::uint64_t offset, char* to,
                                  std::size_t count) {
  constexpr std::size_t kMostAtOnce = 0x40000000;
  const auto file = reinterpret_cast<HANDLE>(::_get_osfhandle(descriptor));
  std::size_t done = 0;
  while (done < count) {
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(offset + done);
    place.OffsetHigh = static_cast<DWORD>((offset + done) >> 32);
    const auto wanted = static_cast<DWORD>(std::min(count - done, kMostAtOnce));
    DWORD got = 0;
    if (::ReadFile(file, to + done, wanted, &got, &place) == FALSE) {
      if (::GetLastError() != ERROR_HANDLE_EOF) return std::nullopt;
      got = 0;
    }
    if (got == 0) break;
    done += got;
  }
  return done;
}

bool IsPrivate(std::FILE* file) {
  const HANDLE handle = HandleOf(file);
  return IsOrdinaryFile(handle) && IsOwnerOnly(handle);
}

bool CreatePrivateFolder(const std::string& path) {
  if (IsFolder(path)) return true;
  const std::string above = FolderAbove(path);
  if (!above.empty() && !IsFolder(above + kSeparator) && !CreatePrivateFolder(above)) return false;
  OwnerOnly rights(Inherit::kToContents);
  if (rights.IsMissing()) return false;
  return ::CreateDirectoryA(path.c_str(), rights.Attributes()) != FALSE || IsFolder(path);
}

// MinGW's standard library does not recognise that a path begins with a server, and would make it a
// path on this machine.
std::optional<std::string> AbsolutePath(const std::string& path) {
  std::string whole(MAX_PATH, '\0');
  for (;;) {
    const DWORD room = static_cast<DWORD>(whole.size());
    const DWORD length = ::GetFullPathNameA(path.c_str(), room, whole.data(), nullptr);
    if (length == 0) return std::nullopt;
    whole.resize(length);
    if (length < room) return whole;
  }
}

bool IsLocalFolder(const std::string& path) {
  char volume[MAX_PATH];
  if (::GetVolumePathNameA(path.c_str(), volume, sizeof volume) == FALSE) return false;
  const UINT kind = ::GetDriveTypeA(volume);
  return kind == DRIVE_FIXED || kind == DRIVE_REMOVABLE || kind == DRIVE_RAMDISK;
}

std::filesystem::file_type TypeOf(const std::string& path) {
  const DWORD attributes = ::GetFileAttributesA(path.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES) {
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
      return std::filesystem::file_type::symlink;
    const bool is_folder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return is_folder ? std::filesystem::file_type::directory : std::filesystem::file_type::regular;
  }
  const DWORD why = ::GetLastError();
  const bool nothing = why == ERROR_FILE_NOT_FOUND || why == ERROR_PATH_NOT_FOUND;
  return nothing ? std::filesystem::file_type::not_found : std::filesystem::file_type::none;
}

bool MayCreateFile(const std::string& folder, std::uint64_t bytes) {
  ULARGE_INTEGER left{};
  const char* const place = folder.empty() ? "." : folder.c_str();
  return ::GetDiskFreeSpaceExA(place, &left, nullptr, nullptr) != FALSE && bytes <= left.QuadPart;
}

bool RemoveFile(const std::string& path) { return ::DeleteFileA(path.c_str()) != FALSE; }

bool ReplaceByRename(const std::string& from, const std::string& to) {
  return Patiently([&] {
    const BOOL moved = ::MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING);
    return moved != FALSE ? ERROR_SUCCESS : ::GetLastError();
  });
}

bool FlushToDisk(std::FILE* file) {
  return std::fflush(file) == 0 && ::FlushFileBuffers(HandleOf(file)) != FALSE;
}

void SurviveFileLimits() {}  // Windows has no such limit.

void SurviveClosedPipes() {}  // On Windows, such writes fail anyway.

// Windows cannot tell. Whoever starts the server with a pipe has to read it.
bool StandardErrorHasRoom() { return true; }

}  // namespace qv::platform
