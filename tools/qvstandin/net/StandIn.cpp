#include "StandIn.h"

#include <algorithm>
#include <array>
#include <boost/asio/post.hpp>
#include <exception>
#include <filesystem>
#include <system_error>

#include "HttpSession.h"
#include "base/platform/Platform.h"

namespace qv::standin {

namespace {

namespace asio = boost::asio;

constexpr std::size_t kRemembered = 1000;

std::string LogFileIn(const std::string& folder) {
  return platform::NarrowFromPath(platform::PathFromNarrow(folder) / "server.log");
}

// Clients send some calls as plain frames even to the HTTP port.
bool BeginsWithFrame(ClientStream& stream) {
  std::array<unsigned char, wire::kFrameMagic.size()> bytes;
  if (!stream.Read(bytes)) return false;
  stream.PutBack(bytes);
  return bytes == wire::kFrameMagic;
}

}  // namespace

StandIn::StandIn(StandInOptions options)
    : options_(std::move(options)),
      data_(options_.data_folder),
      log_(LogFileIn(options_.data_folder)),
      services_{data_, log_, options_.memory_threshold, options_.answer_limit},
      rules_{.token = options_.token,
             .login_token = NewSecret(),
             .idle_timeout = options_.idle_timeout,
             .statement_limit = options_.statement_limit.count() != 0 ? options_.statement_limit
                                                                      : WorkLimit::kNoLimit,
             .request_limit = options_.request_limit,
             .upload_limit = options_.upload_limit,
             .on_served = [this](ServedCommand served) { Remember(std::move(served)); }} {}

StandIn::~StandIn() { Stop(); }

bool StandIn::Start(std::string* error) {
  std::string ignored;
  std::string& why = error != nullptr ? *error : ignored;
  if (options_.cell_limit) data_.SetCellLimit(*options_.cell_limit);
  Outcome prepared = data_.Prepare();
  if (prepared.Ok() && options_.compress) prepared = data_.SetCompression(*options_.compress);
  if (!prepared.Ok()) {
    why = prepared.text;
    return false;
  }
  if (!frames_.Open(options_.listen, options_.port, why)) return false;
  if (options_.http_port && !http_.Open(options_.listen, *options_.http_port, why)) return false;
  accepting_ = std::thread([this] { context_.run(); });
  return true;
}

Listener::Admit StandIn::AdmitWho(Speech speech) {
  return [this, speech](std::unique_ptr<ClientStream> stream) { Admit(std::move(stream), speech); };
}

void StandIn::Refuse(std::unique_ptr<ClientStream> stream, Speech speech) {
  const std::size_t places = options_.connection_limit;
  std::string text = std::to_string(clients_.size()) + " of " + std::to_string(places) +
                     " places of the server are taken";
  Remember(RecordOfRefusal(*stream, text, error::kBusy));
  refusals_.Add(std::move(stream), std::move(text), speech == Speech::kHttp);
}

void StandIn::Admit(std::unique_ptr<ClientStream> stream, Speech speech) {
  JoinFinished();
  stream->NotePeer();
  if (clients_.size() >= options_.connection_limit) return Refuse(std::move(stream), speech);
  Client& admitted = clients_.emplace_back(std::move(stream), speech);
  boost::system::error_code ignored;
  admitted.stream->Peer().set_option(asio::ip::tcp::no_delay(true), ignored);
  try {
    admitted.thread = std::thread([this, &admitted] { Serve(admitted); });
  } catch (const std::system_error&) {
    clients_.pop_back();
  }
}

void StandIn::Serve(Client& client) {
  KeptDatabases kept;
  Services services = services_;
  services.kept = &kept;
  ClientStream& stream = *client.stream;
  const auto first = std::min(options_.first_timeout, options_.io_timeout);
  stream.LimitReads(std::chrono::steady_clock::now() + first);
  try {
    if (client.speech == Speech::kHttp && !BeginsWithFrame(stream)) {
      HttpSession(stream, services, rules_).Serve();
    } else {
      FrameSession(stream, services, rules_).Serve();
    }
  } catch (const std::exception&) {
    // This client ran out of memory or descriptors; the others are not affected.
  }
  stream.HangUp();
  kept.Clear();  // before anybody waits for this thread
  client.done = true;
}

void StandIn::JoinFinished() {
  clients_.remove_if([](Client& client) {
    if (!client.done) return false;
    client.thread.join();
    return true;
  });
}

void StandIn::Stop() {
  if (!accepting_.joinable()) return;
  // context_.stop() would leave the connection of a client that was just accepted open.
  asio::post(context_, [this] {
    frames_.Close();
    http_.Close();
    refusals_.Close();
  });
  accepting_.join();
  for (Client& client : clients_) client.stream->Close();
  for (Client& client : clients_) client.thread.join();
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
