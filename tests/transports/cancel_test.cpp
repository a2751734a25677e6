#include <filesystem>
#include <random>

#include "BothTransports.h"

namespace qv::wire {
namespace {

// Generous, because the tests may run on a busy machine.
constexpr std::chrono::milliseconds kSoon{500};

class CancelledCall : public BothTransports {
 protected:
  CancelledCall() { GetParam().set_cancel(TestCancel::Ask, &cancel_); }

  // Makes a call that is cancelled on the way.
  void ExpectCancelled(TransportCall& call, std::uint32_t port, int result) {
    EXPECT_EQ(Send(call, port), result);
    EXPECT_TRUE(cancel_.IsSet());
    EXPECT_LT(cancel_.Since(), kSoon);
    EXPECT_THAT(Error(), testing::Pair(error::kCancelled, "cancelled"));
    EXPECT_EQ(call.Answer(), "");
    EXPECT_EQ(NetworkIsBadState(1), 0) << "the network is not to blame";
  }

  TestCancel cancel_;
};

TEST_P(CancelledCall, ReachesNobodyIfItIsCancelledBefore) {
  ScriptedServer server(Answering(PlainReply()));
  TransportCall call;
  cancel_.Set();
  ExpectCancelled(call, server.Port(), -1);
  EXPECT_EQ(server.Connections(), 0);
}

// Cancels when it has been asked a few times, as happens while a call waits.
TEST_P(CancelledCall, EndsWhileItConnects) {
  const FullListener full;
  struct Asked {
    TestCancel& cancel;
    int left;
  } asked{cancel_, 5};
  GetParam().set_cancel(
      [](void* context) {
        auto& questions = *static_cast<Asked*>(context);
        if (--questions.left == 0) questions.cancel.Set();
        return TestCancel::Ask(&questions.cancel);
      },
      &asked);
  TransportCall call;
  ExpectCancelled(call, full.Port(), -1);
}

TEST_P(CancelledCall, EndsWhileItSends) {
  // Says hello, and takes the beginning of the request.
  ScriptedServer server([&](ServerSide& side) {
    std::array<unsigned char, kFrameHeaderSize> bytes{};
    if (!side.Read(bytes)) return;
    if (bytes[6] == 2 && !(SendHello(side) && side.Read(bytes))) return;
    cancel_.Set();
    side.WaitForEnd();
  });
  TransportCall call;
  call.request.SetFileName(folder_.Write("big", std::string(30'000'000, 'u')).c_str(), 1);
  ExpectCancelled(call, server.Port(), -2);
}

TEST_P(CancelledCall, EndsWhileItWaitsAndItsConnectionIsNotUsedAgain) {
  std::atomic<bool> is_first{true};
  ScriptedServer server([&](ServerSide& side) {
    for (; Receive(side); is_first = false) {
      if (!is_first && Answer(side, PlainReply(Field("mine")))) continue;
      cancel_.Set();
      Receive(side);  // until the client disconnects
      // Would reach the next call if that had the same connection.
      Answer(side, PlainReply(Field("of another")));
    }
  });
  TransportCall call;
  ExpectCancelled(call, server.Port(), -2);
  server.WaitForFinished(1);
  is_first = false;
  GetParam().set_cancel(nullptr, nullptr);
  TransportCall next;
  EXPECT_EQ(Send(next, server.Port()), 0);
  EXPECT_EQ(next.Answer(), "mine");
  EXPECT_EQ(ErrorClass(), error::kNone);
  EXPECT_EQ(server.Connections(), 2);
}

TEST_P(CancelledCall, EndsWhileAFileArrivesAndLeavesNothingOfIt) {
  auto file = OutgoingFile::Open(folder_.Write("source", LongBytes()));
  ScriptedServer server(Answering(PlainReply(Field("SUCCESS"), &*file)));
  GetParam().set_progress(
      [](std::uint64_t, std::uint64_t, int kind, void* context) {
        if (kind == NetworkProgress_File) static_cast<TestCancel*>(context)->Set();
      },
      &cancel_);
  const TempFolder target;
  TransportCall call;
  call.reply.SetFileName((target.Path() / "received").string().c_str(), 1);
  ExpectCancelled(call, server.Port(), -2);
  EXPECT_TRUE(std::filesystem::is_empty(target.Path()));
}

TEST_P(CancelledCall, IsNotDisturbedAfterItHasReturned) {
  ScriptedServer server(Answering(PlainReply(Field("done"))));
  for (int count = 0; count < 2; ++count) {
    TransportCall call;
    EXPECT_EQ(Send(call, server.Port()), 0);
    EXPECT_EQ(call.Answer(), "done");
    cancel_.Set();
    EXPECT_EQ(ErrorClass(), error::kNone);
    GetParam().set_cancel(nullptr, nullptr);
  }
  EXPECT_EQ(server.Connections(), 1);
}

// Ten thousand calls, each cancelled by another thread at some moment from before the call until
// after it. Whatever comes first, a call is either done or cancelled, and never has another's
// reply.
TEST_P(CancelledCall, RacesWithItsReply) {
  constexpr int kRounds = 20;
  constexpr int kCalls = 500;
  std::atomic<int> current{-1};
  std::atomic<bool> is_cancelled{false};
  std::atomic<bool> is_over{false};
  std::atomic<int> longest{400};  // of the waits before a cancel, in turns of a loop
  std::thread canceller([&] {
    std::minstd_rand random(1);
    for (int seen = -1; !is_over;) {
      if (current == seen) continue;
      seen = current;
      for (auto left = random() % static_cast<unsigned>(longest); left != 0; --left) {
        if (current != seen) break;
      }
      if (current == seen) is_cancelled = true;
    }
  });
  GetParam().set_cancel(
      [](void* context) { return *static_cast<std::atomic<bool>*>(context) ? 1 : 0; },
      &is_cancelled);
  int done = 0;
  int cancelled = 0;
  for (int round = 0; round < kRounds; ++round) {
    ScriptedServer server([&](ServerSide& side) {
      while (Echo(side)) {
      }
    });
    for (int count = 0; count < kCalls; ++count) {
      const std::string text = std::to_string(round) + ":" + std::to_string(count);
      TransportCall call(1024);
      call.request.AddString(text.c_str(), nullptr);
      is_cancelled = false;
      ++current;
      const int result = Send(call, server.Port());
      if (result == 0) {
        ++done;
        ASSERT_EQ(call.Answer(), text);
        longest = std::max(longest / 2, 1);
      } else {
        ++cancelled;
        ASSERT_TRUE(result == -1 || result == -2) << result;
        ASSERT_EQ(ErrorClass(), error::kCancelled) << ErrorText();
        longest = std::min(longest * 2, 10'000'000);
      }
    }
  }
  is_over = true;
  canceller.join();
  EXPECT_EQ(done + cancelled, kRounds * kCalls);
  EXPECT_GT(done, 0);
  EXPECT_GT(cancelled, 0);
}

INSTANTIATE_TEST_SUITE_P(Cancel, CancelledCall, testing::ValuesIn(kChannels));

}  // namespace
}  // namespace qv::wire
