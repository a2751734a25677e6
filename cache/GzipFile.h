// Unpacking of gzip answers.
#pragma once

#include <string>

namespace qv {

enum GunzipResult {
  kGunzipDone = 0,
  // The source's path is too long, or the source is not gzip, ends early, fails its checksum or
  // cannot be read.
  kGunzipUnreadable = -1,
  // The source cannot be opened, or the target cannot take all of it.
  kGunzipCutShort = -2,
  kGunzipNoTarget = -3,
};

// Unpacks the file at `source`, of one or more gzip members, into a private file at `target`,
// replacing what is there. Only 0, kGunzipDone, means that `target` is whole; both files are the
// caller's to delete, whatever the result. May be called from any thread.
[[nodiscard]] int GunzipFile(const std::string& source, const std::string& target);

}  // namespace qv
