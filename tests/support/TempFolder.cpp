#include "TempFolder.h"

#include <zlib.h>

#include <fstream>
#include <iterator>
#include <random>

#include "base/platform/Platform.h"

namespace qv {

TempFolder::TempFolder() {
  std::random_device random;
  do {
    path_ = std::filesystem::temp_directory_path() / ("qvtest-" + std::to_string(random()));
  } while (!std::filesystem::create_directory(path_));
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TempFolder::At(const std::filesystem::path& name) const {
  return platform::NarrowFromPath(name.empty() ? path_ : (path_ / name).make_preferred());
}

std::string TempFolder::Write(const std::string& name, const std::string& bytes) const {
  const std::filesystem::path path = path_ / name;
  // Truncating and rewriting a file makes some file systems wait for the disk; a new file does not.
  std::filesystem::remove(path);
  std::ofstream(path, std::ios::binary) << bytes;
  return At(name);
}

std::string BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string Gzipped(const std::string& text) {
  const TempFolder folder;
  const std::string path = folder.At("packed");
  const gzFile file = gzopen(path.c_str(), "wb");
  gzwrite(file, text.data(), static_cast<unsigned>(text.size()));
  gzclose(file);
  return BytesOf(path);
}

}  // namespace qv
