// A port that accepts clients.
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

// Only the thread that runs the context may use it; Open() and Port() may be called before the
// context runs.
class Listener {
 public:
  using Admit = std::function<void(std::unique_ptr<ClientStream>)>;

  // The context outlives the listener. `io_timeout` applies to the clients' streams. `admit` takes
  // ownership of each stream.
  Listener(boost::asio::io_context& context, std::chrono::milliseconds io_timeout, Admit admit);

  // Starts listening; port 0 selects a free port. Returns false and sets `error` if that fails.
  [[nodiscard]] bool Open(const std::string& address, std::uint16_t port, std::string& error);
  void Close();
  // Returns the port that it listens on; 0 before Open().
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
