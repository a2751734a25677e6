// What the two components that are built here have in common: a place on the network that holds
// files, whatever it speaks.
#pragma once

#include <cstdint>
#include <string>

#include "qvnetcall/transfer/ResultCodes.h"

namespace qv {

// Hears how far the file that is being moved has come; false stops the transfer.
class TransferMeter {
 public:
  virtual bool Moved(std::uint64_t done, std::uint64_t total) = 0;

 protected:
  ~TransferMeter() = default;
};

// What one try of a transfer left behind for the next one. What `tag` and `done` mean is the
// store's.
struct Resume {
  std::string tag;         // which state of the source, or which upload, the rest belongs to
  std::uint64_t done = 0;  // bytes that need not be moved again
};

// Objects are used by one thread. Every member makes one try; QvTransfer_Broken is the result that
// is worth another. Server paths have slashes, whatever the caller wrote. A file never stands half
// written under its final name, on either side.
class RemoteStore {
 public:
  virtual ~RemoteStore() = default;

  virtual QvTransferResult Upload(const std::string& local, const std::string& remote,
                                  Resume& resume, TransferMeter& meter) = 0;
  virtual QvTransferResult Download(const std::string& remote, const std::string& local,
                                    Resume& resume, TransferMeter& meter) = 0;
  virtual QvTransferResult Copy(const std::string& from, const std::string& to, Resume& resume,
                                TransferMeter& meter) = 0;
  // Remove what broken tries left of a file that will not be tried again, as far as it goes.
  virtual void AbandonUpload(const std::string& remote, const Resume& resume) = 0;
  virtual void AbandonDownload(const std::string& local, const Resume& resume) = 0;

  virtual QvTransferResult Rename(const std::string& from, const std::string& to) = 0;
  virtual QvTransferResult DeleteFile(const std::string& path) = 0;
  virtual QvTransferResult DeleteFolder(const std::string& path) = 0;
};

}  // namespace qv
