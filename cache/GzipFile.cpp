#include "GzipFile.h"

#include <zlib.h>

#include <array>
#include <string_view>

#include "base/call/CancelFlag.h"
#include "base/platform/Platform.h"
#include "base/storage/OutputFile.h"

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

GunzipResult Unpack(gzFile source, storage::OutputFile& target, std::uint64_t limit) {
  // zlib would copy a file that is not gzip, or is empty, unchanged.
  if (gzdirect(source) != 0) return kGunzipUnreadable;
  std::array<char, kChunk> chunk;
  while (!call::IsCancelled()) {
    const int got = gzread(source, chunk.data(), static_cast<unsigned>(chunk.size()));
    if (got < 0) return kGunzipUnreadable;
    if (got == 0) return kGunzipDone;
    const auto length = static_cast<std::size_t>(got);
    if (length > limit) return kGunzipUnreadable;
    limit -= length;
    if (!target.Write(std::string_view(chunk.data(), length))) return kGunzipCutShort;
  }
  return kGunzipCancelled;
}

}  // namespace

int GunzipFile(const std::string& source, const std::string& target, std::uint64_t limit) {
  if (source.size() >= kPathLimit) return kGunzipUnreadable;
  const gzFile packed = OpenPacked(source);
  if (packed == nullptr) return kGunzipCutShort;
  storage::OutputFile plain(target, platform::Create::kAlways);
  if (!plain.IsOpen()) {
    gzclose(packed);
    return kGunzipNoTarget;
  }
  const GunzipResult result = Unpack(packed, plain, limit);
  // A truncated source reads like a complete one; only closing it tells.
  const bool ended = gzclose(packed) == Z_OK;
  const bool kept = plain.Close();
  if (result != kGunzipDone) return result;
  if (!ended) return kGunzipUnreadable;
  return kept ? kGunzipDone : kGunzipCutShort;
}

}  // namespace qv
