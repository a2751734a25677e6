// What holds for both transports alike: whole requests, files, kept connections.
#include <thread>
#include <vector>

#include "BothTransports.h"
#include "base/platform/Folder.h"
#include "base/platform/Platform.h"

namespace qv::wire {
namespace {

TEST_P(BothTransports, SendTheWholeRequestWithTokenNameAndSpilledPayload) {
  WholeFrame seen;
  ScriptedServer server([&](ServerSide& side) {
    if (Receive(side, seen)) Answer(side, PlainReply());
  });
  GetParam().set_parameter("token", "secret");
  const std::string big(300'000, 'b');
  TransportCall call(1024);
  call.request.SetName("a.dwg");
  call.request.AddString("first", nullptr);
  EXPECT_EQ(call.request.AddString(big.c_str(), nullptr), 0);
  EXPECT_EQ(Send(call, server.Port()), 0);
  EXPECT_EQ(call.Answer(), "");
  server.WaitForFinished(1);
  EXPECT_EQ(seen.token, "secret");
  EXPECT_EQ(seen.block.substr(0, 4) + seen.block.substr(13, 5), std::string("\xC8\0\0\0a.dwg", 9));
  EXPECT_EQ(seen.payload, Field("first") + Field(big));
}

TEST_P(BothTransports, CarryFilesInBothDirections) {
  using Done = std::vector<std::pair<int, std::uint64_t>>;
  const std::string stored = folder_.At("stored");
  for (const std::string& bytes : {LongBytes(), std::string(65536, 'c'), std::string()}) {
    ScriptedServer server([&](ServerSide& side) {
      if (!Receive(side, stored)) return;
      auto file = OutgoingFile::Open(stored);
      Answer(side, PlainReply(Field("SUCCESS"), &*file));
    });
    Done done;
    GetParam().set_progress(
        [](std::uint64_t now, std::uint64_t total, int kind, void* context) {
          if (now == total && total != 0) static_cast<Done*>(context)->emplace_back(kind, total);
        },
        &done);
    TransportCall call;
    call.request.SetFileName(folder_.Write("sent", bytes).c_str(), 1);
    const std::string received = folder_.Write("received", "an older file");
    call.reply.SetFileName(received.c_str(), 1);
    EXPECT_EQ(Send(call, server.Port()), 0);
    EXPECT_EQ(call.Answer(), "SUCCESS");
    EXPECT_TRUE(BytesOf(received) == bytes);
    EXPECT_TRUE(platform::IsPrivate(platform::FilePtr(std::fopen(received.c_str(), "rb")).get()));
    Done expected{{1, bytes.size()}, {0, 269}, {0, 269 + 12}, {1, bytes.size()}};
    std::erase(expected, std::pair<int, std::uint64_t>(1, 0));
    EXPECT_EQ(done, expected);
  }
}

TEST_P(BothTransports, KeepAConnectionUntilTheyAreStopped) {
  ScriptedServer server([&](ServerSide& side) {
    while (Echo(side)) {
    }
  });
  const auto send = [&](const char* text) {
    TransportCall call;
    call.request.AddString(text, nullptr);
    EXPECT_EQ(Send(call, server.Port()), 0);
    EXPECT_EQ(call.Answer(), text);
  };
  for (const char* const text : {"one", "two", "three"}) send(text);
  EXPECT_EQ(server.Connections(), 1);
  NetworkTransFini();
  HttpworkTransFini();
  server.WaitForFinished(1);
  send("over a new connection");
}

// Eight threads call fifty times each, while they change a parameter.
TEST_P(BothTransports, ServeManyThreadsAtOnce) {
  ScriptedServer server([&](ServerSide& side) {
    while (Echo(side)) {
    }
  });
  std::atomic<int> right{0};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 8; ++thread) {
    threads.emplace_back([&, thread] {
      for (int count = 0; count < 50; ++count) {
        const std::string text = std::to_string(thread) + ":" + std::to_string(count);
        if (count % 10 == 0) GetParam().set_parameter("token", text.c_str());
        TransportCall call;
        call.request.AddString(text.c_str(), nullptr);
        char token[256];
        const bool is_done = Send(call, server.Port()) == 0 && call.Answer() == text;
        if (is_done && (!GetParam().gives_tokens || HttpworkLoginToken(token) == 1)) ++right;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(right, 400);
  EXPECT_LE(server.Connections(), 8);
}

TEST_P(BothTransports, ReplaceAKeptConnectionThatIsNoLongerInOrder) {
  // One server disconnects after an answer, others send an unexpected byte: after it, or with it.
  for (const auto& [with_it, after_it] : {std::pair("", ""), {"", "x"}, {"x", ""}}) {
    const bool stays = *with_it != '\0';  // until the client disconnects
    ScriptedServer server([this, stays, with = with_it, after = after_it](ServerSide& side) {
      WholeFrame request;
      if (!Receive(side, request)) return;
      side.Write({BytesOfText(GetParam().answer(PlainReply(request.payload)) + with)});
      side.Write({BytesOfText(after)});
      std::array<unsigned char, 1> more{};
      if (stays && side.Read(more)) ADD_FAILURE() << "the connection was used again";
    });
    for (int count = 1; count <= 3; ++count) {
      TransportCall call;
      call.request.AddString("again", nullptr);
      ASSERT_EQ(Send(call, server.Port()), 0);
      ASSERT_EQ(call.Answer(), "again");
      server.WaitForFinished(stays ? count - 1 : count);
    }
  }
}

TEST_P(BothTransports, SendNothingWithoutBlocksOrTheFile) {
  ScriptedServer server([&](ServerSide& side) { Echo(side); });
  for (const auto& [request, reply] : {std::pair(100U, 4096U), {4096U, 100U}}) {
    TransportCall unbound(request, reply);
    EXPECT_EQ(Send(unbound, server.Port()), -1);
  }
  TransportCall without_file;
  without_file.request.SetFileName(folder_.At("missing").c_str(), 1);
  EXPECT_EQ(Send(without_file, server.Port()), -1);
  EXPECT_EQ(server.Connections(), 0);
  EXPECT_EQ(NetworkIsBadState(1), 0);
}

}  // namespace
}  // namespace qv::wire
