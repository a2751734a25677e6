// The least that a call can cost: as many bytes there and back over TCP, with nothing done to them.
#pragma once

#include <thread>
#include <vector>

#include "Relay.h"
#include "Sockets.h"

namespace qv::bench {

class PingPong {
 public:
  // `call` is what one call sends each way.
  explicit PingPong(Traffic call);
  ~PingPong();
  PingPong(const PingPong&) = delete;
  PingPong& operator=(const PingPong&) = delete;

  void Call();

 private:
  void Answer();

  std::vector<char> request_;
  std::vector<char> reply_;
  Socket client_;
  Socket server_;
  std::thread answering_;
};

}  // namespace qv::bench
