#include <boost/asio/steady_timer.hpp>
#include <filesystem>
#include <thread>

#include "BothTransports.h"

namespace qv::wire {
namespace {

using testing::HasSubstr;
using testing::Pair;

TEST_P(BothTransports, GiveTheReasonOfTheServerInOneReplyAndNoneAfterTheNext) {
  const std::string with_reason = ReplyWithReason({error::kSyntax, "near \"form\": syntax error"});
  ScriptedServer server([&](ServerSide& side) {
    for (int count = 0; Receive(side); ++count) {
      Answer(side, count % 2 == 0 ? with_reason : PlainReply());
    }
  });
  TransportCall first;
  EXPECT_EQ(Send(first, server.Port()), 0);
  EXPECT_EQ(first.Answer(), "FAILURE");
  EXPECT_THAT(Error(), Pair(error::kSyntax, "near \"form\": syntax error"));
  char small[5] = "xxxx";
  EXPECT_EQ(GetParam().last_error(small, sizeof small), error::kSyntax);
  EXPECT_STREQ(small, "near");
  EXPECT_EQ(GetParam().last_error(small, 0), error::kSyntax);
  std::thread([&] { EXPECT_EQ(ErrorClass(), error::kNone) << "each thread has its own"; }).join();
  TransportCall second;
  EXPECT_EQ(Send(second, server.Port()), 0);
  EXPECT_THAT(Error(), Pair(error::kNone, ""));
  EXPECT_EQ(server.Connections(), 1);
}

TEST_P(BothTransports, DoNotUseAConnectionAgainAfterAWrongToken) {
  ScriptedServer server(Answering(ReplyWithReason({error::kBadToken, "wrong token"})));
  for (int count = 1; count <= 2; ++count) {
    TransportCall call;
    EXPECT_EQ(Send(call, server.Port()), 0);
    EXPECT_THAT(Error(), Pair(error::kBadToken, "wrong token"));
    EXPECT_EQ(server.Connections(), count);
  }
}

TEST_P(BothTransports, SayWhatIsWrongWithAReplyAndLeaveNothingOfIt) {
  const std::string file = ReplyWithFile();
  const std::string reason = ReplyWithReason({error::kBusy, "locked"});
  constexpr std::size_t kWhole = std::string::npos;
  const struct {
    std::string frames;
    std::size_t sent;  // how many bytes of the frames, before the server disconnects
    std::string path;  // where the reply's file goes
    int result;
    int error_class;
    const char* text;
  } cases[] = {
      {file, 0, "f", -2, error::kConnectionLost, "was lost"},
      {file, 20, "f", -2, error::kConnectionLost, "was lost"},
      {file, 305, "f", -2, error::kConnectionLost, "was lost"},
      {file, 150'000, "f", -2, error::kConnectionLost, "was lost"},
      {file, file.size() - 1, "f", -2, error::kConnectionLost, "was lost"},
      {Damaged(file, 9), kWhole, "f", -3, error::kBadReply, "bad checksum in the reply"},
      {Damaged(file, 306), kWhole, "f", -3, error::kBadReply, "bad checksum in the reply"},
      {Damaged(reason, 37), kWhole, "", -3, error::kBadReply, "bad checksum in the reply"},
      {Damaged(file, 100'000), kWhole, "f", -3, error::kBadReply, "checksum in the file of the"},
      {Damaged(file, file.size() - 1), kWhole, "f", -3, error::kBadReply, "checksum in the file"},
      {file, kWhole, "", -3, error::kBadReply, "the reply brings a file that was not asked for"},
      {file, kWhole, "missing/f", -3, error::kLocal, "missing/f"},
      {HeaderOnly(FrameKind::kReply, 4096 - 269 + 1), kWhole, "", -3, error::kBadReply,
       "larger than the memory"},
      {HeaderOnly(FrameKind::kReply, 1ULL << 32), kWhole, "", -3, error::kBadReply, "malformed"},
      {HeaderOnly(FrameKind::kRequest, 0), kWhole, "", -3, error::kBadReply, "malformed"},
      {HeaderOnly(FrameKind::kHello, 0), kWhole, "", -3, error::kBadReply, "malformed"},
      {"SMTP or another protocol that says more than a header", kWhole, "", -3, error::kBadReply,
       "malformed"},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(std::string(one.text) + " after " + std::to_string(one.sent));
    std::string answer = GetParam().answer(one.frames);
    if (one.sent != kWhole) answer.resize(answer.size() - one.frames.size() + one.sent);
    ScriptedServer server([&](ServerSide& side) {
      if (Receive(side)) side.Write({BytesOfText(answer)});
    });
    TransportCall call;
    if (!one.path.empty()) {
      call.reply.SetFileName((folder_.Path() / one.path).string().c_str(), 0);
    }
    EXPECT_EQ(Send(call, server.Port()), one.result);
    EXPECT_THAT(Error(), Pair(one.error_class, HasSubstr(one.text)));
    EXPECT_EQ(call.Answer(), "");
    EXPECT_TRUE(std::filesystem::is_empty(folder_.Path()));
    EXPECT_EQ(NetworkIsBadState(1), 0);
    EXPECT_EQ(server.Connections(), 1) << "a request is never sent twice";
  }
}

TEST_P(BothTransports, SayWhyNoReplyCame) {
  GetParam().set_parameter("connect_timeout_ms", "2000");
  GetParam().set_parameter("io_timeout_ms", "50");
  const auto start = std::chrono::steady_clock::now();
  const std::uint16_t dead = DeadPort();
  TransportCall refused;
  EXPECT_EQ(Send(refused, dead), -1);
  const std::string where = "cannot connect to 127.0.0.1:" + std::to_string(dead) + " within 2 s: ";
  // On Windows, libcurl's own words may follow.
  EXPECT_THAT(Error(),
              Pair(error::kCannotConnect,
                   testing::AllOf(testing::StartsWith(where),
                                  testing::AnyOf(testing::EndsWith("connection refused"),
                                                 testing::HasSubstr("connect to server")))));

  ScriptedServer silent([&](ServerSide& side) {
    while (Receive(side)) {
    }
  });
  TransportCall unanswered;
  EXPECT_EQ(Send(unanswered, silent.Port()), -2);
  EXPECT_THAT(Error(), Pair(error::kNoProgress, "no progress for 50 ms"));

  GetParam().set_parameter("io_timeout_ms", "5000");
  ScriptedServer leaving([&](ServerSide& side) { Receive(side); });
  TransportCall cut;
  EXPECT_EQ(Send(cut, leaving.Port()), -2);
  EXPECT_THAT(Error(), Pair(error::kConnectionLost,
                            HasSubstr(":" + std::to_string(leaving.Port()) + " was lost")));

  const FullListener full;
  GetParam().set_parameter("connect_timeout_ms", "50");
  GetParam().set_parameter("io_timeout_ms", "50");
  TransportCall ignored;
  EXPECT_EQ(Send(ignored, full.Port()), -1);
  EXPECT_THAT(Error(), Pair(error::kCannotConnect, HasSubstr("within 50 ms: no answer")));

  TransportCall without_file;
  without_file.request.SetFileName("no/such/file", 1);
  EXPECT_EQ(Send(without_file, full.Port()), -1);
  EXPECT_THAT(Error(), Pair(error::kLocal, "cannot read the file no/such/file"));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

TEST_P(BothTransports, TryABusyServerOnceMore) {
  for (const int refusals : {1, 2}) {
    std::atomic<int> refused{0};
    ScriptedServer server([&](ServerSide& side) {
      if (refused < refusals) {
        ++refused;
        GetParam().say_busy(side);
      } else {
        Answering(PlainReply(Field("done")))(side);
      }
    });
    TransportCall call;
    call.request.SetFileName(folder_.Write("sent", "content").c_str(), 1);
    EXPECT_EQ(Send(call, server.Port()), refusals == 1 ? 0 : -1);
    EXPECT_EQ(call.Answer(), refusals == 1 ? "done" : "");
    EXPECT_THAT(Error(), Pair(refusals == 1 ? error::kNone : error::kBusy,
                              HasSubstr(refusals == 1 ? "" : "the server is busy")));
    EXPECT_EQ(server.Connections(), 2);
    EXPECT_EQ(NetworkIsBadState(1), 0);
  }
}

TEST_P(BothTransports, AServerThatReportsProgressIsWaitedForAsLongAsItTakes) {
  GetParam().set_parameter("io_timeout_ms", "400");
  ScriptedServer server([&](ServerSide& side) {
    while (Receive(side)) {
      const std::string answer = GetParam().answer("");
      const bool is_http = !answer.empty();
      const auto write = [&](const std::string& frame) {
        char length[20];
        std::snprintf(length, sizeof length, "%zx\r\n", frame.size());
        return side.Write({BytesOfText(is_http ? length + frame + "\r\n" : frame)});
      };
      if (is_http) {
        side.Write({BytesOfText("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n")});
      }
      boost::asio::io_context pace;
      boost::asio::steady_timer next(pace);
      for (int count = 1; count <= 6; ++count) {
        next.expires_after(std::chrono::milliseconds(100));
        next.wait();
        MemoryStream frame;
        static_cast<void>(SendProgress(frame, std::chrono::milliseconds(count * 100)));
        if (!write(frame.written)) return;
      }
      write(PlainReply(Field("done")));
      if (is_http) side.Write({BytesOfText("0\r\n\r\n")});
    }
  });
  std::vector<std::uint64_t> at_work;
  GetParam().set_progress(
      [](std::uint64_t done, std::uint64_t total, int kind, void* context) {
        if (kind != NetworkProgress_Working) return;
        EXPECT_EQ(done, total);
        static_cast<decltype(at_work)*>(context)->push_back(done);
      },
      &at_work);
  TransportCall call;
  EXPECT_EQ(Send(call, server.Port()), 0);
  EXPECT_EQ(call.Answer(), "done");
  EXPECT_THAT(at_work, testing::ElementsAre(100, 200, 300, 400, 500, 600));
}

INSTANTIATE_TEST_SUITE_P(Reasons, BothTransports, testing::ValuesIn(kChannels));

TEST(OldServer, IsSpokenToInVersion1AfterOneHello) {
  NetworkBadState(0);
  std::atomic<int> requests{0};
  ScriptedServer server([&](ServerSide& side) {
    WholeFrame request;
    if (!side.ReceiveAsOldServer(request)) return;
    ++requests;
    side.Reply(request.payload);
  });
  for (const char* const text : {"one", "two", "three"}) {
    TransportCall call;
    call.request.AddString(text, nullptr);
    EXPECT_EQ(NetworkTransMsg("127.0.0.1", server.Port(), call.request, call.reply), 0);
    EXPECT_EQ(call.Answer(), text);
    server.WaitForFinished(1 + requests);  // so that the connection is not kept
  }
  EXPECT_EQ(requests, 3);
  EXPECT_EQ(server.Connections(), 4) << "one hello, and one connection for each request";
  NetworkTransFini();
  TransportCall again;
  EXPECT_EQ(NetworkTransMsg("127.0.0.1", server.Port(), again.request, again.reply), 0);
  EXPECT_EQ(server.Connections(), 6) << "the server may be another one by now";
}

TEST(OldServer, IsNoServerThatHasOnlyAnsweredNothing) {
  std::atomic<bool> is_down = true;
  std::atomic<int> hellos{0};
  ScriptedServer server([&](ServerSide& side) {
    const auto first = ReceiveWhole(side, FrameKind::kHello);
    if (is_down || first.status != FrameStatus::kDone) return;
    ++hellos;
    if (SendHello(side)) ScriptedServer::Echo(side);
  });
  TransportCall lost;
  EXPECT_EQ(NetworkTransMsg("127.0.0.1", server.Port(), lost.request, lost.reply), -2);
  is_down = false;
  TransportCall call;
  EXPECT_EQ(NetworkTransMsg("127.0.0.1", server.Port(), call.request, call.reply), 0);
  EXPECT_EQ(hellos, 1);
  NetworkTransFini();
}

TEST(OldServer, IsNotToSendFramesThatItDoesNotKnow) {
  ScriptedServer server([](ServerSide& side) {
    WholeFrame request;
    if (side.ReceiveAsOldServer(request)) {
      side.Write({BytesOfText(ReplyWithReason({error::kSyntax, "no"}))});
    }
  });
  TransportCall call;
  EXPECT_EQ(NetworkTransMsg("127.0.0.1", server.Port(), call.request, call.reply), -3);
  EXPECT_EQ(NetworkTransLastError(nullptr, 0), error::kBadReply);
  NetworkTransFini();
}

TEST(Hello, WithoutAProperAnswerFailsThisConnectionAndIsSaidAgain) {
  const struct {
    const char* why;
    void (*answer)(ServerSide& side);
  } cases[] = {
      {"no answer", [](ServerSide& side) { side.WaitForEnd(); }},
      {"the connection was reset",
       [](ServerSide& side) {
         side.Socket().set_option(boost::asio::socket_base::linger(true, 0));
       }},
      {"the server closed it", [](ServerSide& side) { side.Write({BytesOfText("QvN4")}); }},
      {"the answer to the hello is malformed",
       [](ServerSide& side) {
         side.Write({BytesOfText("HTTP/1.1 400 Bad Request\r\nConnection: close\r\n\r\n")});
       }},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.why);
    std::atomic<int> hellos{0};
    ScriptedServer server([&](ServerSide& side) {
      if (ReceiveWhole(side, FrameKind::kHello).status != FrameStatus::kDone) return;
      if (++hellos == 1) return one.answer(side);
      if (SendHello(side)) ScriptedServer::Echo(side);
    });
    SetSocketParameter("connect_timeout_ms", &one == cases ? "100" : "5000");
    TransportCall call;
    EXPECT_EQ(NetworkTransMsg("127.0.0.1", server.Port(), call.request, call.reply), -1);
    char text[200];
    EXPECT_EQ(NetworkTransLastError(text, sizeof text), error::kCannotConnect);
    EXPECT_THAT(text, testing::EndsWith(one.why));
    SetSocketParameter("connect_timeout_ms", "5000");
    EXPECT_EQ(NetworkTransMsg("127.0.0.1", server.Port(), call.request, call.reply), 0);
    EXPECT_EQ(hellos, 2);
    NetworkTransFini();
  }
  NetworkBadState(0);
}

}  // namespace
}  // namespace qv::wire
