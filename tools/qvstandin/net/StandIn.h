// The stand-in server: answers the platform's commands on SQLite files in a folder.
#pragma once

#include <atomic>
#include <boost/asio/io_context.hpp>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "ClientStream.h"
#include "Listener.h"
#include "Session.h"
#include "tools/qvstandin/commands/Command.h"

namespace qv::standin {

struct StandInOptions {
  std::string data_folder;
  std::string listen = "127.0.0.1";
  std::uint16_t port = 0;                  // 0: a free one
  std::optional<std::uint16_t> http_port;  // nothing: no HTTP
  std::string token;                       // empty: none is asked for
  std::optional<bool> compress;            // nothing: the settings stay as they are

  std::uint32_t memory_threshold = 256U << 10;
  std::uint64_t request_limit = 16ULL << 20;
  std::uint64_t answer_limit = 8ULL << 30;
  std::uint64_t upload_limit = 8ULL << 30;
  std::size_t connection_limit = 64;
  std::chrono::milliseconds io_timeout{30'000};
  std::chrono::milliseconds idle_timeout{600'000};
  std::chrono::milliseconds statement_limit{30'000};
  // Hears of every request just before its reply goes out, from the thread that serves it.
  std::function<void(const ServedCommand&)> on_served;
};

// One thread accepts, and each client has one of its own: a client that stands still, or a query
// that takes long, keeps nobody else waiting. One thread starts and stops the server; the other
// functions may be called from any.
class StandIn {
 public:
  explicit StandIn(StandInOptions options);
  ~StandIn();
  StandIn(const StandIn&) = delete;
  StandIn& operator=(const StandIn&) = delete;

  // Prepares the folder and listens; once. Otherwise false, and why in `error`.
  [[nodiscard]] bool Start(std::string* error = nullptr);
  // Closes every connection, cuts short and undoes what is unfinished, waits for all threads, and
  // gives the folder back.
  void Stop();

  [[nodiscard]] std::uint16_t Port() const { return frames_.Port(); }
  // 0 when there is none.
  [[nodiscard]] std::uint16_t HttpPort() const { return http_.Port(); }
  // The last requests, oldest first.
  [[nodiscard]] std::vector<ServedCommand> Served() const;
  // How many connections were closed because what came was no proper frame, or no proper HTTP.
  [[nodiscard]] std::uint64_t MalformedFrames() const { return malformed_frames_; }

 private:
  enum class Speech { kFrames, kHttp };

  struct Client {
    Client(std::unique_ptr<ClientStream> connection, Speech spoken)
        : stream(std::move(connection)), speech(spoken) {}

    const std::unique_ptr<ClientStream> stream;
    const Speech speech;
    std::atomic<bool> done = false;
    std::thread thread;
  };

  [[nodiscard]] Listener::Admit AdmitWho(Speech speech);
  void Admit(std::unique_ptr<ClientStream> stream, Speech speech);
  void Serve(Client& client);
  void JoinFinished();
  void Remember(ServedCommand served);

  const StandInOptions options_;
  DataFolder data_;
  ServerLog log_;
  Services services_;
  SessionRules rules_;

  boost::asio::io_context context_{1};
  Listener frames_{context_, options_.io_timeout, AdmitWho(Speech::kFrames)};
  Listener http_{context_, options_.io_timeout, AdmitWho(Speech::kHttp)};
  std::thread accepting_;
  // The accepting thread's, until that has ended.
  std::list<Client> clients_;

  std::atomic<std::uint64_t> malformed_frames_ = 0;
  mutable std::mutex served_mutex_;
  std::deque<ServedCommand> served_;
};

}  // namespace qv::standin

namespace qv {

using standin::ServedCommand;
using standin::StandIn;
using standin::StandInOptions;

}  // namespace qv
