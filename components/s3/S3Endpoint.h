// Where an S3 server is, and how requests to it are addressed.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "S3Request.h"

namespace qv::components {

class S3Endpoint {
 public:
  // `host` is a name or an address, with "http://" or "https://" before it if it likes; without,
  // it is https, whatever the port. Port 0 is the scheme's own. Of `style`, 0 has buckets in the
  // path and 1 in the host name. Nothing when it is no such thing.
  [[nodiscard]] static std::optional<S3Endpoint> Parse(std::string_view host, std::uint16_t port,
                                                       long style);

  // `request` with an address, unsigned. Nothing when its bucket cannot be part of one.
  [[nodiscard]] std::optional<S3Wire> Address(const S3Request& request) const;

 private:
  std::string scheme_;
  std::string host_;
  std::string port_;  // as it is appended to a host: empty or ":9000"
  bool is_bucket_in_host_ = false;
};

}  // namespace qv::components
