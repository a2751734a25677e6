// A server that files are moved to and from.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qv::components {

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

}  // namespace qv::components
