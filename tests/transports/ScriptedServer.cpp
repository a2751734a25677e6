#include "ScriptedServer.h"

#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>

#include "message/LittleEndian.h"

namespace qv {

namespace asio = boost::asio;
using asio::ip::tcp;

Bytes BytesOfText(std::string_view text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

std::string Field(std::string_view body) {
  std::string field(4, '\0');
  StoreU32(field.data(), static_cast<std::uint32_t>(body.size()));
  return field.append(body).append(1, '\0');
}

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

bool ServerSide::Receive(Request& request, const std::string& file_path) {
  FrameHeader header;
  if (ReceiveHeader(*this, FrameKind::kRequest, {}, header) != FrameStatus::kDone) return false;
  const auto room = [](std::string& text, std::uint64_t size) {
    text.assign(static_cast<std::size_t>(size), '\0');
    return WritableBytes(reinterpret_cast<unsigned char*>(text.data()), text.size());
  };
  const IncomingMessage message{.token = room(request.token, header.token_length),
                                .block = room(request.block, kFrameBlockSize),
                                .payload = room(request.payload, header.payload_length)};
  if (ReceiveMessage(*this, message) != FrameStatus::kDone) return false;
  if (!header.file_length) return true;
  return ReceiveFile(*this, *header.file_length, file_path) == FrameStatus::kDone;
}

bool ServerSide::Reply(std::string_view payload, OutgoingFile* file) {
  const std::string block(kFrameBlockSize, '\0');
  const OutgoingMessage message{.kind = FrameKind::kReply,
                                .token = {},
                                .block = BytesOfText(block),
                                .payload = BytesOfText(payload)};
  return SendFrame(*this, message, file) == FrameStatus::kDone;
}

ScriptedServer::ScriptedServer(Script script)
    : script_(std::move(script)),
      acceptor_(context_, tcp::endpoint(asio::ip::address_v4::loopback(), 0)),
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
  for (ServerSide::Request request; side.Receive(request);) {
    if (!side.Reply(request.payload)) return;
  }
}

}  // namespace qv
