#include "ScriptedServer.h"

#include <boost/asio/post.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <vector>

namespace qv {

namespace asio = boost::asio;
using asio::ip::tcp;

template <class Start>
bool ServerSide::Complete(Start start) {
  boost::system::error_code result;
  context_.restart();
  start(result);
  context_.run();  // also closes the socket if that was requested meanwhile
  return !result;
}

bool ServerSide::Read(wire::WritableBytes bytes) {
  return Complete([&](auto& result) {
    asio::async_read(socket_, asio::buffer(bytes.data(), bytes.size()),
                     [&result](const auto& error, std::size_t) { result = error; });
  });
}

bool ServerSide::Write(std::initializer_list<wire::Bytes> pieces) {
  std::vector<asio::const_buffer> buffers;
  for (const wire::Bytes piece : pieces) buffers.emplace_back(piece.data(), piece.size());
  return Complete([&](auto& result) {
    asio::async_write(socket_, buffers,
                      [&result](const auto& error, std::size_t) { result = error; });
  });
}

void ServerSide::WaitForEnd() {
  Complete([&](auto& result) {
    socket_.async_wait(tcp::socket::wait_error, [&result](const auto& error) { result = error; });
  });
}

bool ServerSide::Receive(WholeFrame& request, const std::string& file_path) {
  request = ReceiveWhole(*this, wire::kFirstFromClient, file_path);
  while (request.kind == wire::FrameKind::kHello && wire::SendHello(*this)) {
    request = ReceiveWhole(*this, wire::kFirstFromClient, file_path);
  }
  return request.status == wire::FrameStatus::kDone && request.kind == wire::FrameKind::kRequest;
}

bool ServerSide::ReceiveAsOldServer(WholeFrame& request, const std::string& file_path) {
  request = ReceiveWhole(*this, wire::FrameKind::kRequest, file_path);
  return request.status == wire::FrameStatus::kDone;
}

bool ServerSide::Reply(const std::string& payload, wire::OutgoingFile* file) {
  return SendWhole(*this, wire::FrameKind::kReply, {.payload = payload}, file) ==
         wire::FrameStatus::kDone;
}

ScriptedServer::ScriptedServer(Script script, const asio::ip::address& address)
    : script_(std::move(script)),
      acceptor_(context_, tcp::endpoint(address, 0)),
      listener_([this] { Accept(); }) {}

ScriptedServer::~ScriptedServer() {
  stopping_ = true;
  tcp::socket wake_up(context_);
  wake_up.connect(acceptor_.local_endpoint());
  listener_.join();
  for (Client& client : clients_) {
    {
      // For a script that waits for the socket itself.
      const std::lock_guard lock(mutex_);
      boost::system::error_code ignored;
      client.socket.shutdown(tcp::socket::shutdown_both, ignored);
    }
    asio::post(client.context, [&client] {
      boost::system::error_code ignored;
      client.socket.close(ignored);
    });
  }
  for (Client& client : clients_) client.player.join();
}

void ScriptedServer::Accept() {
  for (;;) {
    Client& client = clients_.emplace_back();
    acceptor_.accept(client.socket);
    if (stopping_) {
      clients_.pop_back();
      return;
    }
    ++connections_;
    client.socket.set_option(tcp::no_delay(true));
    client.player = std::thread([this, &client] { Play(client); });
  }
}

void ScriptedServer::Play(Client& client) {
  ServerSide side(client.context, client.socket);
  script_(side);
  const std::lock_guard lock(mutex_);
  boost::system::error_code ignored;
  client.socket.close(
      ignored);  // tells a client that still sends, which shutdown does not do everywhere
  ++finished_;
  changed_.notify_all();
}

void ScriptedServer::WaitForFinished(int count) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return finished_ >= count; });
}

void ScriptedServer::Echo(ServerSide& side) {
  for (WholeFrame request; side.Receive(request);) {
    if (!side.Reply(request.payload)) return;
  }
}

}  // namespace qv
