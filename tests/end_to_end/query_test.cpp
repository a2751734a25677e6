#include <atomic>
#include <cstring>
#include <thread>

#include "EndToEnd.h"

namespace qv {
namespace {

TEST_F(EndToEnd, GoesOfflineAndComesBack) {
  const char* const query = "select id, name from projects order by id";
  auto server = Serve(Options());
  const std::string online = Rows(query, 1);
  ASSERT_FALSE(online.starts_with("result")) << online;
  const std::uint16_t port = server->Port();
  server->Stop();

  CRvoServer::SetNetClientPara("retry_after_ms", "1");
  EXPECT_EQ(CRvoServer::CheckServerLink("127.0.0.1", port), 0);
  EXPECT_EQ(Rows(query, 1), online);
  EXPECT_EQ(CRvoServer::GetCacheState(1), 2);
  EXPECT_EQ(Rows("select 1 as never_asked", 1), "result 1");
  EXPECT_EQ(Rows(query, 0), "result -1");
  EXPECT_TRUE(std::filesystem::is_empty(folder_.Path() / "temp"));

  StandInOptions options = Options();
  options.port = port;
  StandIn again(options);
  ASSERT_TRUE(again.Start());
  EXPECT_EQ(CRvoServer::CheckServerLink("127.0.0.1", port), 1);
  EXPECT_EQ(CRvoServer::GetCacheState(0), 0);
  EXPECT_EQ(Rows("select 1 as never_asked", 1), "1|\n");
  CRvoServer::SetNetClientPara("retry_after_ms", "3000");
}

TEST_F(EndToEnd, SeveralThreadsQueryAtOnce) {
  StandInOptions options = Options();
  options.memory_threshold = 20'000;
  options.compress = true;
  const auto server = Serve(options);
  const std::string expected = Rows("select id, name, budget from projects order by id");
  std::vector<std::thread> threads;
  std::vector<int> wrong(4);
  for (int& count : wrong) {
    threads.emplace_back([&count, &expected] {
      for (int i = 0; i < 10; ++i) {
        if (i == 5) CRvoDatabase::SetNeedUpdateCompressState();
        if (Rows("select id, name, budget from projects order by id", i % 2) != expected) ++count;
        if (Rows("select * from parts").size() < 1000) ++count;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, std::vector<int>(4));
}

TEST_F(EndToEnd, AFullServerAnswersOrIsBusy) {
  StandInOptions options = Options();
  options.http_port = 0;
  options.connection_limit = 64;
  const auto server = Serve(options);
  CRvoDatabase::m_NeedUpdateCompressState = 0;
  for (const bool web : {false, true}) {
    ConnectTo(web ? server->HttpPort() : server->Port(), web);
    std::atomic<int> done = 0;
    std::vector<std::thread> threads(200);
    for (std::thread& thread : threads) {
      thread = std::thread([&done] {
        for (int i = 0; i < 4; ++i) {
          const std::string answer = Rows("select count(*) as n from parts");
          if (answer == "3000|\n") {
            ++done;
          } else {
            EXPECT_EQ(answer, "result -1");
            EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kBusy);
            EXPECT_NE(std::strstr(CRvoServer::GetLastErrorText(), ": 64 of 64 places"), nullptr);
          }
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_GE(done, 64);
    CRvoServer::FinitNet();  // gives the places back
    CRvoServer::InitNet();
  }
}

TEST_F(EndToEnd, AServerThatRefusesToTellItsTypeRefusesTheCallForTheSameReason) {
  StandInOptions options = Options();
  options.connection_limit = 0;
  const auto full = Serve(options);
  EXPECT_EQ(Rows("select 1 as n"), "result -1");
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kBusy);
  full->Stop();
  options = Options();
  options.token = "another";
  const auto guarded = Serve(options);
  EXPECT_EQ(Rows("select 1 as n"), "result 3");
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kBadToken);
}

}  // namespace
}  // namespace qv
