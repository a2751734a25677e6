// Clients for whom the server has no place.
#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <string>

#include "ClientStream.h"

namespace qv::standin {

// One client that is being refused: it gets an answer if it asks in a way that shows that it
// understands one, and is disconnected otherwise. No request is read. Nothing here waits.
class Refusal {
 public:
  // `text` says why. HTTP is understood only if `takes_http`.
  Refusal(std::unique_ptr<ClientStream> stream, std::string text, bool takes_http);

  // Does what can be done now. Returns false when the connection is to be closed.
  [[nodiscard]] bool GoOn();

 private:
  using Clock = std::chrono::steady_clock;
  enum class Step { kListens, kAnswers, kLingers };

  [[nodiscard]] bool Listen();
  [[nodiscard]] bool Answer();
  // The answer could be lost if the connection was closed before the client has sent everything.
  [[nodiscard]] bool Linger();
  // Return whether the client is to be answered, sets the answer, or nothing as long as that is
  // unknown.
  [[nodiscard]] std::optional<bool> Understand();
  [[nodiscard]] std::optional<bool> UnderstandFrame();
  [[nodiscard]] std::optional<bool> UnderstandHttp();

  const std::unique_ptr<ClientStream> stream_;
  const std::string text_;
  const bool takes_http_;
  Clock::time_point deadline_;
  Step step_ = Step::kListens;
  std::string heard_;
  std::string answer_;
};

// All clients that are being refused, without a thread for any of them. Used by the thread that
// runs the context.
class Refusals {
 public:
  // More clients than this are disconnected at once, the oldest first.
  static constexpr std::size_t kMost = 512;

  // The context outlives the object.
  explicit Refusals(boost::asio::io_context& context) : timer_(context) {}

  void Add(std::unique_ptr<ClientStream> stream, std::string text, bool takes_http);
  // Disconnects all of them.
  void Close();

 private:
  void GoOnLater();

  boost::asio::steady_timer timer_;
  bool is_waiting_ = false;
  std::list<Refusal> refusals_;
};

}  // namespace qv::standin
