#include "ServerPath.h"

#include <algorithm>

#include "base/text/Letters.h"

namespace qv::tool {
namespace {

constexpr std::string_view kSeparators = "\\/";

}  // namespace

std::string ToServerPath(std::string_view typed) {
  std::string path;
  while (!typed.empty()) {
    const std::string_view part = typed.substr(0, typed.find_first_of(kSeparators));
    typed.remove_prefix(std::min(part.size() + 1, typed.size()));
    if (!part.empty() && part != ".") path = JoinServerPath(path, part);
  }
  return path;
}

bool EndsAsFolder(std::string_view typed) {
  return typed.empty() || typed == "." || kSeparators.find(typed.back()) != std::string_view::npos;
}

std::string JoinServerPath(std::string_view folder, std::string_view name) {
  std::string path(folder);
  if (!path.empty()) path += '\\';
  return path.append(name);
}

std::string_view LastPart(std::string_view path) { return path.substr(path.rfind('\\') + 1); }

std::string_view FolderOf(std::string_view path) {
  const std::size_t end = path.rfind('\\');
  return end != std::string_view::npos ? path.substr(0, end) : std::string_view();
}

// A colon would name another drive, or another stream of a file.
bool IsPlainName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." &&
         std::none_of(name.begin(), name.end(), [](char ch) {
           return text::IsControl(ch) || ch == '\\' || ch == '/' || ch == ':';
         });
}

}  // namespace qv::tool
