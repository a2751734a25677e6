// Many calls over one socket: sends requests while replies to earlier ones are on their way.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>

#include "MessageExchange.h"
#include "qvnetcall/transport/ManyCalls.h"

namespace qv::wire {

// The transport and the calls belong to the caller and must outlive this object.
class ManyExchange {
 public:
  ManyExchange(Transport& transport, Peer peer, int count, const NetworkCalls& calls,
               ThreadCall& thread);

  // Returns what NetworkTransMany returns. Throws std::exception if memory or threads run out;
  // Interrupted() ends the calls then.
  [[nodiscard]] int Run();
  [[nodiscard]] int Interrupted() noexcept;

 private:
  // Why no more calls are made over this connection.
  enum class End { kNone, kOldServer, kNotConnected, kLost, kRefused, kBadReply };

  // A request that was queued, as positions among the bytes of this exchange.
  struct Waiting {
    std::uint64_t begin;
    std::uint64_t end;
    std::uint32_t number;
  };

  [[nodiscard]] End Connect();
  [[nodiscard]] End Open();
  // Sends requests as long as there is room for them. If a kept connection fails before it has
  // taken a byte, a new one is tried once.
  [[nodiscard]] End SendMore();
  void QueueMore();
  // Sets `frame_` or `refusal_` for the next call.
  void Prepare();
  [[nodiscard]] bool HasRoomForFrame() const;
  void QueueFrame();
  // Receives the reply of the first call without a result.
  [[nodiscard]] End TakeReply();
  [[nodiscard]] FrameStatus ReceiveInto(CMsgContent* reply);
  [[nodiscard]] End Lost();

  [[nodiscard]] int Conclude(End end);
  [[nodiscard]] bool IsSent() const;
  // Gives the first call without a result this one.
  void Finish(int result, const CallError& error);
  void Report(int result);
  // Ends the calls that have no result, in their order: all of them, or those that were sent.
  enum class Which { kAll, kSent };
  void EndRest(Which which, const CallError& error);

  Transport& transport_;
  const Peer peer_;
  const int count_;
  const NetworkCalls calls_;
  ThreadCall& thread_;
  const ProgressListener listener_;
  const CancelQuestion cancel_;
  const SocketSettings settings_;
  const std::uint64_t generation_;
  std::unique_ptr<SocketConnection> connection_;
  bool is_kept_ = false;
  int done_ = 0;                       // calls that have a result
  std::deque<Waiting> waiting_;        // for the calls after those
  std::optional<RequestFrame> frame_;  // of the next call, while it has no room
  std::optional<CallError> refusal_;   // why the next call cannot be made
  CallError error_;
};

}  // namespace qv::wire
