// The transport's own parameters: what hosts set by name.
#pragma once

#include <chrono>
#include <string>

#include "base/text/ParameterSet.h"

namespace qv::wire {

struct TransportSettings {
  // Whether a user interface may report what is going on; kept for the host, which reads it back.
  std::string display_messages = "1";
  std::string token;
  std::chrono::milliseconds connect_timeout{5000};
  // How long a stretch without progress may be.
  std::chrono::milliseconds io_timeout{30000};
  // How often a bad network is probed at most.
  std::chrono::milliseconds retry_after{3000};
};

//   name                values
//   dispmsg             any text
//   token               any text; travels with every request
//   connect_timeout_ms  1 to 3600000
//   io_timeout_ms       1 to 3600000
//   retry_after_ms      1 to 3600000
//   tls                 "0": this transport does not encrypt and says so rather than pretend
//   ca_file             empty: only an encrypting transport would use it
class Parameters : public text::ParameterSet<TransportSettings> {
 public:
  Parameters();
};

}  // namespace qv::wire
