// Files on an FTP server.
#pragma once

#include <optional>
#include <set>
#include <string>

#include "FtpSession.h"
#include "components/queue/LocalFile.h"
#include "components/queue/RemoteStore.h"

namespace qv::components {

// Uploads are written beside their target on the server, under a unique name, and renamed when they
// are complete.
class FtpStore final : public RemoteStore {
 public:
  explicit FtpStore(const TransferSettings& settings) : session_(settings) {}

  [[nodiscard]] FtpSession& Session() { return session_; }
  // Converts line ends in uploads and downloads. Interrupted transfers cannot be resumed then,
  // because sizes do not match.
  void SetText(bool is_text) { is_text_ = is_text; }

  QvTransferResult Upload(const std::string& local, const std::string& remote, Resume& resume,
                          TransferMeter& meter) override;
  QvTransferResult Download(const std::string& remote, const std::string& local, Resume& resume,
                            TransferMeter& meter) override;
  // Copies through this machine, since the protocol has no command for it. Every attempt starts
  // over.
  QvTransferResult Copy(const std::string& from, const std::string& to, Resume& resume,
                        TransferMeter& meter) override;
  bool Abandon(const std::string& remote, const Resume& resume) override;

  QvTransferResult Rename(const std::string& from, const std::string& to) override;
  QvTransferResult DeleteFile(const std::string& path) override;
  QvTransferResult DeleteFolder(const std::string& path) override;

 private:
  QvTransferResult Send(const std::string& local, const std::string& remote, bool is_text,
                        Resume& resume, TransferMeter& meter);
  QvTransferResult Fetch(const std::string& remote, const std::string& local, bool is_text,
                         Resume& resume, TransferMeter& meter);
  // Opens the part of an interrupted download if it can be resumed.
  QvTransferResult GoOn(const FtpTransfer& transfer, const std::string& local, Resume& resume,
                        std::optional<LocalTarget>& target);
  QvTransferResult FillPart(LocalSource& source, bool is_text, Resume& resume,
                            TransferMeter& meter);
  // Creates the folders above a file. Returns true if any was missing.
  [[nodiscard]] bool MakeFolders(const std::string& path);
  QvTransferResult Replace(const std::string& from, const std::string& to);

  FtpSession session_;
  // Folders that are known to exist.
  std::set<std::string> folders_;
  bool is_text_ = false;
};

}  // namespace qv::components
