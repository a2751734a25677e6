#include "FtpServer.h"

#include "base/text/HostName.h"
#include "base/text/Letters.h"

namespace qv::components {

namespace {

constexpr std::string_view kPlain = "ftp://";
constexpr std::string_view kSecure = "ftpes://";
constexpr std::uint16_t kUsualPort = 21;

}  // namespace

std::optional<FtpServer> MakeFtpServer(std::string_view host, std::uint16_t port,
                                       std::string_view user, std::string_view password) {
  const bool has_tls = text::TakeScheme(host, kSecure);
  if (!has_tls) text::TakeScheme(host, kPlain);
  const auto name = text::HostForUrl(host);
  if (!name || text::HasControls(user) || text::HasControls(password)) return std::nullopt;
  return FtpServer{
      .url = std::string(kPlain) + *name + ':' + std::to_string(port != 0 ? port : kUsualPort),
      .has_tls = has_tls,
      .user = std::string(user),
      .password = std::string(password)};
}

}  // namespace qv::components
