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
};

// A small answer can unpack to any length; what is longer than this is no answer.
constexpr std::uint64_t kMaxUnpacked = std::uint64_t{4} << 30;

// Unpacks the file at `source`, of one or more gzip members, into a private file at `target`,
// replacing what is there. Bytes behind the last member that begin no other are ignored. Only 0,
// kGunzipDone, means that `target` is whole; both files are the caller's to delete, whatever the
// result. May be called from any thread.
[[nodiscard]] int GunzipFile(const std::string& source, const std::string& target,
                             std::uint64_t limit = kMaxUnpacked);

}  // namespace qv
