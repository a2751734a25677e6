#include "RelativeOpen.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <memory>
#include <string_view>

#include "base/platform/Platform.h"

namespace qv::platform {

namespace {

// Not declared by every version of the system's headers.
constexpr FILE_INFORMATION_CLASS kRename = static_cast<FILE_INFORMATION_CLASS>(10);
extern "C" NTSTATUS NTAPI NtSetInformationFile(HANDLE, PIO_STATUS_BLOCK, PVOID, ULONG,
                                               FILE_INFORMATION_CLASS);

// Whether a name up to its first dot is that of a device, in whatever folder.
bool IsDevice(std::u16string_view name) {
  std::u16string stem(name.substr(0, name.find(u'.')));
  stem.resize(stem.find_last_not_of(u' ') + 1);
  std::transform(stem.begin(), stem.end(), stem.begin(), [](char16_t c) {
    return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c;
  });
  if (stem.size() == 4 && (stem.starts_with(u"COM") || stem.starts_with(u"LPT"))) {
    return std::u16string_view(u"0123456789\u00B9\u00B2\u00B3").find(stem[3]) != stem.npos;
  }
  constexpr std::u16string_view kDevices[] = {u"CON", u"PRN",    u"AUX",
                                              u"NUL", u"CONIN$", u"CONOUT$"};
  return std::find(std::begin(kDevices), std::end(kDevices), stem) != std::end(kDevices);
}

// Checked in UTF-16: in a narrow code page, these bytes may be half of another character.
bool IsPlain(std::u16string_view name) {
  const bool odd = std::any_of(name.begin(), name.end(), [](char16_t c) {
    return c < 0x20 || std::u16string_view(u"\\/:*?\"<>|").find(c) != std::u16string_view::npos;
  });
  // Win32 functions would cut a dot or a blank at the end.
  return !odd && !name.ends_with(u'.') && !name.ends_with(u' ') && !IsDevice(name);
}

// Converts a name for the native functions; returns nothing if it is not a plain name.
std::optional<std::u16string> NativeName(const std::string& name) {
  auto wide = WideFromNarrow(name);
  if (!wide || !IsPlain(*wide) || wide->size() > 255) return std::nullopt;
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
