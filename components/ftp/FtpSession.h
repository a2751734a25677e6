// A session with an FTP server, and the single operations in it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "components/queue/CurlRequest.h"

namespace qv::components {

// An FTP server and how to log into it.
struct FtpServer {
  std::string url;  // without a path
  bool has_tls = false;
  std::string user;  // empty for an anonymous login
  std::string password;
};

// Parses a server. `host` is a name or an address, optionally after "ftp://", or after "ftpes://"
// for TLS. Port 0 is the default port. Returns nothing if a text is invalid.
[[nodiscard]] std::optional<FtpServer> MakeFtpServer(std::string_view host, std::uint16_t port,
                                                     std::string_view user,
                                                     std::string_view password);

// What a server reports about a file. Members that it does not report are empty.
struct FtpFileState {
  QvTransferResult result = QvTransfer_Success;
  std::optional<std::uint64_t> size;
  std::optional<std::int64_t> written;  // seconds since 1970

  // Returns a text that changes with the file, or an empty text if the server reports too little.
  [[nodiscard]] std::string Tag() const;
};

// The answer to one command. The code is 0 if there was none.
struct FtpAnswer {
  QvTransferResult result = QvTransfer_Success;
  long code = 0;
};

// The parameters of a transfer.
struct FtpTransfer {
  std::string path;
  std::uint64_t offset = 0;  // position in the file at which it starts
  std::uint64_t size = 0;    // size of an uploaded file
  bool is_text = false;      // convert line ends
};

// Use from one thread. Paths are absolute server paths without control characters. Call Reach()
// successfully first, and again after any QvTransfer_Broken. Exempt: Open, Add, Quit.
class FtpSession {
 public:
  explicit FtpSession(const TransferSettings& settings);
  ~FtpSession() { Quit(); }
  FtpSession(const FtpSession&) = delete;
  FtpSession& operator=(const FtpSession&) = delete;

  // Logs into this server and forgets all others. If that fails, forgets this one as well.
  [[nodiscard]] QvTransferResult Open(FtpServer server);
  // Adds a server that is tried if those before it cannot be reached.
  void Add(FtpServer server);
  // Logs out and forgets all servers.
  void Quit() noexcept;
  // Sets whether data connections are opened from here or by the server. With TLS they are always
  // opened from here.
  void SetPassive(bool is_passive) { is_passive_ = is_passive; }

  // Connects and logs in unless the session is open already.
  [[nodiscard]] QvTransferResult Reach();
  // Returns `path` as an absolute path. A relative path starts at the login folder.
  [[nodiscard]] std::string Absolute(const std::string& path) const;

  [[nodiscard]] FtpFileState Look(const std::string& path);
  [[nodiscard]] FtpFileState Get(const FtpTransfer& transfer, BodySink& sink, TransferMeter& meter);
  [[nodiscard]] QvTransferResult Put(const FtpTransfer& transfer, BodySource& source,
                                     TransferMeter& meter);
  // Sends a command unchanged.
  [[nodiscard]] FtpAnswer Command(const std::string& line);
  // Sends a listing command for a folder. Returns NotFound if the folder does not exist.
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
