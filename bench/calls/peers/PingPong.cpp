#include "PingPong.h"

#include <stdexcept>

namespace qv::bench {

PingPong::PingPong(Traffic call) : request_(call.to_server), reply_(call.to_client) {
  const Socket listener = Socket::Listen();
  client_ = Socket::Connect(listener.Port());
  server_ = listener.Accept();
  answering_ = std::thread([this] { Answer(); });
}

PingPong::~PingPong() {
  client_.Shutdown();
  answering_.join();
}

void PingPong::Call() {
  client_.Send(request_);
  if (!client_.ReceiveAll(reply_)) throw std::runtime_error("the ping-pong ended");
}

void PingPong::Answer() {
  std::vector<char> request(request_.size());
  const std::vector<char> reply(reply_.size());
  while (server_.ReceiveAll(request)) server_.Send(reply);
}

}  // namespace qv::bench
