#include "ScriptedServer.h"

#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>

namespace qv {

namespace asio = boost::asio;
using asio::ip::tcp;

bool ServerSide::Read(WritableBytes bytes) {
  boost::system::error_code error;
  asio::read(socket_, asio::buffer(bytes.data(), bytes.size()), error);
  return !error;
}

bool ServerSide::Write(std::initializer_list<Bytes> pieces) {
  boost::system::error_code error;
  for (const Bytes piece : pieces) {
    if (!error) asio::write(socket_, asio::buffer(piece.data(), piece.size()), error);
  }
  return !error;
}

bool ServerSide::Receive(WholeFrame& request, const std::string& file_path) {
  request = ReceiveWhole(*this, FrameKind::kRequest, file_path);
  return request.status == FrameStatus::kDone;
}

bool ServerSide::Reply(const std::string& payload, OutgoingFile* file) {
  return SendWhole(*this, FrameKind::kReply, {.payload = payload}, file) == FrameStatus::kDone;
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
  {
    const std::lock_guard lock(mutex_);
    boost::system::error_code ignored;
    for (const auto& socket : sockets_) socket->shutdown(tcp::socket::shutdown_both, ignored);
  }
  for (std::thread& player : players_) player.join();
}

void ScriptedServer::Accept() {
  for (;;) {
    auto socket = std::make_unique<tcp::socket>(acceptor_.accept());
    if (stopping_) return;
    ++connections_;
    socket->set_option(tcp::no_delay(true));
    const std::lock_guard lock(mutex_);
    sockets_.push_back(std::move(socket));
    players_.emplace_back([this, &played = *sockets_.back()] { Play(played); });
  }
}

void ScriptedServer::Play(tcp::socket& socket) {
  ServerSide side(socket);
  script_(side);
  const std::lock_guard lock(mutex_);
  boost::system::error_code ignored;
  socket.shutdown(tcp::socket::shutdown_both, ignored);
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
