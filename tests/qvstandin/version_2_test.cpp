// Tests what the server sends to clients that know frames of version 2, over both transports.
#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "HttpClient.h"

namespace qv::standin {
namespace {

using std::chrono::milliseconds;
using testing::HasSubstr;

const std::string kHello = HeaderOnly(wire::FrameKind::kHello, 0);

struct Answer {
  std::string status;  // the first field; empty if no answer came
  wire::Reason reason;
  std::vector<milliseconds> progress;
};

Answer ReadAnswer(wire::ByteStream& stream) {
  Answer answer;
  wire::FrameHeader header;
  do {
    const auto status = wire::ReceiveHeader(stream, wire::kAnswersToRequest, {}, header);
    if (status != wire::FrameStatus::kDone) return answer;
    if (header.kind == wire::FrameKind::kProgress)
      answer.progress.emplace_back(header.payload_length);
  } while (header.kind == wire::FrameKind::kProgress);
  EXPECT_EQ(header.kind, wire::FrameKind::kReplyWithReason);
  std::vector<unsigned char> reason(header.token_length);
  std::vector<unsigned char> block(wire::kFrameBlockSize);
  std::string payload(static_cast<std::size_t>(header.payload_length), '\0');
  const wire::WritableBytes room(reinterpret_cast<unsigned char*>(payload.data()), payload.size());
  EXPECT_EQ(wire::ReceiveMessage(stream, {reason, block, room}), wire::FrameStatus::kDone);
  if (header.file_length) {
    EXPECT_EQ(wire::SkipFile(stream, *header.file_length), wire::FrameStatus::kDone);
  }
  answer.reason = wire::DecodeReason(reason);
  answer.status = FieldsOf(payload).at(0);
  return answer;
}

class Client {
 public:
  virtual ~Client() = default;
  // Calls `at_work` when the first bytes of the answer have come.
  virtual Answer Ask(
      const std::string& frame, const std::function<void()>& at_work = [] {}) = 0;
  // Returns the reason if the server says that it is busy.
  virtual std::string AskWhetherBusy() = 0;
};

class SocketWay : public Client, RawClient {
 public:
  using RawClient::RawClient;
  Answer Ask(const std::string& frame, const std::function<void()>& at_work) override {
    if (!std::exchange(has_said_hello_, true)) {
      EXPECT_TRUE(Send(kHello));
      EXPECT_EQ(Read(kHello.size()), kHello);
    }
    EXPECT_TRUE(Send(frame) && Await());
    at_work();
    return ReadAnswer(Stream());
  }
  std::string AskWhetherBusy() override {
    EXPECT_TRUE(Send(kHello));
    wire::FrameHeader header;
    wire::Reason reason;
    if (wire::ReceiveHeader(Stream(), wire::kAnswersToHello, {}, header) !=
            wire::FrameStatus::kDone ||
        header.kind != wire::FrameKind::kBusy) {
      return {};
    }
    EXPECT_EQ(wire::ReceiveBusy(Stream(), header, reason), wire::FrameStatus::kDone);
    EXPECT_EQ(reason.error_class, error::kBusy);
    EXPECT_TRUE(IsHungUpOn());
    return reason.text;
  }

 private:
  bool has_said_hello_ = false;
};

class HttpWay : public Client, HttpClient {
 public:
  using HttpClient::HttpClient;
  Answer Ask(const std::string& frame, const std::function<void()>& at_work) override {
    EXPECT_TRUE(Send(Call(frame, kFrame2)) && Await());
    at_work();
    const HttpReply reply = Receive();
    EXPECT_EQ(reply.status, "200") << reply.head;
    MemoryStream body;
    body.unread = reply.body;
    const Answer answer = ReadAnswer(body);
    EXPECT_EQ(body.unread, "");
    return answer;
  }
  std::string AskWhetherBusy() override {
    const HttpReply reply = HttpClient::Ask(Call(FrameOf(3, {}), kFrame2));
    if (reply.status != "503") return {};
    EXPECT_EQ(reply.Value("Qv-Busy"), "1");
    EXPECT_EQ(reply.Value("Qv-Reason") + "\n", reply.body);
    return reply.body;
  }

 private:
  static constexpr const char* kFrame2 = "qv-frame:  2 \r\n";
};

enum class Way { kSocket, kHttp };

class Version2Test : public ServerTest, public testing::WithParamInterface<Way> {
 protected:
  void SetUp() override { options_.http_port = 0; }
  std::unique_ptr<Client> Connect() {
    if (GetParam() == Way::kSocket) return std::make_unique<SocketWay>(server_->Port());
    return std::make_unique<HttpWay>(server_->HttpPort());
  }
};

INSTANTIATE_TEST_SUITE_P(Ways, Version2Test, testing::Values(Way::kSocket, Way::kHttp));

// tests/end_to_end/last_error_test.cpp has the failures that every library can provoke.
TEST_P(Version2Test, GivesFailuresTheirClassesAndReasons) {
  options_.answer_limit = 64 << 10;
  options_.request_limit = 100'000;
  options_.upload_limit = 100'000;
  options_.token = "secret";
  Start();
  const std::string many =
      "with recursive n(i) as (select 1 union all select i + 1 from n limit 20000) select i from n";
  struct Case {
    std::uint32_t command;
    std::vector<std::string> fields;
    error::Class error_class;
    const char* text;
  };
  const Case cases[] = {
      {900, {"DESIGNDB", "call p(("}, error::kSyntax, "the call cannot be read"},
      {200, {"DESIGNDB"}, error::kSyntax, "a field is missing"},
      {900, {"DESIGNDB", "call nothing()"}, error::kUnknownObject, "no procedure nothing"},
      {9999, {}, error::kNotAllowed, "no such command"},
      {200, {"DESIGNDB", many}, error::kTooLarge, "the answer is larger than 64 KiB"},
      {200,
       {"DESIGNDB", std::string(200'000, ' ')},
       error::kTooLarge,
       "the request is larger than 100000 bytes"}};
  const auto client = Connect();
  for (const Case& c : cases) {
    const Answer answer = client->Ask(FrameOf(c.command, c.fields, "secret"));
    EXPECT_EQ(answer.status, "FAILURE") << c.text;
    EXPECT_EQ(answer.reason.error_class, c.error_class) << c.text;
    EXPECT_THAT(answer.reason.text, HasSubstr(c.text));
    EXPECT_EQ(server_->Served().back().error_class, c.error_class);
  }
  auto file = wire::OutgoingFile::Open(folder_.Write("large", std::string(200'000, 'x')));
  EXPECT_EQ(client->Ask(FrameOf(100, {}, "secret", &*file)).reason,
            (wire::Reason{error::kTooLarge, "the file is larger than 100000 bytes"}));
  EXPECT_EQ(client->Ask(FrameOf(200, {"DESIGNDB", "select 1"}, "secret")).reason, wire::Reason());
}

TEST_P(Version2Test, SaysThatItIsAtWorkAndThatItStops) {
  Start();
  const auto client = Connect();
  EXPECT_TRUE(client->Ask(FrameOf(200, {"DESIGNDB", "select 1"})).progress.empty());
  const Answer answer =
      client->Ask(FrameOf(200, {"DESIGNDB", kForever}), [this] { server_->Stop(); });
  EXPECT_EQ(answer.reason, (wire::Reason{error::kBusy, "the server is stopping"}));
  EXPECT_EQ(server_->Served().back().error_class, error::kBusy);
  ASSERT_FALSE(answer.progress.empty());
  EXPECT_GE(answer.progress.front(), milliseconds(1000));
  EXPECT_LE(answer.progress.size(), 2U);
}

TEST_P(Version2Test, LetsGoOfAClientThatOnlySaysHello) {
  options_.first_timeout = milliseconds(100);
  Start();
  RawClient client(GetParam() == Way::kHttp ? server_->HttpPort() : server_->Port());
  EXPECT_TRUE(client.Send(kHello));
  EXPECT_EQ(client.Read(kHello.size()), kHello);
  EXPECT_TRUE(client.IsHungUpOn());
}

TEST_P(Version2Test, TellsClientsThatItIsFullBeforeTheyAsk) {
  options_.connection_limit = 1;
  Start();
  {
    const auto admitted = Connect();
    EXPECT_EQ(admitted->Ask(FrameOf(3, {})).status, "SUCCESS");
    for (int i = 0; i < 20; ++i) {
      EXPECT_THAT(Connect()->AskWhetherBusy(), HasSubstr("1 of 1 places"));
    }
    for (const std::uint16_t port : {server_->Port(), server_->HttpPort()}) {
      RawClient old(port);
      EXPECT_TRUE(old.Send(FrameOf(3, {})));
      EXPECT_TRUE(old.IsHungUpOn()) << "both ports share one limit";
    }
    EXPECT_EQ(admitted->Ask(FrameOf(3, {})).status, "SUCCESS");
  }
  const auto start = std::chrono::steady_clock::now();
  bool is_busy = true;
  while (is_busy && std::chrono::steady_clock::now() - start < kPatience) {
    is_busy = !Connect()->AskWhetherBusy().empty();
  }
  EXPECT_FALSE(is_busy);
  for (const ServedCommand& one : server_->Served()) {
    EXPECT_EQ(one.command == 0, one.error_class == error::kBusy) << "nothing ran";
  }
}

}  // namespace
}  // namespace qv::standin
