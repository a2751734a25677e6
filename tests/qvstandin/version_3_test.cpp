// Tests what the server does with requests that come before the replies to earlier ones.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "ServerFixture.h"

namespace qv::standin {
namespace {

using testing::ElementsAre;
using wire::FrameKind;

constexpr std::size_t kWindow = 256U << 10;
const std::string kHello3 = HeaderOnly(FrameKind::kHello3, 0);
const std::string kSlow =
    "with recursive n(i) as (select 1 union all select i + 1 from n limit 400000) select count(*) "
    "from n";

// Returns a request of the given number whose text is followed by `blanks`.
std::string Numbered(std::uint32_t number, const std::string& text, std::size_t blanks = 0,
                     const std::string& token = {}) {
  WholeFrame frame{.token = token, .number = number};
  StoreU32(frame.block.data(), 200);
  frame.payload = Field("DESIGNDB") + Field(text + std::string(blanks, ' '));
  MemoryStream stream;
  EXPECT_EQ(SendWhole(stream, FrameKind::kNumberedRequest, frame), wire::FrameStatus::kDone);
  return stream.written;
}

class Version3Test : public ServerTest {
 protected:
  RawClient& Connect() {
    if (!server_) Start();
    RawClient& client = client_.emplace(server_->Port());
    EXPECT_TRUE(client.Send(kHello3));
    EXPECT_EQ(client.Read(kHello3.size()), kHello3);
    return client;
  }
  // Returns the number, the status and the reason's class of the next reply, such as "7 SUCCESS 0".
  std::string NextReply() {
    constexpr FrameKind kKinds[] = {FrameKind::kNumberedReply, FrameKind::kReplyWithReason,
                                    FrameKind::kProgress};
    WholeFrame reply;
    do {
      reply = ReceiveWhole(client_->Stream(), kKinds);
      if (reply.status != wire::FrameStatus::kDone) return "none";
    } while (reply.kind == FrameKind::kProgress);
    const auto fields = FieldsOf(reply.payload);
    return std::to_string(reply.number) + " " + (fields.empty() ? "" : fields[0]) + " " +
           std::to_string(wire::DecodeReason(BytesOfText(reply.token)).error_class);
  }

 private:
  std::optional<RawClient> client_;
};

TEST_F(Version3Test, AnswersInOrderWithTheNumbersThatTheClientChose) {
  RawClient& client = Connect();
  ASSERT_TRUE(client.Send(Numbered(7, "select 1") + Numbered(0xFFFFFFFF, "selec") + FrameOf(3, {}) +
                          Numbered(7, kSlow) + Numbered(0, "select 2")));
  std::vector<std::string> replies(5);
  for (std::string& reply : replies) reply = NextReply();
  EXPECT_THAT(replies, ElementsAre("7 SUCCESS 0", "4294967295 FAILURE 1", "0 SUCCESS 0",
                                   "7 SUCCESS 0", "0 SUCCESS 0"));
  EXPECT_EQ(server_->Served().size(), 5U);
}

TEST_F(Version3Test, TakesAWholeWindowAheadAndNoMore) {
  const std::size_t overhead = Numbered(1, "").size();
  for (const bool is_too_much : {false, true}) {
    RawClient& client = Connect();
    ASSERT_TRUE(client.Send(Numbered(1, is_too_much ? kForever : kSlow)));
    ASSERT_TRUE(client.Send(Numbered(2, "select 2", kWindow - overhead - 8)));
    if (is_too_much) {
      static_cast<void>(client.Send(Numbered(3, "select 3")));
      EXPECT_EQ(NextReply(), "none");
    } else {
      EXPECT_EQ(NextReply(), "1 SUCCESS 0");
      EXPECT_EQ(NextReply(), "2 SUCCESS 0");
    }
  }
}

TEST_F(Version3Test, NumbersAreForClientsThatSaidSo) {
  Start();
  RawClient without_hello(server_->Port());
  ASSERT_TRUE(without_hello.Send(Numbered(1, "select 1")));
  EXPECT_TRUE(without_hello.IsHungUpOn());
  RawClient client(server_->Port());
  const std::string hello2 = HeaderOnly(FrameKind::kHello, 0);
  ASSERT_TRUE(client.Send(hello2));
  ASSERT_EQ(client.Read(hello2.size()), hello2);
  ASSERT_TRUE(client.Send(Numbered(1, "select 1")));
  EXPECT_EQ(ReceiveWhole(client.Stream(), FrameKind::kReplyWithReason).status,
            wire::FrameStatus::kDone);
  EXPECT_TRUE(client.IsHungUpOn());
}

TEST_F(Version3Test, ExecutesNothingAfterAWrongTokenAndStillReplies) {
  options_.token = "secret";
  RawClient& client = Connect();
  std::string requests = Numbered(1, "select 1", 0, "secret") + Numbered(2, "select 2", 0, "wrong");
  for (std::uint32_t number = 3; number < 40; ++number) {
    requests += Numbered(number, "select 3", 5000, "secret");
  }
  ASSERT_TRUE(client.Send(requests));
  EXPECT_EQ(NextReply(), "1 SUCCESS 0");
  EXPECT_EQ(NextReply(), "2 FAILURE 9");
  EXPECT_EQ(NextReply(), "none");
  EXPECT_EQ(server_->Served().size(), 2U);
}

TEST_F(Version3Test, ABusyServerSaysSoToThisHelloToo) {
  options_.connection_limit = 0;
  Start();
  RawClient client(server_->Port());
  ASSERT_TRUE(client.Send(kHello3));
  wire::FrameHeader header;
  ASSERT_EQ(wire::ReceiveHeader(client.Stream(), wire::kAnswersToHello3, {}, header),
            wire::FrameStatus::kDone);
  EXPECT_EQ(header.kind, FrameKind::kBusy);
}

}  // namespace
}  // namespace qv::standin
