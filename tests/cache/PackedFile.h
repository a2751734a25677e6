// A gzip file for a test.
#pragma once

#include <zlib.h>

#include <string>

#include "tests/support/TempFolder.h"

namespace qv {

// Writes `text` packed and gives the file's path.
inline std::string PackedFile(const TempFolder& folder, const std::string& text) {
  const std::string path = (folder.Path() / "packed").string();
  const gzFile file = gzopen(path.c_str(), "wb");
  gzwrite(file, text.data(), static_cast<unsigned>(text.size()));
  gzclose(file);
  return path;
}

}  // namespace qv
