#include "StandIn.h"

#include <boost/asio/post.hpp>
#include <exception>
#include <filesystem>
#include <system_error>

#include "Secret.h"

namespace qv::standin {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

constexpr std::size_t kRemembered = 1000;
constexpr std::chrono::milliseconds kAcceptPause{100};

std::string LogFileIn(const std::string& folder) {
  return (std::filesystem::path(folder) / "server.log").string();
}

}  // namespace

StandIn::StandIn(StandInOptions options)
    : options_(std::move(options)),
      data_(options_.data_folder),
      log_(LogFileIn(options_.data_folder)),
      services_{data_, log_, options_.memory_threshold, options_.answer_limit},
      rules_{.token = options_.token,
             .login_token = NewSecret(),
             .first_timeout = options_.io_timeout,
             .idle_timeout = options_.idle_timeout,
             .statement_limit = options_.statement_limit,
             .request_limit = options_.request_limit,
             .on_served = [this](ServedCommand served) { Remember(std::move(served)); },
             .on_malformed_frame = [this] { ++malformed_frames_; }} {}

StandIn::~StandIn() { Stop(); }

bool StandIn::Start(std::string* error) {
  std::string ignored;
  std::string& why = error != nullptr ? *error : ignored;
  Outcome prepared = data_.Prepare();
  if (prepared.Ok() && options_.compress) prepared = data_.SetCompression(*options_.compress);
  if (!prepared.Ok()) {
    why = prepared.text;
    return false;
  }
  if (!Listen(why)) return false;
  AcceptNext();
  accepting_ = std::thread([this] { context_.run(); });
  return true;
}

bool StandIn::Listen(std::string& error) {
  boost::system::error_code code;
  const auto address = asio::ip::make_address(options_.listen, code);
  const tcp::endpoint endpoint(address, options_.port);
  if (!code) acceptor_.open(endpoint.protocol(), code);
  if (!code) acceptor_.set_option(tcp::acceptor::reuse_address(true), code);
  if (!code) acceptor_.bind(endpoint, code);
  if (!code) acceptor_.listen(asio::socket_base::max_listen_connections, code);
  if (!code) port_ = acceptor_.local_endpoint(code).port();
  if (code) error = "cannot listen on " + options_.listen + ": " + code.message();
  return !code;
}

void StandIn::AcceptNext() {
  if (stopping_) return;
  std::unique_ptr<Client> client;
  try {
    client = std::make_unique<Client>(options_.io_timeout);
  } catch (const std::exception&) {
    return AcceptLater();
  }
  auto& peer = client->stream.Peer();
  acceptor_.async_accept(peer, [this, client = std::move(client)](const auto& error) mutable {
    if (error) return AcceptLater();
    if (!stopping_) Admit(std::move(client));
    AcceptNext();
  });
}

// When there is no memory or no file descriptor for a connection, trying at once would not help.
void StandIn::AcceptLater() {
  if (stopping_) return;
  pause_.expires_after(kAcceptPause);
  pause_.async_wait([this](const auto&) { AcceptNext(); });
}

// One that finds no place is hung up on.
void StandIn::Admit(std::unique_ptr<Client> client) {
  JoinFinished();
  if (clients_.size() >= options_.connection_limit) return;
  Client& admitted = *clients_.emplace_back(std::move(client));
  boost::system::error_code ignored;
  admitted.stream.Peer().set_option(tcp::no_delay(true), ignored);
  try {
    admitted.thread = std::thread([this, &admitted] { Serve(admitted); });
  } catch (const std::system_error&) {
    clients_.pop_back();
  }
}

void StandIn::Serve(Client& client) {
  try {
    Session(client.stream, services_, rules_).Serve();
  } catch (const std::exception&) {
    // Out of memory or descriptors for this client; the others go on.
  }
  client.stream.HangUp();
  client.done = true;
}

void StandIn::JoinFinished() {
  clients_.remove_if([](const std::unique_ptr<Client>& client) {
    if (!client->done) return false;
    client->thread.join();
    return true;
  });
}

void StandIn::Stop() {
  if (!accepting_.joinable()) return;
  // Not context_.stop(): a client that has just been accepted would keep its connection.
  asio::post(context_, [this] {
    stopping_ = true;
    boost::system::error_code ignored;
    acceptor_.close(ignored);
    pause_.cancel();
  });
  accepting_.join();
  for (const auto& client : clients_) client->stream.Close();
  for (const auto& client : clients_) client->thread.join();
  clients_.clear();
  data_.Release();
}

void StandIn::Remember(ServedCommand served) {
  if (options_.on_served) options_.on_served(served);
  const std::lock_guard lock(served_mutex_);
  served_.push_back(std::move(served));
  if (served_.size() > kRemembered) served_.pop_front();
}

std::vector<ServedCommand> StandIn::Served() const {
  const std::lock_guard lock(served_mutex_);
  return {served_.begin(), served_.end()};
}

}  // namespace qv::standin
