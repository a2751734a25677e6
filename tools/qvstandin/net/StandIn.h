// The stand-in server: answers the platform's commands from the databases and files of a folder.
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
#include "FrameSession.h"
#include "Listener.h"
#include "Refusals.h"
#include "RequestLog.h"
#include "tools/qvstandin/commands/Command.h"

namespace qv::standin {

struct StandInOptions {
  std::string data_folder;
  std::string listen = "127.0.0.1";
  std::uint16_t port = 0;                  // 0: any free port
  std::optional<std::uint16_t> http_port;  // empty: no HTTP
  std::string token;                       // empty: no token is required
  std::optional<bool> compress;            // empty: the settings are not changed

  // Sizes are in bytes.
  std::uint32_t memory_threshold = 256U << 10;
  std::uint64_t request_limit = 16ULL << 20;
  std::uint64_t answer_limit = 8ULL << 30;
  std::uint64_t upload_limit = 8ULL << 30;
  std::optional<std::size_t> cell_limit;  // of one value; empty: each engine's own
  std::size_t connection_limit = 64;
  std::chrono::milliseconds io_timeout{30'000};
  std::chrono::milliseconds first_timeout{5'000};  // until a new client's first request begins
  std::chrono::milliseconds idle_timeout{600'000};
  std::chrono::milliseconds statement_limit{600'000};  // 0: none
  // Called for every request just before its reply is sent, on the thread that serves the client,
  // and, with command 0, for every client that was refused because the server is full, and for what
  // was refused because it is not a request.
  std::function<void(const ServedCommand&)> on_served;
};

// One thread accepts clients, and each client is served by a thread of its own, so that a stalled
// client or a long query delays nobody else. Call Start() and Stop() from one thread; any thread
// may call the other functions.
class StandIn {
 public:
  explicit StandIn(StandInOptions options);
  ~StandIn();
  StandIn(const StandIn&) = delete;
  StandIn& operator=(const StandIn&) = delete;

  // Prepares the data folder and listens. Call it once. Returns false and sets `error` if that
  // fails.
  [[nodiscard]] bool Start(std::string* error = nullptr);
  // Closes every connection, cancels and rolls back unfinished work, waits for all threads, and
  // releases the data folder.
  void Stop();

  [[nodiscard]] std::uint16_t Port() const { return frames_.Port(); }
  // Returns 0 if HTTP is off.
  [[nodiscard]] std::uint16_t HttpPort() const { return http_.Port(); }
  // Returns the last 1000 requests and refusals, oldest first.
  [[nodiscard]] std::vector<ServedCommand> Served() const;

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
  void Refuse(std::unique_ptr<ClientStream> stream, Speech speech);
  void Serve(Client& client);
  void JoinFinished();
  void Remember(ServedCommand served);

  const StandInOptions options_;
  DataFolder data_;
  ServerLog log_;
  Services services_;
  SessionRules rules_;

  boost::asio::io_context context_{1};
  Refusals refusals_{context_};
  Listener frames_{context_, options_.io_timeout, AdmitWho(Speech::kFrames)};
  Listener http_{context_, options_.io_timeout, AdmitWho(Speech::kHttp)};
  std::thread accepting_;
  // Owned by the accepting thread until it has ended.
  std::list<Client> clients_;

  mutable std::mutex served_mutex_;
  std::deque<ServedCommand> served_;
};

}  // namespace qv::standin

namespace qv {

using standin::RequestLog;
using standin::RequestLogOptions;
using standin::ServedCommand;
using standin::StandIn;
using standin::StandInOptions;

}  // namespace qv
