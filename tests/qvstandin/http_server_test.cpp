// Tests the server over HTTP with handwritten requests.
#include <gmock/gmock.h>

#include <string>
#include <thread>
#include <vector>

#include "HttpClient.h"

namespace qv::standin {
namespace {

using testing::Each;

const std::string kPing = FrameOf(3, {});

std::string Chunk(const std::string& bytes) {
  std::string size(8, '\0');
  size.resize(static_cast<std::size_t>(std::snprintf(size.data(), 9, "%zx", bytes.size())));
  return size + "\r\n" + bytes + "\r\n";
}

class HttpServerTest : public ServerTest {
 protected:
  HttpServerTest() { options_.http_port = 0; }

  // Returns a new client of the HTTP port.
  HttpClient Client() { return HttpClient(server_->HttpPort()); }
  HttpReply Ask(const std::string& bytes) { return Client().Ask(bytes); }
};

TEST_F(HttpServerTest, AnswersInTheSchemaDialectAndPacksWhenAsked) {
  struct Case {
    std::uint32_t command;
    const char* compress;
    const char* status;
    const char* beginning;
  };
  Start();
  for (const Case& c : {Case{200, "", "SUCCESS", "<DataSet>"},
                        {200, "Qv-Compress: 1\r\n", "SUCCESS_COMPRESS", "\x1f\x8b"},
                        {200, "Qv-Compress: 0\r\n", "SUCCESS", "<DataSet>"},
                        {210, "", "SUCCESS_COMPRESS", "\x1f\x8b"},
                        {900, "", "SUCCESS", "<DataSet>"},
                        {900, "Qv-Compress: 1\r\n", "SUCCESS_COMPRESS", "\x1f\x8b"}}) {
    const auto reply = Ask(Call(FrameOf(c.command, {"DESIGNDB", "select 1"}), c.compress));
    EXPECT_EQ(reply.status, "200");
    EXPECT_EQ(reply.Value("Content-Type"), "application/octet-stream");
    const auto fields = reply.Fields();
    ASSERT_EQ(fields.size(), 4U);
    EXPECT_EQ(fields[0], c.status) << c.command << c.compress;
    EXPECT_TRUE(fields[3].starts_with(c.beginning)) << c.command << c.compress;
  }
}

TEST_F(HttpServerTest, KeepsTheConnectionAndAnswersInOrderWithOrWithoutHttp) {
  Start();
  HttpClient client = Client();
  const std::string path = folder_.At("answer");
  client.Send(Call(FrameOf(200, {"DESIGNDB", "select * from parts"})) + Call(FrameOf(9999, {})) +
              "HEAD / HTTP/1.1\r\n" + kHost + "\r\n" + Call(kPing));
  EXPECT_EQ(client.Receive().Fields(path).at(2), "FILE");
  EXPECT_THAT(BytesOf(path), testing::EndsWith("</DataSet>\n"));
  EXPECT_EQ(client.Receive().Outcome(), "FAILURE");
  EXPECT_EQ(client.Receive(false).status, "200");
  EXPECT_EQ(client.Receive().Outcome(), "SUCCESS");
  HttpClient frames = Client();  // without HTTP
  ASSERT_TRUE(frames.Send(kPing) && frames.Send(FrameOf(200, {"DESIGNDB", "select * from parts"})));
  EXPECT_EQ(frames.Status(), "SUCCESS");
  EXPECT_EQ(frames.Status(path), "SUCCESS");
  EXPECT_THAT(BytesOf(path), testing::HasSubstr("<z:row"));
}

TEST_F(HttpServerTest, WantsATokenOrTheOneThatItHandedOut) {
  options_.token = "secret";
  Start();
  const auto ask = [this](const std::string& token, const std::string& login_token) {
    HttpClient client = Client();
    const std::string field = login_token.empty() ? "" : "qv-login-token: " + login_token + "\r\n";
    const HttpReply reply = client.Ask(Call(FrameOf(3, {}, token), field));
    EXPECT_EQ(reply.status, "200");
    const bool is_allowed = reply.Outcome() == "SUCCESS";
    EXPECT_EQ(reply.Value("Qv-Login-Token").empty(), !is_allowed);
    EXPECT_TRUE(is_allowed || client.IsHungUpOn());
    return is_allowed ? reply.Value("Qv-Login-Token") : "";
  };
  const std::string login_token = ask("secret", "");
  EXPECT_EQ(login_token.size(), 32u);
  EXPECT_EQ(login_token.find_first_not_of("0123456789abcdef"), std::string::npos);
  EXPECT_EQ(ask("", login_token), login_token);
  EXPECT_EQ(ask("wrong", login_token), login_token);
  EXPECT_EQ(ask("secret", "wrong"), login_token);
  for (const std::string& wrong : {std::string(), std::string("secret"), login_token.substr(1)}) {
    EXPECT_EQ(ask("", wrong), "") << wrong;
  }
  for (const std::string& wrong :
       {login_token, std::string("secre"), std::string("secretsecret"), std::string("Secret")}) {
    EXPECT_EQ(ask(wrong, ""), "") << wrong;
    RawClient client(server_->Port());
    ASSERT_TRUE(client.Send(FrameOf(3, {}, wrong)));
    EXPECT_EQ(client.Status(), "FAILURE") << wrong;
    EXPECT_TRUE(client.IsHungUpOn());
  }
  const auto served = server_->Served();
  EXPECT_EQ(served.back().outcome, "wrong token");
  server_->Stop();
  server_.emplace(options_);
  ASSERT_TRUE(server_->Start());
  EXPECT_EQ(ask("", login_token), "") << "another server's";
}

TEST_F(HttpServerTest, RefusesWhatItDoesNotServe) {
  enum Then { kStays, kCloses };  // the connection
  struct Case {
    std::string request;
    const char* status;
    Then then;
  };
  const std::string get = " HTTP/1.1\r\n" + kHost + "\r\n";
  wire::FrameHeader large;
  large.payload_length = 1 << 20;
  const auto oversized = wire::EncodeHeader(large);
  const std::string too_large =
      std::string(oversized.begin(), oversized.end()) + std::string(16 << 20, 'x');
  const std::string bare = "POST /qvcall HTTP/1.1\r\n" + kHost;
  const std::vector<Case> cases{
      {"GET /other" + get, "404", kStays},
      {"GET /qvcall" + get, "405", kStays},
      {"DELETE /" + get, "405", kStays},
      {"POST /qvcall?x=1 HTTP/1.1\r\n" + kHost + Length(3) + "\r\nabc", "404", kCloses},
      {bare + Length(kPing.size()) + "\r\n" + kPing, "415", kCloses},
      {bare + "Content-Type: text/plain\r\n" + Length(0) + "\r\n", "415", kStays},
      {Post("", ""), "411", kStays},
      {Call(kPing, "Expect: miracles\r\n"), "417", kCloses},
      {Call(std::string(too_large)), "413", kCloses},
      {Call(std::string(400, 'x')), "400", kCloses},
      {Call(kPing + "x"), "400", kCloses},
      {Call(kPing.substr(1)), "400", kCloses},
      {Call(""), "400", kCloses},
      {Post(kChunked, "0\r\n\r\n"), "400", kCloses},
      {"nonsense\r\n\r\n", "400", kCloses},
      {"GET / HTTP/2.0\r\n" + kHost + "\r\n", "400", kCloses},
      {"GET / HTTP/1.1\r\n\r\n", "400", kCloses},
      {"GET / HTTP/1.1\r\n" + kHost + kHost + "\r\n", "400", kCloses},
      {"GET /" + std::string(9000, 'x'), "431", kCloses},
      {"GET / HTTP/1.1\r\nx: " + std::string(9000, 'x'), "431", kCloses},
      {"GET / HTTP/1.0\r\nConnection: keep-alive\r\n\r\n", "200", kCloses},
      {"GET / HTTP/1.1\r\nConnection: close\r\n" + kHost + "\r\n", "200", kCloses},
  };
  options_.request_limit = 1000;
  Start();
  for (const Case& c : cases) {
    const std::string request = c.request.substr(0, 200);
    const std::size_t served = server_->Served().size();
    HttpClient client = Client();
    const HttpReply reply = client.Ask(c.request);
    EXPECT_EQ(reply.status, c.status) << request;
    if (reply.status != "200") {
      ASSERT_EQ(server_->Served().size(), served + 1) << request;
      EXPECT_EQ(server_->Served().back().outcome + "\n",
                "HTTP status " + reply.status + ": " + reply.body);
    }
    EXPECT_EQ(reply.Value("Connection"), c.then == kStays ? "" : "close") << c.status;
    if (c.then == kStays) {
      EXPECT_EQ(client.Ask(Call(kPing)).Outcome(), "SUCCESS") << request;
    } else {
      EXPECT_TRUE(client.IsHungUpOn()) << request;
    }
  }
  EXPECT_EQ(Ask("PUT /qvcall" + get).Value("Allow"), "POST");
}

// If two readers could see different lengths of a body, the connection ends, so that no part of a
// body can be taken for another request.
TEST_F(HttpServerTest, TakesNoBodyThatCouldEndElsewhere) {
  const std::string length = Length(kPing.size());
  const std::string chunk = Chunk(kPing);
  const std::string chunks = chunk + "0\r\n\r\n";
  const std::size_t size = chunk.find('\r');
  const auto in_chunks = [&](std::size_t at, const std::string& extra) {
    return std::string(chunks).insert(at, extra);
  };
  std::string bare_feed = chunks;
  bare_feed.erase(bare_feed.find('\r'), 1);
  const std::vector<std::string> requests{
      Post(length + kChunked, chunks),
      Post(kChunked + length, chunks),
      Post(length + Length(5), kPing),
      Post(length + length, kPing),
      Post("Content-Length: +" + std::to_string(kPing.size()) + "\r\n", kPing),
      Post("Content-Length : 5\r\n", kPing),
      Post("Transfer-Encoding: gzip, chunked\r\n", chunks),
      Post("Transfer-Encoding: identity\r\n" + length, kPing),
      Post("Transfer-Encoding: chunked, identity\r\n", chunks),
      Post(kChunked + kChunked, chunks),
      "POST /qvcall HTTP/1.0\r\n" + kBytes + kChunked + "\r\n" + chunks,
      Post(kChunked, bare_feed),
      Post(kChunked, "0x" + chunks),
      Post(kChunked, "10000000000000" + chunks),
      Post(kChunked, in_chunks(size, " ")),
      Post(kChunked, in_chunks(size, ";\rx")),
      Post(kChunked, in_chunks(size, std::string(300, ';'))),
      Post(kChunked, in_chunks(chunk.size() - 2, "x")),
      Post(kChunked, chunk + "0\r\nHost: y\r\n\r\n"),
      Post(kChunked, chunk + Chunk("x") + "0\r\n\r\n"),
  };
  Start();
  for (const std::string& request : requests) {
    HttpClient client = Client();
    EXPECT_EQ(client.Ask(request + Call(kPing)).status, "400") << request.substr(0, 200);
    EXPECT_TRUE(client.IsHungUpOn());
  }
  EXPECT_THAT(server_->Served(), Each(testing::Field("command", &ServedCommand::command, 0)));
}

TEST_F(HttpServerTest, TakesARequestInAnyPieces) {
  Start();
  const std::string chunked = Post(kChunked, Chunk(kPing.substr(0, 40)).insert(2, ";a=b") +
                                                 Chunk(kPing.substr(40)) + "0\r\n\r\n");
  HttpClient client = Client();
  for (const std::string& request : {chunked, Call(kPing)}) {
    for (const char byte : request) ASSERT_TRUE(client.Send(std::string(1, byte)));
    EXPECT_EQ(client.Receive().Outcome(), "SUCCESS");
  }
  ASSERT_TRUE(client.Send(Post("Expect: 100-Continue\r\n" + Length(kPing.size()), "")));
  EXPECT_EQ(client.Receive().head, "HTTP/1.1 100 Continue\r\n\r\n");
  EXPECT_EQ(client.Ask(kPing).Outcome(), "SUCCESS");
}

TEST_F(HttpServerTest, HangsUpOnTheSlowAndTheIdle) {
  constexpr std::chrono::milliseconds kShort{30};
  options_.io_timeout = kShort;
  Start();
  for (const std::string& part : {std::string(), std::string("Q"), Call(kPing).substr(0, 40),
                                  Call(kPing).substr(0, 150), Post(kChunked, "5")}) {
    for (const std::uint16_t port : {server_->Port(), server_->HttpPort()}) {
      HttpClient client(port);
      client.Send(part);
      EXPECT_TRUE(client.IsHungUpOn()) << part;
    }
  }
  options_.io_timeout = kPatience;
  options_.idle_timeout = kShort;
  Start();
  HttpClient idle = Client();
  EXPECT_EQ(idle.Ask(Call(kPing)).status, "200");
  EXPECT_TRUE(idle.IsHungUpOn());
  RawClient idle_at_socket(server_->Port());
  idle_at_socket.Send(kPing);
  EXPECT_EQ(idle_at_socket.Status(), "SUCCESS");
  EXPECT_TRUE(idle_at_socket.IsHungUpOn());
}

TEST_F(HttpServerTest, EndsTheQueryOfAClientThatFloodsOrVanishes) {
  Start();
  const std::string call = Call(FrameOf(200, {"DESIGNDB", kForever}));
  HttpClient flooding = Client();
  flooding.Send(call + std::string(64 << 10, 'x'));
  EXPECT_TRUE(flooding.IsHungUpOn());
  Client().Send(call);
  RawClient(server_->Port()).Send(FrameOf(200, {"DESIGNDB", kForever}) + "behind");
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (server_->Served().size() < 3 && std::chrono::steady_clock::now() < end) {
    std::this_thread::yield();
  }
  const auto ended = [](const char* why) {
    return testing::Field("outcome", &ServedCommand::outcome, why);
  };
  const auto left = ended("the client cancelled or disconnected");
  EXPECT_THAT(server_->Served(),
              testing::UnorderedElementsAre(ended("the client sent too much before its answer"),
                                            left, left));
}

TEST_F(HttpServerTest, StopsWhileClientsWait) {
  Start();
  HttpClient silent = Client();
  HttpClient half_head = Client();
  HttpClient half_body = Client();
  half_head.Send(Call(kPing).substr(0, 30));
  half_body.Send(Call(kPing).substr(0, 150));
  HttpClient silent_at_socket(server_->Port());
  HttpClient half_frame(server_->Port());
  half_frame.Send("QvN4");
  const auto start = std::chrono::steady_clock::now();
  server_->Stop();
  EXPECT_LT(std::chrono::steady_clock::now() - start, kPatience);
  for (HttpClient* client : {&silent, &half_head, &half_body, &silent_at_socket, &half_frame}) {
    EXPECT_TRUE(client->IsHungUpOn());
  }
}

}  // namespace
}  // namespace qv::standin
