// What tests need to run the same cases over both transports.
#pragma once

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <string>

#include "TransportCall.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/transport/CallControl.h"
#include "qvnetcall/transport/HttpParameters.h"
#include "qvnetcall/transport/NetworkProgress.h"
#include "qvnetcall/transport/QvHttpClient.h"
#include "qvnetcall/transport/QvNetClient4.h"
#include "tests/support/HttpSide.h"

namespace qv::wire {

struct Channel {
  const char* name;
  int (*send)(TransportCall& call, std::uint32_t port);
  int (*last_error)(char* text, int size);
  void (*set_cancel)(int (*)(void*), void*);
  void (*set_progress)(NetworkProgress, void*);
  void (*set_parameter)(const char* name, const char* value);
  // Receives a request; a file goes to `path`.
  bool (*receive)(ServerSide& side, WholeFrame& request, const std::string& path);
  // Makes frames an answer.
  std::string (*answer)(const std::string& frames);
  // Refuses a client that has not sent a request yet.
  void (*say_busy)(ServerSide& side);
  // Whether answers carry a login token.
  bool gives_tokens;
};

inline void SetSocketParameter(const char* name, const char* value) {
  TransportCall call;
  call.request.SetCommand(0xFFFFFFFE);
  call.request.AddString(name, nullptr);
  call.request.AddString(value, nullptr);
  EXPECT_EQ(NetworkTransMsg("", 0, call.request, call.reply), 0);
}

inline void SaySocketBusy(ServerSide& side) {
  if (ReceiveWhole(side, FrameKind::kHello).status != FrameStatus::kDone) return;
  static_cast<void>(SendBusy(side, {error::kBusy, "64 of 64 places are taken"}));
}

inline void SayHttpBusy(ServerSide& side) {
  // The beginning of the head is enough to send an answer.
  std::array<unsigned char, 100> bytes{};
  if (side.Read(bytes)) {
    side.Write({BytesOfText(HttpAnswer("", "Qv-Busy: 1\r\n", "503 Service Unavailable"))});
  }
}

inline const Channel kChannels[] = {
    {"socket",
     [](TransportCall& call, std::uint32_t port) {
       return NetworkTransMsg("127.0.0.1", port, call.request, call.reply);
     },
     NetworkTransLastError, NetworkTransSetCancel, NetworkTransSetProgress, SetSocketParameter,
     [](ServerSide& side, WholeFrame& request, const std::string& path) {
       return side.Receive(request, path);
     },
     [](const std::string& frames) { return frames; }, SaySocketBusy, false},
    {"http",
     [](TransportCall& call, std::uint32_t port) {
       return HttpworkTransMsg("127.0.0.1", port, call.request, call.reply, 0);
     },
     HttpworkTransLastError, HttpworkTransSetCancel, HttpworkTransSetProgress,
     [](const char* name, const char* value) { EXPECT_EQ(HttpworkSetParameter(name, value), 1); },
     [](ServerSide& side, WholeFrame& request, const std::string& path) {
       HttpRequestSeen seen;
       const bool is_whole = ReceiveHttp(side, seen, path);
       request = seen.frame;
       return is_whole;
     },
     [](const std::string& frames) { return HttpAnswer(frames, "Qv-Login-Token: t\r\n"); },
     SayHttpBusy, true},
};

inline void PrintTo(const Channel& channel, std::ostream* out) { *out << channel.name; }

inline std::string PlainReply(const std::string& payload = "", OutgoingFile* file = nullptr) {
  MemoryStream stream;
  static_cast<void>(SendWhole(stream, FrameKind::kReply, {.payload = payload}, file));
  return stream.written;
}

class BothTransports : public testing::TestWithParam<Channel> {
 protected:
  ~BothTransports() override {
    GetParam().set_cancel(nullptr, nullptr);
    GetParam().set_progress(nullptr, nullptr);
    GetParam().set_parameter("connect_timeout_ms", "5000");
    GetParam().set_parameter("io_timeout_ms", "30000");
    GetParam().set_parameter("token", "");
    NetworkTransFini();
    HttpworkTransFini();
    NetworkBadState(0);
  }

  int Send(TransportCall& call, std::uint32_t port) const { return GetParam().send(call, port); }
  bool Receive(ServerSide& side, WholeFrame& request, const std::string& path = "") const {
    return GetParam().receive(side, request, path);
  }
  bool Receive(ServerSide& side, const std::string& path = "") const {
    WholeFrame request;
    return Receive(side, request, path);
  }
  // Answers one request with its own payload.
  bool Echo(ServerSide& side) const {
    WholeFrame request;
    return Receive(side, request) && Answer(side, PlainReply(request.payload));
  }
  bool Answer(ServerSide& side, const std::string& frames) const {
    return side.Write({BytesOfText(GetParam().answer(frames))});
  }
  // Answers everything.
  [[nodiscard]] ScriptedServer::Script Answering(const std::string& frames) const {
    return [this, frames](ServerSide& side) {
      while (Receive(side, (folder_.Path() / "of the request").string()) && Answer(side, frames)) {
      }
    };
  }
  [[nodiscard]] int ErrorClass() const { return GetParam().last_error(nullptr, 0); }
  [[nodiscard]] std::string ErrorText() const {
    char text[1100];
    GetParam().last_error(text, sizeof text);
    return text;
  }

  [[nodiscard]] std::pair<int, std::string> Error() const { return {ErrorClass(), ErrorText()}; }

  TempFolder folder_;
};

// A reply that carries a reason.
inline std::string ReplyWithReason(const Reason& reason) {
  const auto encoded = EncodeReason(reason);
  MemoryStream stream;
  static_cast<void>(
      SendWhole(stream, FrameKind::kReplyWithReason,
                {.token = {encoded.begin(), encoded.end()}, .payload = Field("FAILURE")}));
  return stream.written;
}

// A cancel that tells when it was set.
class TestCancel {
 public:
  using Clock = std::chrono::steady_clock;

  void Set() {
    since_ = Clock::now();
    is_set_ = true;
  }
  [[nodiscard]] bool IsSet() const { return is_set_; }
  [[nodiscard]] Clock::duration Since() const { return Clock::now() - since_.load(); }

  static int Ask(void* self) { return static_cast<TestCancel*>(self)->is_set_ ? 1 : 0; }

 private:
  std::atomic<Clock::time_point> since_{};
  std::atomic<bool> is_set_{false};
};

}  // namespace qv::wire
