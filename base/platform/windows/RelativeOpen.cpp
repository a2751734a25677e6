#include "RelativeOpen.h"

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

#include "base/platform/Platform.h"
#include "base/text/DeviceNames.h"

namespace qv::platform {

namespace {

// Not declared by every version of the system's headers.
constexpr FILE_INFORMATION_CLASS kRename = static_cast<FILE_INFORMATION_CLASS>(10);
extern "C" NTSTATUS NTAPI NtSetInformationFile(HANDLE, PIO_STATUS_BLOCK, PVOID, ULONG,
                                               FILE_INFORMATION_CLASS);

// Converts a name for the native functions. Returns nothing unless it is empty, which means the
// folder itself, or means the same to Win32 functions.
std::optional<std::u16string> NativeName(const std::string& name) {
  auto wide = WideFromNarrow(name);
  if (!wide || wide->size() > 255) return std::nullopt;
  // Checked in UTF-16: in a narrow code page, a byte may be half of another character.
  if (!wide->empty() && !text::IsPortableName(std::u16string_view(*wide))) return std::nullopt;
  return wide;
}

}  // namespace

HandlePtr OpenIn(HANDLE folder, const std::string& name, const OpenHow& how) {
  auto wide = NativeName(name);
  if (!wide) return nullptr;
  const auto bytes = static_cast<USHORT>(wide->size() * sizeof(char16_t));
  UNICODE_STRING native{bytes, bytes, reinterpret_cast<wchar_t*>(wide->data())};
  OBJECT_ATTRIBUTES object{};
  InitializeObjectAttributes(&object, &native, OBJ_CASE_INSENSITIVE, folder, how.security);
  HANDLE opened = nullptr;
  IO_STATUS_BLOCK status{};
  const NTSTATUS result = ::NtCreateFile(
      &opened, how.access | SYNCHRONIZE | FILE_READ_ATTRIBUTES, &object, &status, nullptr,
      FILE_ATTRIBUTE_NORMAL, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
      how.disposition, how.options | FILE_SYNCHRONOUS_IO_NONALERT | FILE_OPEN_REPARSE_POINT,
      nullptr, 0);
  return HandlePtr(NT_SUCCESS(result) ? opened : nullptr);
}

bool RenameInto(HANDLE object, HANDLE folder, const std::string& name) {
  const auto wide = NativeName(name);
  if (!wide || wide->empty()) return false;
  const std::size_t bytes = wide->size() * sizeof(char16_t);
  const std::size_t size = sizeof(FILE_RENAME_INFO) + bytes;
  // Allocated in units that have the record's alignment.
  const auto memory = std::make_unique<std::max_align_t[]>(size / sizeof(std::max_align_t) + 1);
  auto* const rename = reinterpret_cast<FILE_RENAME_INFO*>(memory.get());
  rename->ReplaceIfExists = TRUE;
  rename->RootDirectory = folder;
  rename->FileNameLength = static_cast<DWORD>(bytes);
  std::memcpy(rename->FileName, wide->data(), bytes);
  return Patiently([&] {
    IO_STATUS_BLOCK status{};
    return ::RtlNtStatusToDosError(
        NtSetInformationFile(object, &status, rename, static_cast<ULONG>(size), kRename));
  });
}

}  // namespace qv::platform
