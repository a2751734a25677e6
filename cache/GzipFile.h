// Unpacking of gzip answers.
#pragma once

#include <cstdint>
#include <string>

namespace qv {

enum GunzipResult {
  kGunzipDone = 0,
  // The source's path is too long, or the source is not gzip, ends early, fails its checksum,
  // unpacks to more than the limit or cannot be read.
  kGunzipUnreadable = -1,
  // The source cannot be opened, or the target cannot take all of it.
  kGunzipCutShort = -2,
  kGunzipNoTarget = -3,
  kGunzipCancelled = -4,  // the calling thread's call was cancelled
};

// The longest unpacked answer; a small gzip file can unpack to any length.
constexpr std::uint64_t kMaxUnpacked = std::uint64_t{4} << 30;

// Unpacks the file at `source`, which has one or more gzip members, into a private file at
// `target`, replacing an existing one. Bytes after the last member are ignored. `target` is
// complete only if the result is kGunzipDone (0). The caller deletes both files, whatever the
// result. May be called from any thread.
[[nodiscard]] int GunzipFile(const std::string& source, const std::string& target,
                             std::uint64_t limit = kMaxUnpacked);

}  // namespace qv
