// The connection to a server, and the single steps that are taken over it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "components/queue/CurlRequest.h"

namespace qv::components {

// A server that files are moved to and from.
struct FtpServer {
  std::string url;  // without a path
  bool has_tls = false;
  std::string user;  // empty: whoever may come without a name
  std::string password;
};

// `host` is a name or an address, before which "ftp://" may stand, or "ftpes://" for TLS; port 0 is
// the usual one. Nothing when a text cannot be what it is for.
[[nodiscard]] std::optional<FtpServer> MakeFtpServer(std::string_view host, std::uint16_t port,
                                                     std::string_view user,
                                                     std::string_view password);

// What a server says of a file; nothing where it does not.
struct FtpFileState {
  QvTransferResult result = QvTransfer_Success;
  std::optional<std::uint64_t> size;
  std::optional<std::int64_t> written;  // seconds since 1970

  // Differs when the file does; empty when that cannot be told.
  [[nodiscard]] std::string Tag() const;
};

// How the server answered one command. The code is 0 when it did not.
struct FtpAnswer {
  QvTransferResult result = QvTransfer_Success;
  long code = 0;
};

// How a file is moved.
struct FtpTransfer {
  std::string path;
  std::uint64_t offset = 0;  // where in the file it begins
  std::uint64_t size = 0;    // of the file when it is uploaded
  bool is_text = false;      // lines end as each side ends them
};

// One thread. Paths are the server's, absolute and without control characters. But for Open, Add,
// Quit and Reach, everything wants a Reach that succeeded before it, since the last Broken at
// least.
class FtpSession {
 public:
  explicit FtpSession(const TransferSettings& settings);
  ~FtpSession() { Quit(); }
  FtpSession(const FtpSession&) = delete;
  FtpSession& operator=(const FtpSession&) = delete;

  // Logs into this server, and forgets the others; when it does not succeed, this one too.
  [[nodiscard]] QvTransferResult Open(FtpServer server);
  // One more server, for when those before it cannot be reached.
  void Add(FtpServer server);
  // Logs out and forgets all servers.
  void Quit() noexcept;
  // Whether data connections are made from here (else from the server). With TLS they always are.
  void SetPassive(bool is_passive) { is_passive_ = is_passive; }

  // Sees to it that a server is there and logged into.
  [[nodiscard]] QvTransferResult Reach();
  // A path as it is from the server's root; others begin where the login led.
  [[nodiscard]] std::string Absolute(const std::string& path) const;

  [[nodiscard]] FtpFileState Look(const std::string& path);
  [[nodiscard]] FtpFileState Get(const FtpTransfer& transfer, BodySink& sink, TransferMeter& meter);
  [[nodiscard]] QvTransferResult Put(const FtpTransfer& transfer, BodySource& source,
                                     TransferMeter& meter);
  // Sends a command as it stands.
  [[nodiscard]] FtpAnswer Command(const std::string& line);
  // Sends the command for a listing of a folder; NotFound when there is no such folder.
  [[nodiscard]] FtpAnswer List(const std::string& folder, const char* command, BodySink& sink);

 private:
  [[nodiscard]] QvTransferResult LogInto(std::size_t server);
  void SetUp(CurlRequest& request, const std::string& path) const;
  [[nodiscard]] QvTransferResult Perform(CurlRequest& request);
  [[nodiscard]] FtpFileState StateOf(QvTransferResult result) const;

  TransferSettings settings_;
  curl::CurlHandle handle_;
  std::vector<FtpServer> servers_;
  std::size_t current_ = 0;
  bool is_open_ = false;
  bool is_passive_ = true;
  std::string home_;
};

}  // namespace qv::components
