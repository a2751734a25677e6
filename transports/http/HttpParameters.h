// The transport's own parameters: what hosts set by name.
#pragma once

#include <chrono>
#include <string>

#include "base/text/ParameterSet.h"

namespace qv::wire {

struct HttpSettings {
  std::string token;
  bool use_tls = false;
  // Empty: the system's authorities.
  std::string ca_file;
  // Looking up the name, connecting and agreeing on TLS, together.
  std::chrono::milliseconds connect_timeout{5000};
  // How long a stretch without progress may be.
  std::chrono::milliseconds io_timeout{30000};
};

// The names and values are those of qvnetcall/transport/HttpParameters.h.
class HttpParameters : public text::ParameterSet<HttpSettings> {
 public:
  HttpParameters();
};

}  // namespace qv::wire
