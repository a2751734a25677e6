// Many calls over one connection of the socket transport.
#include "qvnetcall/transport/ManyCalls.h"

#include <functional>
#include <optional>
#include <thread>
#include <vector>

#include "BothTransports.h"

namespace qv::wire {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr unsigned int kBlock = 200'000;

// Receives the next request, and says hello to a client that does.
bool ReceiveNext(ServerSide& side, WholeFrame& request) {
  constexpr FrameKind kKinds[] = {FrameKind::kRequest, FrameKind::kNumberedRequest,
                                  FrameKind::kHello3};
  request = ReceiveWhole(side, kKinds);
  if (request.kind == FrameKind::kHello3 && SendHello(side, FrameKind::kHello3)) {
    request = ReceiveWhole(side, kRequestsOfVersion3);
  }
  return request.status == FrameStatus::kDone;
}

std::string ReplyBytes(std::uint32_t number, const std::string& payload, const Reason& reason = {},
                       FrameKind kind = FrameKind::kNumberedReply) {
  const auto encoded = EncodeReason(reason);
  MemoryStream stream;
  static_cast<void>(SendWhole(stream, kind,
                              {.token = {encoded.begin(), encoded.end()},
                               .payload = payload,
                               .number = kind == FrameKind::kNumberedReply ? number : 0}));
  return stream.written;
}

bool Echo(ServerSide& side, const WholeFrame& request) {
  return side.Write({BytesOfText(ReplyBytes(request.number, request.payload))});
}

// Echoes numbered requests until the client disconnects.
void EchoNumbered(ServerSide& side) {
  WholeFrame request;
  while (ReceiveNext(side, request)) {
    if (!Echo(side, request)) return;
  }
}

// Calls whose requests have one text each. One request and one reply serve all of them.
class Series {
 public:
  explicit Series(std::vector<std::string> texts) : texts_(std::move(texts)) {}
  Series(int count, std::size_t length) {
    for (int i = 0; i < count; ++i) {
      texts_.push_back(std::to_string(i) + ":" + std::string(length, 'x'));
    }
  }

  int Run(std::uint32_t port) {
    const NetworkCalls calls{this, [](int i, void* self) { return Of(self).Request(i); },
                             [](int i, void* self) { return Of(self).Reply(i); },
                             [](int i, int result, void* self) { Of(self).Finished(i, result); }};
    return NetworkTransMany("127.0.0.1", port, static_cast<int>(texts_.size()), &calls);
  }
  // Whether each call that was made has its own text as the answer.
  [[nodiscard]] bool IsEchoed() const { return answers == texts_; }

  std::vector<int> results;
  std::vector<std::string> answers;
  std::vector<int> errors;
  std::string last_text;
  std::function<void(int)> on_finished = [](int) {};
  std::function<void(int, TransportCall&)> on_request = [](int, TransportCall&) {};
  std::optional<int> without_request;
  unsigned int reply_size = kBlock;

 private:
  static Series& Of(void* self) { return *static_cast<Series*>(self); }
  CMsgContent* Request(int i) {
    EXPECT_EQ(i, asked_++);
    if (without_request == i) return nullptr;
    TransportCall& call = request_.emplace(4096U, 4096U);
    call.request.AddString(texts_[static_cast<std::size_t>(i)].c_str(), nullptr);
    on_request(i, call);
    return &call.request;
  }
  CMsgContent* Reply(int i) {
    EXPECT_EQ(i, static_cast<int>(results.size()));
    return &reply_.emplace(4096U, reply_size).reply;
  }
  void Finished(int i, int result) {
    EXPECT_EQ(i, static_cast<int>(results.size()));
    results.push_back(result);
    answers.push_back(result == 0 ? reply_->Answer() : "");
    char text[1100];
    errors.push_back(NetworkTransLastError(text, sizeof text));
    last_text = text;
    on_finished(i);
  }

  std::vector<std::string> texts_;
  int asked_ = 0;
  std::optional<TransportCall> request_;
  std::optional<TransportCall> reply_;
};

class ManyCalls : public testing::Test {
 protected:
  ManyCalls() { NetworkBadState(0); }
  ~ManyCalls() override {
    NetworkTransSetCancel(nullptr, nullptr);
    NetworkTransSetProgress(nullptr, nullptr);
    SetSocketParameter("io_timeout_ms", "30000");
    SetSocketParameter("connect_timeout_ms", "5000");
    NetworkTransFini();
    NetworkBadState(0);
  }
};

TEST_F(ManyCalls, AreAnsweredInOrderOverOneKeptConnection) {
  std::atomic<std::uint32_t> last{0};
  std::atomic<int> plain{0};
  ScriptedServer server([&](ServerSide& side) {
    WholeFrame request;
    while (ReceiveNext(side, request)) {
      const bool is_numbered = request.kind == FrameKind::kNumberedRequest;
      plain += is_numbered ? 0 : 1;
      if (is_numbered && request.number != ++last) return;
      if (!(is_numbered ? Echo(side, request) : side.Reply(request.payload))) return;
    }
  });
  for (const int count : {0, 1, 300, 2000}) {
    Series series(count, 10);
    EXPECT_EQ(series.Run(server.Port()), count);
    EXPECT_THAT(series.results, Each(0));
    EXPECT_TRUE(series.IsEchoed());
    TransportCall call;
    call.request.AddString("one more", nullptr);
    EXPECT_EQ(NetworkTransMsg("127.0.0.1", server.Port(), call.request, call.reply), 0);
    EXPECT_EQ(call.Answer(), "one more");
    NetworkTransFini();
    last = 0;
  }
  EXPECT_EQ(plain, 4);
  Series first(5, 0);
  Series second(5, 0);
  const int before = server.Connections();
  EXPECT_EQ(first.Run(server.Port()) + second.Run(server.Port()), 10);
  EXPECT_EQ(last, 10U) << "numbers go on";
  EXPECT_EQ(server.Connections(), before + 1);
}

TEST_F(ManyCalls, LargeRequestsAndRepliesDoNotWaitForEachOther) {
  // The server receives nothing while it sends, and more is on the way than systems hold.
  ScriptedServer server([](ServerSide& side) {
    WholeFrame request;
    while (ReceiveNext(side, request)) {
      const std::string payload = request.payload + Field(std::string(900'000, 'r'));
      if (!side.Write({BytesOfText(ReplyBytes(request.number, payload))})) return;
    }
  });
  Series mixed(40, 60'000);
  mixed.reply_size = 1U << 20;
  EXPECT_EQ(mixed.Run(server.Port()), 40);
  EXPECT_TRUE(mixed.IsEchoed());
  ScriptedServer echo(EchoNumbered);
  Series large(4, 600'000);
  large.reply_size = 1U << 20;
  EXPECT_EQ(large.Run(echo.Port()), 4);
  EXPECT_TRUE(large.IsEchoed());
}

TEST_F(ManyCalls, KeepToTheWindow) {
  for (const auto& [length, at_once] : {std::pair(1000, 190), {100'000, 2}, {300'000, 1}}) {
    std::atomic<int> received{0};
    ScriptedServer server([&](ServerSide& side) {
      WholeFrame request;
      while (ReceiveNext(side, request)) {
        ++received;
      }
    });
    SetSocketParameter("io_timeout_ms", "200");
    Series series(300, static_cast<std::size_t>(length));
    EXPECT_EQ(series.Run(server.Port()), 300);
    const auto sent = std::ranges::count(series.results, -2);
    EXPECT_EQ(sent, received);
    EXPECT_GE(sent, at_once);
    EXPECT_LE(sent, at_once * 5 / 4);
    EXPECT_TRUE(std::ranges::is_sorted(series.results)) << "-2 before -1";
    EXPECT_THAT(series.errors, Each(error::kNoProgress));
  }
}

TEST_F(ManyCalls, AReplyThatIsNotTheNextOneIsMalformed) {
  const auto file = [](std::uint32_t number) {
    const TempFolder folder;
    auto opened = OutgoingFile::Open(folder.Write("source", "bytes"));
    MemoryStream stream;
    static_cast<void>(SendWhole(stream, FrameKind::kNumberedReply, {.number = number}, &*opened));
    return stream.written;
  };
  // What comes in place of the second reply.
  const std::function<std::string(std::uint32_t)> cases[] = {
      [](std::uint32_t number) { return ReplyBytes(number - 1, ""); },  // twice
      [](std::uint32_t number) { return ReplyBytes(number + 1, ""); },  // one is missing
      [](std::uint32_t number) { return ReplyBytes(number + 0x10000, ""); },
      [](std::uint32_t number) { return ReplyBytes(0 * number, ""); },
      [](std::uint32_t n) { return ReplyBytes(n, "", {}, FrameKind::kReplyWithReason); },
      [](std::uint32_t n) { return ReplyBytes(n, "", {}, FrameKind::kReply); },
      [](std::uint32_t) { return HeaderOnly(FrameKind::kHello3, 0); },
      [](std::uint32_t number) { return Damaged(ReplyBytes(number, "payload"), 310); },
      [](std::uint32_t number) { return ReplyBytes(number, std::string(kBlock, 'x')); },
      file};
  for (const auto& bytes : cases) {
    SCOPED_TRACE(&bytes - cases);
    ScriptedServer server([&](ServerSide& side) {
      WholeFrame request;
      if (!ReceiveNext(side, request) || !Echo(side, request)) return;
      if (!ReceiveNext(side, request)) return;
      side.Write({BytesOfText(bytes(request.number) + ReplyBytes(request.number + 1, ""))});
      side.WaitForEnd();
    });
    Series series(9, 60'000);
    const int dealt_with = series.Run(server.Port());
    ASSERT_GE(dealt_with, 3);
    EXPECT_LE(dealt_with, 6) << "the others were not sent";
    ASSERT_EQ(static_cast<int>(series.results.size()), dealt_with);
    EXPECT_EQ(series.results[0], 0);
    EXPECT_EQ(series.results[1], -3);
    EXPECT_EQ(series.errors[1], error::kBadReply);
    series.results.erase(series.results.begin(), series.results.begin() + 2);
    EXPECT_THAT(series.results, Each(-2));
    EXPECT_EQ(series.errors.back(), error::kConnectionLost);
  }
}

TEST_F(ManyCalls, ALostConnectionLeavesUnknownWhatWasSentAndNotDeliveredWhatWasNot) {
  const std::size_t whole = ReplyBytes(2, "payload").size();
  for (const std::size_t cut : {std::size_t{0}, std::size_t{1}, std::size_t{31}, std::size_t{32},
                                std::size_t{300}, whole - 1}) {
    SCOPED_TRACE(cut);
    ScriptedServer server([&](ServerSide& side) {
      WholeFrame request;
      if (!ReceiveNext(side, request) || !Echo(side, request)) return;
      if (!ReceiveNext(side, request)) return;
      side.Write({BytesOfText(ReplyBytes(request.number, "payload").substr(0, cut))});
    });
    Series series(20, 60'000);
    EXPECT_EQ(series.Run(server.Port()), 20);
    ASSERT_EQ(series.results.size(), 20U);
    EXPECT_EQ(series.results[0], 0);
    EXPECT_EQ(series.results[1], -2);
    EXPECT_EQ(series.results[19], -1);
    EXPECT_TRUE(std::is_sorted(series.results.begin() + 1, series.results.end()));
    EXPECT_LE(std::ranges::count(series.results, -2), 5);
    EXPECT_EQ(series.errors[19], error::kConnectionLost);
    EXPECT_EQ(server.Connections(), 1);
  }
}

TEST_F(ManyCalls, AnOlderServerIsAskedOnce) {
  const auto as_version_1 = [](ServerSide& side) {
    WholeFrame request;
    while (side.ReceiveAsOldServer(request) && side.Reply(request.payload)) {
    }
  };
  for (const ScriptedServer::Script& script :
       {ScriptedServer::Script(as_version_1), ScriptedServer::Script(ScriptedServer::Echo)}) {
    ScriptedServer server(script);
    for (int i = 0; i < 3; ++i) {
      Series series(3, 0);
      EXPECT_EQ(series.Run(server.Port()), 0);
      EXPECT_THAT(series.results, IsEmpty());
      EXPECT_EQ(server.Connections(), 1);
    }
    TransportCall call;
    EXPECT_EQ(NetworkTransMsg("127.0.0.1", server.Port(), call.request, call.reply), 0);
    const int before = server.Connections();
    NetworkTransFini();
    EXPECT_EQ(Series(1, 0).Run(server.Port()), 0);
    EXPECT_EQ(server.Connections(), before + 1) << "it may be another one by now";
  }
}

TEST_F(ManyCalls, WithoutAConnectionTheFirstIsNotDeliveredAndTheOthersAreNotBegun) {
  Series dead(5, 0);
  EXPECT_EQ(dead.Run(DeadPort()), 1);
  EXPECT_THAT(dead.results, ElementsAre(-1));
  EXPECT_THAT(dead.errors, ElementsAre(error::kCannotConnect));
  EXPECT_EQ(NetworkIsBadState(1), 1);
  NetworkBadState(0);
  ScriptedServer busy([](ServerSide& side) {
    if (ReceiveWhole(side, FrameKind::kHello3).status == FrameStatus::kDone) {
      static_cast<void>(SendBusy(side, {error::kBusy, "64 of 64 places are taken"}));
    }
  });
  Series refused(5, 0);
  EXPECT_EQ(refused.Run(busy.Port()), 1);
  EXPECT_THAT(refused.results, ElementsAre(-1));
  EXPECT_THAT(refused.errors, ElementsAre(error::kBusy));
  EXPECT_EQ(NetworkIsBadState(1), 0);
}

TEST_F(ManyCalls, EndAtAWrongTokenAndReplaceAConnectionThatEnded) {
  ScriptedServer server([](ServerSide& side) {
    WholeFrame request;
    if (!ReceiveNext(side, request) || !Echo(side, request)) return;
    if (!ReceiveNext(side, request)) return;
    side.Write({BytesOfText(
        ReplyBytes(request.number, Field("FAILURE"), {error::kBadToken, "wrong token"}))});
  });
  for (int count = 1; count <= 2; ++count) {
    Series series(4, 0);
    EXPECT_EQ(series.Run(server.Port()), 2);
    EXPECT_THAT(series.results, ElementsAre(0, 0));
    EXPECT_THAT(series.errors, ElementsAre(0, error::kBadToken));
    EXPECT_EQ(series.last_text, "wrong token");
    EXPECT_EQ(server.Connections(), count);
  }
  ScriptedServer once([](ServerSide& side) {
    WholeFrame request;
    if (ReceiveNext(side, request)) Echo(side, request);
  });
  for (int count = 1; count <= 3; ++count) {
    Series series({"one"});
    EXPECT_EQ(series.Run(once.Port()), 1);
    EXPECT_THAT(series.results, ElementsAre(0));
    once.WaitForFinished(count);
  }
}

TEST_F(ManyCalls, WhatCannotBeSentTogetherIsNotDeliveredAndTheOthersAre) {
  const TempFolder folder;
  ScriptedServer server(EchoNumbered);
  Series series(6, 10);
  series.without_request = 0;
  series.on_request = [&](int i, TransportCall& call) {
    if (i == 2) call.request.SetFileName(folder.Write("file", "x").c_str(), 1);
    if (i == 3) call.request.SetCommand(0xFFFFFFFF);
  };
  EXPECT_EQ(series.Run(server.Port()), 6);
  EXPECT_THAT(series.results, ElementsAre(-1, 0, -1, -1, 0, 0));
  EXPECT_THAT(series.errors, ElementsAre(error::kLocal, 0, error::kLocal, error::kLocal, 0, 0));
  Series without_reply(3, 0);
  without_reply.reply_size = 100;
  EXPECT_EQ(without_reply.Run(server.Port()), 3);
  EXPECT_THAT(without_reply.results, ElementsAre(-3, -2, -2));
}

TEST_F(ManyCalls, ProgressIsReportedAndOtherCallsMayBeMadeInBetween) {
  ScriptedServer server([](ServerSide& side) {
    WholeFrame request;
    while (ReceiveNext(side, request)) {
      static_cast<void>(SendProgress(side, std::chrono::milliseconds(1000)));
      if (!Echo(side, request)) return;
    }
  });
  ScriptedServer other(ScriptedServer::Echo);
  int at_work = 0;
  NetworkTransSetProgress(
      [](std::uint64_t, std::uint64_t, int kind, void* context) {
        *static_cast<int*>(context) += kind == NetworkProgress_Working ? 1 : 0;
      },
      &at_work);
  Series series(5, 10);
  series.on_finished = [&](int) {
    TransportCall call;
    EXPECT_EQ(NetworkTransMsg("127.0.0.1", DeadPort(), call.request, call.reply), -1);
    EXPECT_EQ(NetworkTransMsg("127.0.0.1", other.Port(), call.request, call.reply), 0);
  };
  EXPECT_EQ(series.Run(server.Port()), 5);
  EXPECT_THAT(series.results, Each(0));
  EXPECT_THAT(series.errors, Each(0));
  EXPECT_EQ(at_work, 5);
}

TEST_F(ManyCalls, CancellingEndsAllThatHaveNoReply) {
  TestCancel cancel;
  std::atomic<bool> has_first{false};
  ScriptedServer server([&](ServerSide& side) {
    WholeFrame request;
    if (!ReceiveNext(side, request) || !Echo(side, request)) return;
    if (!ReceiveNext(side, request)) return;
    has_first.wait(false);
    cancel.Set();
    while (ReceiveNext(side, request)) {
    }
  });
  NetworkTransSetCancel(TestCancel::Ask, &cancel);
  Series series(20, 60'000);
  series.on_finished = [&](int) {
    has_first = true;
    has_first.notify_all();
  };
  EXPECT_EQ(series.Run(server.Port()), 20);
  EXPECT_LT(cancel.Since(), std::chrono::milliseconds(500));
  EXPECT_EQ(series.results.front(), 0);
  EXPECT_EQ(series.results[1], -2);
  EXPECT_EQ(series.results.back(), -1);
  EXPECT_EQ(series.errors.back(), error::kCancelled);
  server.WaitForFinished(1);
  Series none(3, 0);
  EXPECT_EQ(none.Run(server.Port()), 3);
  EXPECT_THAT(none.results, Each(-1));
  EXPECT_EQ(server.Connections(), 1);
}

TEST_F(ManyCalls, SeveralThreadsMakeThemAtOnce) {
  ScriptedServer server(EchoNumbered);
  std::vector<std::thread> threads;
  std::atomic<int> right{0};
  for (int i = 0; i < 6; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < 5; ++round) {
        Series series(50, 100);
        if (series.Run(server.Port()) == 50 && series.IsEchoed()) ++right;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(right, 30);
  EXPECT_LE(server.Connections(), 6);
}

}  // namespace
}  // namespace qv::wire
