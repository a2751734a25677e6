#include "GzipFile.h"

#include <zlib.h>

#include <array>
#include <cstdio>

#include "base/platform/Platform.h"

namespace qv {

namespace {

constexpr std::size_t kPathLimit = 1024;
constexpr std::size_t kChunk = 16384;

gzFile OpenPacked(const std::string& path) {
  const int descriptor = platform::OpenDescriptor(path);
  if (descriptor < 0) return nullptr;
  const gzFile packed = gzdopen(descriptor, "rb");
  if (packed == nullptr) platform::CloseDescriptor(descriptor);
  return packed;
}

GunzipResult Unpack(gzFile source, std::FILE* target, std::uint64_t limit) {
  // zlib would copy a file that is not gzip, or is empty, unchanged.
  if (gzdirect(source) != 0) return kGunzipUnreadable;
  std::array<char, kChunk> chunk;
  for (;;) {
    const int got = gzread(source, chunk.data(), static_cast<unsigned>(chunk.size()));
    if (got < 0) return kGunzipUnreadable;
    if (got == 0) return kGunzipDone;
    const auto length = static_cast<std::size_t>(got);
    if (length > limit) return kGunzipUnreadable;
    limit -= length;
    if (std::fwrite(chunk.data(), 1, length, target) != length) return kGunzipCutShort;
  }
}

}  // namespace

int GunzipFile(const std::string& source, const std::string& target, std::uint64_t limit) {
  if (source.size() >= kPathLimit) return kGunzipUnreadable;
  const gzFile packed = OpenPacked(source);
  if (packed == nullptr) return kGunzipCutShort;
  std::FILE* const plain = platform::CreatePrivateFile(target, platform::Create::kAlways);
  if (plain == nullptr) {
    gzclose(packed);
    return kGunzipNoTarget;
  }
  const GunzipResult result = Unpack(packed, plain, limit);
  // A truncated source reads like a complete one; only closing it tells.
  const bool ended = gzclose(packed) == Z_OK;
  const bool kept = std::fclose(plain) == 0;
  if (result != kGunzipDone) return result;
  if (!ended) return kGunzipUnreadable;
  return kept ? kGunzipDone : kGunzipCutShort;
}

}  // namespace qv
