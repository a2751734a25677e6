// The interface between the queue and a protocol: a store of files on the network.
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

// What a failed attempt left for the next one. The store defines the meaning of `tag` and `done`.
struct Resume {
  std::string part;        // where the bytes are; for a download, the path of a local file
  std::string tag;         // the state of the source that they belong to
  std::uint64_t done = 0;  // number of bytes that need not be moved again

  [[nodiscard]] bool IsEmpty() const { return part.empty(); }
};

// Use from one thread. Every call makes one attempt; QvTransfer_Broken means that another one may
// succeed. Server paths use slashes. A file never appears incomplete under its final name, on
// either side.
//
// A transfer that fails may record in `resume` what it left for the next attempt with the same
// file. It leaves nothing else.
class RemoteStore {
 public:
  virtual ~RemoteStore() = default;

  virtual QvTransferResult Upload(const std::string& local, const std::string& remote,
                                  Resume& resume, TransferMeter& meter) = 0;
  virtual QvTransferResult Download(const std::string& remote, const std::string& local,
                                    Resume& resume, TransferMeter& meter) = 0;
  virtual QvTransferResult Copy(const std::string& from, const std::string& to, Resume& resume,
                                TransferMeter& meter) = 0;
  // Removes what failed attempts of an upload or a copy left on the server. Call it if there will
  // be no further attempt. Returns false if the server cannot be reached, so that further calls are
  // pointless.
  virtual bool Abandon(const std::string& remote, const Resume& resume) = 0;

  virtual QvTransferResult Rename(const std::string& from, const std::string& to) = 0;
  virtual QvTransferResult DeleteFile(const std::string& path) = 0;
  virtual QvTransferResult DeleteFolder(const std::string& path) = 0;
};

// Returns the path with backslashes replaced by slashes. Returns nothing if it is empty or contains
// control characters, which could end a command.
[[nodiscard]] inline std::optional<std::string> RemotePath(std::string_view text) {
  if (text.empty() || text::HasControls(text)) return std::nullopt;
  std::string path(text);
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

}  // namespace qv::components
