#include "FileNames.h"

#include <cstddef>

#include "base/platform/Platform.h"

namespace qv::storage {

namespace {

constexpr std::string_view kAnswerPrefix = "TempClient_";
constexpr std::string_view kAnswerExtension = ".txt";

}  // namespace

std::string PartBeside(const std::string& path) {
  return platform::FolderOf(path) + "~" + platform::NewGuid() + ".part";
}

std::string NewAnswerName() {
  return std::string(kAnswerPrefix) + platform::NewGuid() + std::string(kAnswerExtension);
}

bool IsAnswerName(std::string_view path) {
  const std::string_view name = path.substr(platform::FolderLength(path));
  return name.size() == kAnswerPrefix.size() + platform::kGuidLength + kAnswerExtension.size() &&
         name.starts_with(kAnswerPrefix) && name.ends_with(kAnswerExtension) &&
         platform::IsGuid(name.substr(kAnswerPrefix.size(), platform::kGuidLength));
}

}  // namespace qv::storage
