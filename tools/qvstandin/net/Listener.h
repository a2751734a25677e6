// A port on which clients are waited for.
#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "ClientStream.h"

namespace qv::standin {

// Belongs to the thread that runs its context; Open and Port may be called before that runs.
class Listener {
 public:
  using Admit = std::function<void(std::unique_ptr<ClientStream>)>;

  // The context outlives the listener. `io_timeout` is for the clients' streams; `admit` takes each
  // of them.
  Listener(boost::asio::io_context& context, std::chrono::milliseconds io_timeout, Admit admit);

  // Listens from now on; port 0 is any free one. Otherwise false, and why in `error`.
  [[nodiscard]] bool Open(const std::string& address, std::uint16_t port, std::string& error);
  void Close();
  // The one that is listened on; 0 before that.
  [[nodiscard]] std::uint16_t Port() const { return port_; }

 private:
  void AcceptNext();
  void AcceptLater();

  const std::chrono::milliseconds io_timeout_;
  const Admit admit_;
  boost::asio::ip::tcp::acceptor acceptor_;
  boost::asio::steady_timer pause_;
  std::uint16_t port_ = 0;
  bool closed_ = false;
};

}  // namespace qv::standin
