// What all sessions of a server have in common.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "ServedCommand.h"

namespace qv::standin {

struct SessionRules {
  std::string token;        // what every request must carry; empty when none is asked for
  std::string login_token;  // what may stand in its place over HTTP; handed out by this server
  std::chrono::milliseconds first_timeout;  // how long a newcomer may say nothing
  std::chrono::milliseconds idle_timeout;   // how long it may afterwards
  std::chrono::milliseconds statement_limit;
  std::uint64_t request_limit;  // the longest payload, in bytes
  std::uint64_t upload_limit;   // the longest file that comes along with a command
  std::function<void(ServedCommand)> on_served;
  std::function<void()> on_malformed_frame;
};

}  // namespace qv::standin
