// A server that does exactly what a test tells it.
#pragma once

#include <atomic>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <thread>

#include "WholeFrame.h"

namespace qv {

class ServerSide final : public wire::ByteStream {
 public:
  // Runs `context`, the socket's, while it waits.
  ServerSide(boost::asio::io_context& context, boost::asio::ip::tcp::socket& socket)
      : context_(context), socket_(socket) {}

  bool Read(wire::WritableBytes bytes) override;
  bool Write(std::initializer_list<wire::Bytes> pieces) override;

  // Returns false if the client disconnected. A file of the request is stored as `file_path`. Says
  // hello to a client that does.
  bool Receive(WholeFrame& request, const std::string& file_path = "");
  // The same as a server that knows only version 1, which takes a hello for a malformed frame.
  bool ReceiveAsOldServer(WholeFrame& request, const std::string& file_path = "");
  bool Reply(const std::string& payload, wire::OutgoingFile* file = nullptr);
  // Returns when the client disconnects or the server ends.
  void WaitForEnd();

  [[nodiscard]] boost::asio::ip::tcp::socket& Socket() { return socket_; }

 private:
  // Starts an operation, which stores its error in its argument, and waits for it.
  template <class Start>
  bool Complete(Start start);

  boost::asio::io_context& context_;
  boost::asio::ip::tcp::socket& socket_;
};

// Listens on a free loopback port. Every connection has a thread that runs the script and then
// disconnects. The destructor ends them all.
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
  // Waits until `count` scripts have ended and disconnected.
  void WaitForFinished(int count);

 private:
  // Has its own context, so that the thread that waits is the one that closes the socket: not every
  // system wakes a thread whose socket another one shuts down.
  struct Client {
    boost::asio::io_context context{1};
    boost::asio::ip::tcp::socket socket{context};
    std::thread player;
  };

  void Accept();
  void Play(Client& client);

  Script script_;
  boost::asio::io_context context_;
  boost::asio::ip::tcp::acceptor acceptor_;
  std::atomic<int> connections_{0};
  std::atomic<bool> stopping_{false};
  std::mutex mutex_;
  std::condition_variable changed_;
  int finished_ = 0;
  std::list<Client> clients_;
  std::thread listener_;
};

}  // namespace qv
