// Files on an FTP server.
#pragma once

#include <optional>
#include <set>
#include <string>

#include "FtpSession.h"
#include "components/queue/LocalFile.h"
#include "components/queue/RemoteStore.h"

namespace qv::components {

// Uploads are written beside their place on the server, under a name that nobody else uses, and
// renamed when they are whole.
class FtpStore final : public RemoteStore {
 public:
  explicit FtpStore(const TransferSettings& settings) : session_(settings) {}

  [[nodiscard]] FtpSession& Session() { return session_; }
  // Lines of uploads and downloads end as each side ends them; there is no going on with a broken
  // one then, since no size means anything.
  void SetText(bool is_text) { is_text_ = is_text; }

  QvTransferResult Upload(const std::string& local, const std::string& remote, Resume& resume,
                          TransferMeter& meter) override;
  QvTransferResult Download(const std::string& remote, const std::string& local, Resume& resume,
                            TransferMeter& meter) override;
  // By way of this machine, since the protocol has no command for it. Every try begins anew.
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
  // Opens what a broken download left, if it is still good for anything.
  QvTransferResult GoOn(const FtpTransfer& transfer, const std::string& local, Resume& resume,
                        std::optional<LocalTarget>& target);
  QvTransferResult FillPart(LocalSource& source, bool is_text, Resume& resume,
                            TransferMeter& meter);
  // Makes the folders above a file; whether there were any to be made.
  [[nodiscard]] bool MakeFolders(const std::string& path);
  QvTransferResult Replace(const std::string& from, const std::string& to);

  FtpSession session_;
  // Those that are there already, as far as is known.
  std::set<std::string> folders_;
  bool is_text_ = false;
};

}  // namespace qv::components
