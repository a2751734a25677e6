// What the two components that are built here have in common: a place on the network that holds
// files, whatever it speaks.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "TransferBody.h"
#include "base/text/Letters.h"
#include "qvnetcall/transfer/ResultCodes.h"

namespace qv::components {

// What one try of a transfer left behind for the next one. What `tag` and `done` mean is the
// store's.
struct Resume {
  std::string part;        // what holds the bytes: of a download, the path of a local file
  std::string tag;         // which state of the source they belong to
  std::uint64_t done = 0;  // bytes that need not be moved again

  [[nodiscard]] bool IsEmpty() const { return part.empty(); }
};

// Objects are used by one thread. Every member makes one try; QvTransfer_Broken is the result that
// is worth another. Server paths have slashes, whatever the caller wrote. A file never stands half
// written under its final name, on either side.
//
// A transfer that does not succeed may leave something in `resume`, for the next try of the same
// file or until it is abandoned; it leaves nothing behind that `resume` does not name.
class RemoteStore {
 public:
  virtual ~RemoteStore() = default;

  virtual QvTransferResult Upload(const std::string& local, const std::string& remote,
                                  Resume& resume, TransferMeter& meter) = 0;
  virtual QvTransferResult Download(const std::string& remote, const std::string& local,
                                    Resume& resume, TransferMeter& meter) = 0;
  virtual QvTransferResult Copy(const std::string& from, const std::string& to, Resume& resume,
                                TransferMeter& meter) = 0;
  // Removes what broken tries left on the server of an upload or a copy that will not be tried
  // again. False when the server cannot be reached, so that there is no use in asking for more.
  virtual bool Abandon(const std::string& remote, const Resume& resume) = 0;

  virtual QvTransferResult Rename(const std::string& from, const std::string& to) = 0;
  virtual QvTransferResult DeleteFile(const std::string& path) = 0;
  virtual QvTransferResult DeleteFolder(const std::string& path) = 0;
};

// The path with slashes for backslashes. Nothing when it is empty, or has control characters, which
// could be taken for the end of a command.
[[nodiscard]] inline std::optional<std::string> RemotePath(std::string_view text) {
  if (text.empty() || text::HasControls(text)) return std::nullopt;
  std::string path(text);
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

}  // namespace qv::components
