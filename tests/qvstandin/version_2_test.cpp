// Tests what the server sends to clients that know frames of version 2, over both transports.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
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
  virtual Answer Ask(const std::string& frame) = 0;
  // Returns the reason if the server says that it is busy.
  virtual std::string AskWhetherBusy() = 0;
};

class SocketWay : public Client, RawClient {
 public:
  using RawClient::RawClient;
  Answer Ask(const std::string& frame) override {
    if (!std::exchange(has_said_hello_, true)) {
      EXPECT_TRUE(Send(kHello));
      EXPECT_EQ(Read(kHello.size()), kHello);
    }
    EXPECT_TRUE(Send(frame));
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
  Answer Ask(const std::string& frame) override {
    const HttpReply reply = HttpClient::Ask(Call(frame, kFrame2));
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

TEST_P(Version2Test, GivesEveryFailureItsClassAndItsReason) {
  options_.statement_limit = milliseconds(1500);
  options_.answer_limit = 64 << 10;
  options_.request_limit = 100'000;
  options_.token = "secret";
  Start();
  std::ofstream(folder_.Path() / "db" / "BROKEN.sqlite") << std::string(4096, 'x');
  const std::string many =
      "with recursive n(i) as (select 1 union all select i + 1 from n limit 20000) select i from n";
  struct Case {
    std::uint32_t command;
    std::vector<std::string> fields;
    error::Class error_class;
    const char* text;
  };
  const Case cases[] = {
      {200, {"DESIGNDB", "selec x"}, error::kSyntax, "near \"selec\": syntax error"},
      {900, {"DESIGNDB", "call p(("}, error::kSyntax, "the call cannot be read"},
      {200, {"DESIGNDB"}, error::kSyntax, "a field is missing"},
      {200, {"DESIGNDB", "select 1 from nowhere"}, error::kUnknownObject, "no such table: nowhere"},
      {900, {"DESIGNDB", "call nothing()"}, error::kUnknownObject, "no procedure nothing"},
      {200, {"NODB", "select 1"}, error::kUnknownDatabase, "no such database"},
      {200, {"DESIGNDB", "delete from parts"}, error::kNotAllowed, "a query must only read"},
      {9999, {}, error::kNotAllowed, "no such command"},
      {300,
       {"DESIGNDB", "insert into projects select * from projects"},
       error::kConstraint,
       "constraint failed"},
      {200, {"DESIGNDB", kForever}, error::kTimeLimit, "the statement took longer than 1500 ms"},
      {200, {"DESIGNDB", many}, error::kTooLarge, "the answer is larger than 64 KiB"},
      {200, {"DESIGNDB", "select zeroblob(3000000)"}, error::kTooLarge, "longer than 1 MiB"},
      {200,
       {"DESIGNDB", std::string(200'000, ' ')},
       error::kTooLarge,
       "the request is larger than 100000 bytes"},
      {200, {"BROKEN", "select 1 from x"}, error::kInternal, "file is not a database"}};
  const auto client = Connect();
  for (const Case& c : cases) {
    const Answer answer = client->Ask(FrameOf(c.command, c.fields, "secret"));
    EXPECT_EQ(answer.status, "FAILURE") << c.text;
    EXPECT_EQ(answer.reason.error_class, c.error_class) << c.text;
    EXPECT_THAT(answer.reason.text, HasSubstr(c.text));
    EXPECT_EQ(server_->Served().back().error_class, c.error_class);
  }
  EXPECT_EQ(client->Ask(FrameOf(200, {"DESIGNDB", "select 1"}, "secret")).reason, wire::Reason());
  const Answer refused = Connect()->Ask(FrameOf(3, {}, "wrong"));
  EXPECT_EQ(refused.reason, (wire::Reason{error::kBadToken, "wrong token"}));
}

TEST_P(Version2Test, SaysThatItIsAtWork) {
  options_.statement_limit = milliseconds(2500);
  Start();
  const auto client = Connect();
  const Answer answer = client->Ask(FrameOf(200, {"DESIGNDB", kForever}));
  EXPECT_EQ(answer.reason.error_class, error::kTimeLimit);
  ASSERT_FALSE(answer.progress.empty());
  EXPECT_GE(answer.progress.front(), milliseconds(1000));
  EXPECT_LE(answer.progress.size(), 2U);
  EXPECT_TRUE(client->Ask(FrameOf(200, {"DESIGNDB", "select 1"})).progress.empty());
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
    RawClient old(server_->Port());
    EXPECT_TRUE(old.Send(FrameOf(3, {})));
    EXPECT_TRUE(old.IsHungUpOn());
    EXPECT_EQ(admitted->Ask(FrameOf(3, {})).status, "SUCCESS");
  }
  const auto start = std::chrono::steady_clock::now();
  bool is_busy = true;
  while (is_busy && std::chrono::steady_clock::now() - start < kPatience) {
    is_busy = !Connect()->AskWhetherBusy().empty();
  }
  EXPECT_FALSE(is_busy);
  EXPECT_EQ(server_->Served().back().command, 3U);
}

}  // namespace
}  // namespace qv::standin
