#include "tools/qvcall/system/LocalPath.h"

#include <windows.h>
// After windows.h, whose types it uses.
#include <aclapi.h>

#include <memory>
#include <string_view>

#include "WideText.h"
#include "base/text/DeviceNames.h"

namespace qv::tool {

namespace fs = std::filesystem;

namespace {

std::wstring InCapitals(std::wstring text) {
  ::CharUpperBuffW(text.data(), static_cast<DWORD>(text.size()));
  return text;
}

}  // namespace

fs::path PathFromNarrow(const std::string& path) {
  return WideFromNarrow(path).value_or(L"?");  // no file can have this name
}

std::optional<std::string> NarrowFromPath(const fs::path& path) {
  return NarrowFromWide(path.native());
}

std::string ShownPath(const fs::path& path) { return NearestNarrow(path.native()); }

// Not every reparse point is a link: files that are stored elsewhere until they are read have other
// tags.
bool IsLink(const fs::path& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
    return false;
  }
  WIN32_FIND_DATAW found{};
  const HANDLE search = ::FindFirstFileW(path.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return true;
  ::FindClose(search);
  return found.dwReserved0 == 0 || IsReparseTagNameSurrogate(found.dwReserved0);
}

bool KeepsName(const std::string& name) {
  const std::optional<std::wstring> wide = WideFromNarrow(name);
  return wide && text::IsPortableName(std::wstring_view(*wide));
}

std::string PathKey(const std::string& path) {
  const std::wstring key = InCapitals(WideFromNarrow(path).value_or(L"?"));
  return {reinterpret_cast<const char*>(key.data()), key.size() * sizeof(wchar_t)};
}

void GiveRightsOf(const fs::path& like, const fs::path& file) {
  PACL rights = nullptr;
  PSECURITY_DESCRIPTOR all = nullptr;
  if (::GetNamedSecurityInfoW(like.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                              nullptr, &rights, nullptr, &all) != ERROR_SUCCESS) {
    return;
  }
  const std::unique_ptr<void, decltype(&::LocalFree)> kept(all, &::LocalFree);
  // Rights inherited from the folder are inherited again.
  std::wstring name = file.native();
  ::SetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT,
                          DACL_SECURITY_INFORMATION | UNPROTECTED_DACL_SECURITY_INFORMATION,
                          nullptr, nullptr, rights, nullptr);
}

}  // namespace qv::tool
