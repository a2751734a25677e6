#include "RelativeOpen.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <memory>
#include <string_view>

#include "../Platform.h"
#include "Patience.h"

namespace qv::platform {

namespace {

// What is not in every header of the system's native functions.
constexpr FILE_INFORMATION_CLASS kRename = static_cast<FILE_INFORMATION_CLASS>(10);
extern "C" NTSTATUS NTAPI NtSetInformationFile(HANDLE, PIO_STATUS_BLOCK, PVOID, ULONG,
                                               FILE_INFORMATION_CLASS);

// Whether a name up to its first dot is that of a device, in whatever folder.
bool IsDevice(std::string_view name) {
  std::string stem(name.substr(0, name.find('.')));
  stem.resize(stem.find_last_not_of(' ') + 1);
  std::transform(stem.begin(), stem.end(), stem.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  if (stem.size() == 4 && (stem.starts_with("COM") || stem.starts_with("LPT"))) {
    return stem[3] >= '0' && stem[3] <= '9';
  }
  constexpr std::string_view kDevices[] = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
  return std::find(std::begin(kDevices), std::end(kDevices), stem) != std::end(kDevices);
}

bool IsPlain(std::string_view name, std::u16string_view wide) {
  constexpr std::u16string_view kOdd = u"\\/:*?\"<>|";
  const bool odd = std::any_of(wide.begin(), wide.end(),
                               [&](char16_t c) { return c < 0x20 || kOdd.find(c) != kOdd.npos; });
  // A dot or a blank at the end would be cut off by others.
  return !odd && !name.ends_with('.') && !name.ends_with(' ') && !IsDevice(name);
}

// A name as the native functions take it; nothing when it is not plain.
std::optional<std::u16string> NativeName(const std::string& name) {
  auto wide = WideFromNarrow(name);
  if (!wide || !IsPlain(name, *wide) || wide->size() > 255) return std::nullopt;
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
  // In units that are aligned as the record wants it.
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
