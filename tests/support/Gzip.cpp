#include "Gzip.h"

#include <zlib.h>

#include "TempFolder.h"

namespace qv {

std::string Gzipped(const std::string& text) {
  const TempFolder folder;
  const std::string path = folder.At("packed");
  const gzFile file = gzopen(path.c_str(), "wb");
  gzwrite(file, text.data(), static_cast<unsigned>(text.size()));
  gzclose(file);
  return BytesOf(path);
}

}  // namespace qv
