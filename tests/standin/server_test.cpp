// The server over real connections: frames, tokens, slow, broken and vanished clients.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/asio/ip/address.hpp>
#include <future>
#include <string>
#include <vector>

#include "ServerFixture.h"
#include "message/LittleEndian.h"
#include "standin/ClientStream.h"
#include "standin/FieldReader.h"
#include "standin/FieldWriter.h"
#include "transports/frame/FrameIo.h"

namespace qv::standin {
namespace {

Bytes BytesIn(const std::string& text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

class Client {
 public:
  explicit Client(const StandIn& server) : stream_(kPatience) {
    stream_.Peer().connect({boost::asio::ip::make_address("127.0.0.1"), server.Port()});
  }

  [[nodiscard]] bool Send(std::uint32_t command, const std::vector<std::string>& fields,
                          const std::string& token = {}, OutgoingFile* file = nullptr) {
    std::vector<unsigned char> block(kFrameBlockSize);
    StoreU32(block.data(), command);
    FieldWriter writer;
    for (const std::string& field : fields) writer.Text(field);
    const OutgoingMessage message{FrameKind::kRequest, BytesIn(token), block, writer.Payload()};
    return SendFrame(stream_, message, file) == FrameStatus::kDone;
  }

  // The reply's first field, when a whole reply comes; its file goes to `path`.
  std::optional<std::string> Status(const std::string& path = {}) {
    FrameHeader header;
    if (ReceiveHeader(stream_, FrameKind::kReply, {}, header) != FrameStatus::kDone) return {};
    std::vector<unsigned char> block(kFrameBlockSize);
    std::vector<unsigned char> payload(header.payload_length);
    if (ReceiveMessage(stream_, {{}, block, payload}) != FrameStatus::kDone) return {};
    if (header.file_length &&
        ReceiveFile(stream_, *header.file_length, path) != FrameStatus::kDone) {
      return {};
    }
    return FieldReader(payload).Text();
  }

  [[nodiscard]] bool SendRaw(const std::string& bytes) { return stream_.Write({BytesIn(bytes)}); }
  [[nodiscard]] bool IsHungUpOn() {
    const auto start = std::chrono::steady_clock::now();
    return !Status() && std::chrono::steady_clock::now() - start < kPatience;
  }
  void HangUp() { stream_.HangUp(); }

 private:
  ClientStream stream_;
};

TEST_F(ServerTest, AnswersOneRequestAfterAnotherAndRemembersThem) {
  Start();
  Client client(*server_);
  const std::string file = (folder_.Path() / "answer").string();
  ASSERT_TRUE(client.Send(3, {}));
  EXPECT_EQ(client.Status(), "SUCCESS");
  ASSERT_TRUE(client.Send(200, {"DESIGNDB", "select * from parts"}));
  EXPECT_EQ(client.Status(file), "SUCCESS");
  EXPECT_TRUE(BytesOf(file).ends_with("</xml>\n"));
  auto unwanted = OutgoingFile::Open(file);
  ASSERT_TRUE(client.Send(210, {"NO\nWHERE", "select 1"}, {}, &*unwanted));
  EXPECT_EQ(client.Status(), "FAILURE");
  const auto served = server_->Served();
  ASSERT_EQ(served.size(), 3U);
  EXPECT_EQ(served[1].command, 200U);
  EXPECT_EQ(served[1].database, "DESIGNDB");
  EXPECT_EQ(served[1].outcome, "done");
  EXPECT_GT(served[1].bytes, BytesOf(file).size());
  EXPECT_EQ(served[2].database, "NO\\x0aWHERE");
  EXPECT_EQ(served[2].outcome, "no such database");
}

TEST_F(ServerTest, WithoutTheTokenNobodyEnters) {
  options_.token = "secret";
  Start();
  for (const char* token : {"", "secre", "secretsecret", "Secret"}) {
    Client client(*server_);
    ASSERT_TRUE(client.Send(3, {}, token));
    EXPECT_EQ(client.Status(), "FAILURE") << token;
    EXPECT_TRUE(client.IsHungUpOn());
  }
  Client client(*server_);
  ASSERT_TRUE(client.Send(3, {}, "secret"));
  EXPECT_EQ(client.Status(), "SUCCESS");
}

TEST_F(ServerTest, HangsUpOnWhatIsNoFrameAndServesOthers) {
  options_.request_limit = 100;
  Start();
  FrameHeader large;
  large.payload_length = 101;
  const auto header = EncodeHeader(large);
  const std::string oversized(header.begin(), header.end());
  for (const std::string& bytes : {std::string(400, 'x'), oversized}) {
    Client client(*server_);
    ASSERT_TRUE(client.SendRaw(bytes));
    EXPECT_TRUE(client.IsHungUpOn());
  }
  EXPECT_EQ(server_->MalformedFrames(), 2U);
  Client client(*server_);
  ASSERT_TRUE(client.Send(3, {}));
  EXPECT_EQ(client.Status(), "SUCCESS");
}

TEST_F(ServerTest, HangsUpOnTheIdleAndTheSurplus) {
  options_.idle_timeout = std::chrono::milliseconds(500);
  options_.connection_limit = 1;
  Start();
  Client idle(*server_);
  ASSERT_TRUE(idle.Send(3, {}));
  EXPECT_EQ(idle.Status(), "SUCCESS");
  EXPECT_TRUE(Client(*server_).IsHungUpOn()) << "the surplus";
  EXPECT_TRUE(idle.IsHungUpOn());
}

TEST_F(ServerTest, HangsUpOnTheSlowAndTheSilent) {
  options_.io_timeout = std::chrono::milliseconds(30);
  Start();
  Client silent(*server_);
  Client slow(*server_);
  ASSERT_TRUE(slow.SendRaw("Q"));
  EXPECT_TRUE(slow.IsHungUpOn());
  EXPECT_TRUE(silent.IsHungUpOn());
}

TEST_F(ServerTest, ReadsOnBehindWhatCameEarly) {
  Start();
  Client client(*server_);
  const std::string slow = "with recursive n(i) as (select 1 union all select i + 1 from n limit ";
  ASSERT_TRUE(client.Send(200, {"DESIGNDB", slow + "300000) select count(*) from n"}));
  ASSERT_TRUE(client.Send(3, {}) && client.Send(6015, {}));
  EXPECT_EQ(client.Status(), "SUCCESS");
  EXPECT_EQ(client.Status(), "SUCCESS");
  EXPECT_EQ(client.Status(), "FAILURE");
}

TEST_F(ServerTest, StopsWhileClientsHangAndQueriesRun) {
  Start();
  Client half(*server_);
  Client busy(*server_);
  Client idle(*server_);
  ASSERT_TRUE(half.SendRaw("QvN4"));
  ASSERT_TRUE(busy.Send(200, {"DESIGNDB", kForever}));
  const auto start = std::chrono::steady_clock::now();
  server_->Stop();
  EXPECT_LT(std::chrono::steady_clock::now() - start, kPatience);
  EXPECT_TRUE(idle.IsHungUpOn());
  EXPECT_NE(busy.Status(), "SUCCESS");
}

TEST_F(ServerTest, EndsTheQueryOfAClientThatVanished) {
  std::promise<ServedCommand> served;
  options_.on_served = [&](const ServedCommand& command) { served.set_value(command); };
  Start();
  {
    Client client(*server_);
    ASSERT_TRUE(client.Send(200, {"DESIGNDB", kForever}) && client.SendRaw("behind"));
    client.HangUp();
  }
  auto future = served.get_future();
  ASSERT_EQ(future.wait_for(kPatience), std::future_status::ready);
  EXPECT_EQ(future.get().outcome, "cut off");
}

TEST_F(ServerTest, StartsOnlyWithAFolderOfItsOwnAndAnAddress) {
  std::string error;
  options_.data_folder = folder_.Write("file", "x");
  EXPECT_FALSE(StandIn(options_).Start(&error));
  EXPECT_FALSE(error.empty());
  options_.data_folder = folder_.Path().string();
  options_.listen = "nowhere";
  EXPECT_FALSE(StandIn(options_).Start());
  options_.listen = "127.0.0.1";
  Start();
  StandIn second(options_);
  EXPECT_FALSE(second.Start(&error));
  EXPECT_THAT(error, testing::HasSubstr("another server"));
  server_->Stop();
  EXPECT_TRUE(second.Start(&error)) << error;
}

}  // namespace
}  // namespace qv::standin
