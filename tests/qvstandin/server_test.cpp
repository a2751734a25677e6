// Tests the server over real connections: frames, tokens, slow, broken and vanished clients.
#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "ServerFixture.h"

namespace qv::standin {
namespace {

using testing::AllOf;

TEST_F(ServerTest, AnswersOneRequestAfterAnotherAndRemembersThem) {
  Start();
  RawClient client(server_->Port());
  const std::string file = folder_.At("answer");
  ASSERT_TRUE(client.Send(FrameOf(3, {})));
  EXPECT_EQ(client.Status(), "SUCCESS");
  ASSERT_TRUE(client.Send(FrameOf(200, {"DESIGNDB", "select * from parts"})));
  EXPECT_EQ(client.Status(file), "SUCCESS");
  EXPECT_TRUE(BytesOf(file).ends_with("</xml>\n"));
  auto unwanted = wire::OutgoingFile::Open(file);
  ASSERT_TRUE(client.Send(FrameOf(210, {"NO\nWHERE", "select 1"}, {}, &*unwanted)));
  EXPECT_EQ(client.Status(), "FAILURE");
  const auto is_served = [](std::uint32_t command, const char* database, const char* outcome) {
    return AllOf(testing::Field("command", &ServedCommand::command, command),
                 testing::Field("database", &ServedCommand::database, database),
                 testing::Field("outcome", &ServedCommand::outcome, outcome));
  };
  const auto served = server_->Served();
  ASSERT_THAT(served,
              testing::ElementsAre(is_served(3, "", "done"), is_served(200, "DESIGNDB", "done"),
                                   is_served(210, "NO\nWHERE", "no such database: NO\nWHERE")));
  EXPECT_GT(served[1].bytes, BytesOf(file).size());
}

TEST_F(ServerTest, HangsUpOnWhatIsNoFrameAndServesOthers) {
  options_.request_limit = 100;
  Start();
  wire::FrameHeader large;
  large.payload_length = 101;
  const auto header = wire::EncodeHeader(large);
  const std::string oversized(header.begin(), header.end());
  for (const std::string& bytes : {std::string(400, 'x'), oversized}) {
    RawClient client(server_->Port());
    ASSERT_TRUE(client.Send(bytes));
    EXPECT_TRUE(client.IsHungUpOn());
    EXPECT_NE(server_->Served().back().error_class, error::kNone);
  }
  RawClient client(server_->Port());
  ASSERT_TRUE(client.Send(FrameOf(3, {})));
  EXPECT_EQ(client.Status(), "SUCCESS");
}

TEST_F(ServerTest, ReadsOnBehindWhatCameEarly) {
  Start();
  RawClient client(server_->Port());
  const std::string slow = "with recursive n(i) as (select 1 union all select i + 1 from n limit ";
  ASSERT_TRUE(client.Send(FrameOf(200, {"DESIGNDB", slow + "300000) select count(*) from n"})));
  ASSERT_TRUE(client.Send(FrameOf(3, {})) && client.Send(FrameOf(9999, {})));
  EXPECT_EQ(client.Status(), "SUCCESS");
  EXPECT_EQ(client.Status(), "SUCCESS");
  EXPECT_EQ(client.Status(), "FAILURE");
}

TEST_F(ServerTest, KeepsNoFileOpenForAClientThatPauses) {
  Start();
  RawClient client(server_->Port());
  EXPECT_TRUE(client.Send(FrameOf(200, {"DESIGNDB", "select count(*) from people"})));
  EXPECT_EQ(client.Status(), "SUCCESS");
  const std::string log = folder_.At("db/DESIGNDB.sqlite-wal");
  EXPECT_TRUE(std::filesystem::exists(log));
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (std::filesystem::exists(log) && std::chrono::steady_clock::now() < end) {
    std::this_thread::yield();
  }
  EXPECT_FALSE(std::filesystem::exists(log));
}

TEST_F(ServerTest, StartsOnlyWithAFolderOfItsOwnAndAnAddress) {
  std::string error;
  options_.data_folder = folder_.Write("file", "x");
  EXPECT_FALSE(StandIn(options_).Start(&error));
  EXPECT_FALSE(error.empty());
  options_.data_folder = folder_.At();
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
