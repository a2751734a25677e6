#include "HttpTransport.h"

#include <array>
#include <boost/asio/steady_timer.hpp>
#include <filesystem>
#include <optional>
#include <tuple>

namespace qv::wire {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST_F(HttpTransport, EchoesOverOneKeptConnectionHoweverTheServerIsSpelt) {
  ScriptedServer server(EchoHttp);
  for (const char* const name : {"127.0.0.1", "http://127.0.0.1", "HTTP://127.0.0.1"}) {
    HttpCall call;
    call.request.AddString(name, nullptr);
    EXPECT_EQ(call.Send(server.Port(), name), 0);
    EXPECT_EQ(call.Answer(), name);
  }
  EXPECT_EQ(server.Connections(), 1);
  EXPECT_EQ(HttpCall().Send(server.Port(), "LocalHost"), 0);
}

TEST_F(HttpTransport, ReachesAServerOfIpv6) {
  std::optional<ScriptedServer> server;
  try {
    server.emplace(EchoHttp, boost::asio::ip::address_v6::loopback());
  } catch (const boost::system::system_error&) {
    GTEST_SKIP() << "there is no IPv6 here";
  }
  for (const char* const name : {"::1", "http://[::1]"}) {
    EXPECT_EQ(HttpCall().Send(server->Port(), name), 0);
  }
}

TEST_F(HttpTransport, PostsWithTheHeadersThatAreAgreed) {
  HttpRequestSeen seen;
  ScriptedServer server([&](ServerSide& side) {
    for (HttpRequestSeen request; ReceiveHttp(side, request);) {
      seen = request;
      ReplyHttp(side, "");
    }
  });
  EXPECT_EQ(HttpCall().Send(server.Port()), 0);
  EXPECT_THAT(seen.head, testing::StartsWith("POST /qvcall HTTP/1.1\r\n"));
  EXPECT_THAT(seen.head, HasSubstr("\r\nContent-Type: application/octet-stream\r\n"));
  EXPECT_THAT(seen.head, HasSubstr("\r\nQv-Frame: 2\r\n"));
  for (const char* const absent :
       {"Expect", "Encoding", "Cookie", "Authorization", "Qv-Compress", "Qv-Login"}) {
    EXPECT_THAT(seen.head, Not(HasSubstr(absent)));
  }
  EXPECT_EQ(HttpCall().Send(server.Port(), kHttpHost, 1), 0);
  EXPECT_THAT(seen.head, HasSubstr("\r\nQv-Compress: 1\r\n"));
  EXPECT_EQ(seen.frame.payload, "");
  EXPECT_EQ(server.Connections(), 1);
}

// Cuts `body` into chunks of at most `size` bytes.
std::string Chunked(std::string body, std::size_t size) {
  std::string text = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  for (; !body.empty(); body.erase(0, size)) {
    const std::string chunk = body.substr(0, size);
    char length[20];
    std::snprintf(length, sizeof length, "%zx\r\n", chunk.size());
    text += length + chunk + "\r\n";
  }
  return text + "0\r\n\r\n";
}

TEST_F(HttpTransport, AnswersGiveTheirCodeAndBrokenOnesLeaveNothing) {
  const std::string right = ReplyWithFile();
  const std::string answer = HttpAnswer(right);
  const std::string until_close = "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n";
  const std::string chunked = Chunked(right, 7777);
  const auto flood = [](std::string line, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += line;
    return text;
  };
  const struct {
    const char* what;
    std::string answer;
    int result;
  } cases[] = {
      {"right", answer, 0},
      {"in chunks", chunked, 0},
      {"until the connection ends", until_close + right, 0},
      {"after other statuses", flood("HTTP/1.1 103 Hints\r\nA: b\r\n\r\n", 9) + answer, 0},
      {"no answer", "", -2},
      {"cut in the headers", answer.substr(0, 30), -2},
      {"cut without a length", until_close + right.substr(0, 150'000), -2},
      {"cut in the chunks", chunked.substr(0, 150'000), -2},
      {"cut before the last chunk", chunked.substr(0, chunked.size() - 5), -2},
      {"a frame that stops short", HttpAnswer(right.substr(0, 150'000)), -3},
      {"chunks that stop short", Chunked(right.substr(0, 150'000), 7777), -3},
      {"longer than its frame", HttpAnswer(right + "x"), -3},
      {"chunks longer than the frame", Chunked(right + "x", 7777), -3},
      {"no body", HttpAnswer(""), -3},
      {"another protocol", right, -3},
      {"201", HttpAnswer(right, "", "201 Created"), -3},
      {"204", "HTTP/1.1 204 No Content\r\n\r\n", -3},
      {"302", HttpAnswer("", "Location: /qvcall\r\n", "302 Found"), -3},
      {"404", HttpAnswer("gone", "", "404 Not Found"), -3},
      {"401", HttpAnswer("", "WWW-Authenticate: Basic realm=\"x\"\r\n", "401 Unauthorized"), -3},
      {"500", HttpAnswer(right, "", "500 Broken"), -3},
      {"101", "HTTP/1.1 101 Switching\r\nUpgrade: h2c\r\n\r\n" + right, -3},
      {"packed for the transfer", HttpAnswer(right, "Transfer-Encoding: gzip\r\n"), -3},
      {"coded twice",
       HttpAnswer(right, "Transfer-Encoding: gzip\r\nTransfer-Encoding: chunked\r\n"), -3},
      {"two lengths", HttpAnswer(right, "Content-Length: 5\r\n"), -3},
      {"a negative length", "HTTP/1.1 200 OK\r\nContent-Length: -5\r\n\r\n" + right, -3},
      {"a flood of headers", HttpAnswer(right, flood("A: 0123456789\r\n", 5000)), -3},
      {"a long header", HttpAnswer(right, "A: " + std::string(70'000, 'a') + "\r\n"), -3},
      {"one too long to read", HttpAnswer(right, "A: " + std::string(150'000, 'a') + "\r\n"), -3},
      {"statuses without end", flood("HTTP/1.1 100 Continue\r\n\r\n", 5000) + answer, -3},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.what);
    ScriptedServer server(Answering(one.answer));
    HttpCall call;
    call.reply.SetFileName(folder_.At("answer").c_str(), 0);
    EXPECT_EQ(call.Send(server.Port()), one.result);
    EXPECT_EQ(call.Answer(), one.result == 0 ? "SUCCESS" : "");
    EXPECT_EQ(std::filesystem::remove(folder_.At("answer")), one.result == 0);
    EXPECT_TRUE(std::filesystem::is_empty(folder_.Path()));
    EXPECT_EQ(server.Connections(), 1) << "a request is never sent twice";
  }
}

TEST_F(HttpTransport, ARequestThatAKeptConnectionSwallowedIsNotSentAgain) {
  for (const bool whole : {true, false}) {
    std::atomic<int> requests{0};
    ScriptedServer server([&](ServerSide& side) {
      HttpRequestSeen request;
      if (!ReceiveHttp(side, request)) return;
      ++requests;
      if (requests > 1 || !ReplyHttp(side, "")) return;
      unsigned char byte = 0;
      const bool is_more_read = whole ? ReceiveHttp(side, request) : side.Read({&byte, 1});
      if (is_more_read) ++requests;
    });
    EXPECT_EQ(HttpCall().Send(server.Port()), 0);
    EXPECT_EQ(HttpCall().Send(server.Port()), -2);
    server.WaitForFinished(1);
    EXPECT_EQ(requests, 2);
    EXPECT_EQ(server.Connections(), 1);
  }
}

TEST_F(HttpTransport, WhatCannotBeSentReachesNobody) {
  ScriptedServer server(EchoHttp);
  const std::string with_port = "127.0.0.1:" + std::to_string(server.Port());
  for (const char* const name : {"", "http://", "ftp://127.0.0.1", "http://http://127.0.0.1",
                                 with_port.c_str(), "127.0.0.1\r\nA: b", "no-such-host.invalid"}) {
    EXPECT_EQ(HttpCall().Send(server.Port(), name), -1) << name;
  }
  EXPECT_EQ(HttpCall().Send(server.Port(), nullptr), -1);
  EXPECT_EQ(HttpCall().Send(0), -1);
  EXPECT_EQ(HttpCall().Send(0x10000U + server.Port()), -1);
  EXPECT_EQ(server.Connections(), 0);
}

TEST_F(HttpTransport, GivesUpWhoStopsHalfway) {
  // Accepts and stays silent instead of starting TLS, or stops reading in the middle of a request.
  ScriptedServer deaf([](ServerSide& side) { side.WaitForEnd(); });
  ScriptedServer stuck([](ServerSide& side) {
    HttpRequestSeen request;
    if (ReceiveHttp(side, request)) side.Write({BytesOfText(HttpAnswer("QvN4").substr(0, 40))});
    unsigned char byte = 0;
    side.Read({&byte, 1});
  });
  // Goes on with the head of its answer for ever.
  const auto dripping = [](const char* start, const char* line) {
    return [start, line](ServerSide& side) {
      HttpRequestSeen request;
      bool goes_on = ReceiveHttp(side, request) && side.Write({BytesOfText(start)});
      boost::asio::io_context pace;
      for (boost::asio::steady_timer next(pace); goes_on; next.wait()) {
        next.expires_after(std::chrono::milliseconds(20));
        goes_on = side.Write({BytesOfText(line)});
      }
    };
  };
  ScriptedServer interim(dripping("", "HTTP/1.1 100 Continue\r\n\r\n"));
  ScriptedServer headers(dripping("HTTP/1.1 200 OK\r\n", "A: b\r\n"));
  Set("connect_timeout_ms", "50");
  Set("io_timeout_ms", "50");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(HttpCall().Send(deaf.Port(), "https://127.0.0.1"), -1);
  for (const std::uint16_t port : {stuck.Port(), interim.Port(), headers.Port()}) {
    EXPECT_EQ(HttpCall().Send(port), -2);
  }
  HttpCall upload;
  upload.request.SetFileName(folder_.Write("big", std::string(20'000'000, 'u')).c_str(), 1);
  EXPECT_EQ(upload.Send(deaf.Port()), -2);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

TEST_F(HttpTransport, AnUploadEndsWhenTheServerRefusesItOrHangsUp) {
  const std::string big = folder_.Write("big", std::string(20'000'000, 'u'));
  const auto read_some = [](ByteStream& side) {
    std::array<unsigned char, 1000> bytes{};
    return side.Read(bytes);
  };
  ScriptedServer refusing([&](ServerSide& side) {
    if (!read_some(side)) return;
    side.Write({BytesOfText(HttpAnswer("too big", "", "413 Too Large"))});
    while (read_some(side)) {
    }
  });
  ScriptedServer leaving([&](ServerSide& side) { read_some(side); });
  const std::tuple<std::uint16_t, const char*, int> cases[] = {
      {refusing.Port(), "http://127.0.0.1", -3}, {leaving.Port(), "http://127.0.0.1", -2}};
  for (const auto& [port, server, result] : cases) {
    HttpCall upload;
    upload.request.SetFileName(big.c_str(), 1);
    EXPECT_EQ(upload.Send(port, server), result);
  }
}

TEST_F(HttpTransport, ParametersTakeWhatTheyCanHave) {
  const std::tuple<const char*, std::string, int> cases[] = {{"token", std::string(4096, 't'), 1},
                                                             {"token", std::string(4097, 't'), 0},
                                                             {"tls", "1", 1},
                                                             {"tls", "yes", 0},
                                                             {"io_timeout_ms", "3600000", 1},
                                                             {"connect_timeout_ms", "0", 0},
                                                             {"dispmsg", "1", 0}};
  for (const auto& [name, value, result] : cases) EXPECT_EQ(Set(name, value), result) << name;
  EXPECT_EQ(HttpworkSetParameter(nullptr, "1"), 0);
  EXPECT_EQ(HttpworkSetParameter("tls", nullptr), 0);
}

TEST_F(HttpTransport, TokensAreKeptAndGoBackToTheirServerOnly) {
  std::string heads[2];
  std::string handed_out[2];
  const auto script = [&](int index) {
    return [&, index](ServerSide& side) {
      for (HttpRequestSeen request; ReceiveHttp(side, request);) {
        heads[index] = request.head;
        ReplyHttp(side, "", nullptr, handed_out[index]);
      }
    };
  };
  ScriptedServer first(script(0));
  ScriptedServer second(script(1));
  EXPECT_EQ(LoginToken(), "");
  EXPECT_EQ(HttpworkLoginToken(nullptr), 0);
  const std::string kHeader = "Qv-Login-Token: ";
  const std::string longest(255, '~');
  const struct {
    int server;
    std::string handed_out;
    const char* name;
    std::string sent;  // with this request
    std::string last;  // after it
  } cases[] = {
      {0, kHeader + "one\r\n", kHttpHost, "", "one"},
      {1, "", kHttpHost, "", "one"},
      {1, "qv-login-token:\t two \r\n", kHttpHost, "", "two"},
      {0, "", "HTTP://127.0.0.1", "one", "two"},
      {0, "", "localhost", "", "two"},
      {1, kHeader + "x\r\n" + kHeader + "three\r\n", kHttpHost, "two", "three"},
      {1, kHeader + "with blank\r\n", kHttpHost, "three", "three"},
      {1, kHeader + "\r\n", kHttpHost, "three", "three"},
      {1, kHeader + "caf\xC3\xA9\r\n", kHttpHost, "three", "three"},
      {1, kHeader + longest + "~\r\n", kHttpHost, "three", "three"},
      {1, kHeader + longest + "\r\n", kHttpHost, "three", longest},
      {1, "", kHttpHost, longest, longest},
      {0, "", kHttpHost, "one", longest},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(&one - cases);
    handed_out[one.server] = one.handed_out;
    HttpCall call;
    EXPECT_EQ(call.Send(one.server == 0 ? first.Port() : second.Port(), one.name), 0);
    const std::string& head = heads[one.server];
    if (one.sent.empty()) {
      EXPECT_THAT(head, Not(HasSubstr("Token")));
    } else {
      EXPECT_THAT(head, HasSubstr("\r\n" + kHeader + one.sent + "\r\n"));
    }
    EXPECT_EQ(LoginToken(), one.last);
  }
  HttpworkTransFini();
  EXPECT_EQ(LoginToken(), "");
  EXPECT_EQ(HttpCall().Send(first.Port()), 0);
  EXPECT_THAT(heads[0], Not(HasSubstr("Token")));
}

TEST_F(HttpTransport, ARedirectIsNotFollowedAndItsTokenNotKept) {
  ScriptedServer other(EchoHttp);
  const std::string there = "http://127.0.0.1:" + std::to_string(other.Port()) + "/qvcall";
  for (const char* const status : {"301 Moved", "302 Found", "307 There", "308 There"}) {
    ScriptedServer server(
        Answering(HttpAnswer("", "Location: " + there + "\r\nQv-Login-Token: stray\r\n", status)));
    EXPECT_EQ(HttpCall().Send(server.Port()), -3) << status;
  }
  EXPECT_EQ(other.Connections(), 0);
  EXPECT_EQ(LoginToken(), "");
}

}  // namespace
}  // namespace qv::wire
