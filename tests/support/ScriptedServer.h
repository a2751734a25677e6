// A server whose every move a test writes down.
#pragma once

#include <atomic>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "WholeFrame.h"

namespace qv {

class ServerSide final : public ByteStream {
 public:
  explicit ServerSide(boost::asio::ip::tcp::socket& socket) : socket_(socket) {}

  bool Read(WritableBytes bytes) override;
  bool Write(std::initializer_list<Bytes> pieces) override;

  // False when the client is gone. A file of the request goes to `file_path`.
  bool Receive(WholeFrame& request, const std::string& file_path = "");
  bool Reply(const std::string& payload, OutgoingFile* file = nullptr);

  [[nodiscard]] boost::asio::ip::tcp::socket& Socket() { return socket_; }

 private:
  boost::asio::ip::tcp::socket& socket_;
};

// Listens on a free port of the loopback; every connection is a thread that plays the script and
// hangs up at its end. Destruction ends them all.
class ScriptedServer {
 public:
  using Script = std::function<void(ServerSide&)>;

  explicit ScriptedServer(Script script, const boost::asio::ip::address& address =
                                             boost::asio::ip::address_v4::loopback());
  ~ScriptedServer();

  // Answers every request with its own payload.
  static void Echo(ServerSide& side);

  [[nodiscard]] std::uint16_t Port() const { return acceptor_.local_endpoint().port(); }
  [[nodiscard]] int Connections() const { return connections_; }
  // Waits until `count` scripts have come to their end and hung up.
  void WaitForFinished(int count);

 private:
  void Accept();
  void Play(boost::asio::ip::tcp::socket& socket);

  Script script_;
  boost::asio::io_context context_;
  boost::asio::ip::tcp::acceptor acceptor_;
  std::atomic<int> connections_{0};
  std::atomic<bool> stopping_{false};
  std::mutex mutex_;
  std::condition_variable changed_;
  int finished_ = 0;
  std::vector<std::unique_ptr<boost::asio::ip::tcp::socket>> sockets_;
  std::vector<std::thread> players_;
  std::thread listener_;
};

}  // namespace qv
