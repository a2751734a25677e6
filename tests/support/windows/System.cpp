#include "tests/support/System.h"

#include <windows.h>

#include <cstdlib>

namespace qv {

void SetVariable(const std::string& name, const char* value) {
  ::_putenv_s(name.c_str(), value != nullptr ? value : "");
}

// Needs a right that not every user has, and a system that supports links.
bool MakeLink(const std::filesystem::path& target, const std::filesystem::path& link) {
  const std::filesystem::path found = link.parent_path() / target;
  const DWORD kind = std::filesystem::is_directory(found) ? SYMBOLIC_LINK_FLAG_DIRECTORY : 0;
  if (::CreateSymbolicLinkW(link.c_str(), target.c_str(), kind) == FALSE) return false;
  const DWORD made = ::GetFileAttributesW(link.c_str());
  return made != INVALID_FILE_ATTRIBUTES && (made & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

// Pipes have names of their own, in no folder.
bool MakePipe(const std::filesystem::path&) { return false; }

}  // namespace qv
