// SelectMany and ExecuteMany over the real transports: each call has the result that it has alone.
#include <gmock/gmock.h>

#include <deque>
#include <functional>
#include <thread>

#include "EndToEnd.h"
#include "tests/support/ScriptedServer.h"

namespace qv {
namespace {

using testing::Each;
using testing::ElementsAre;

// Queries or statements, each with a result of its own.
class Batch {
 public:
  explicit Batch(std::vector<std::string> texts, const char* database = "DESIGNDB") {
    for (const std::string& text : texts) Add(text.c_str(), database, 1);
  }
  void Add(const char* text, const char* database, int use_cache) {
    queries_.push_back({&texts_.emplace_back(text), database, use_cache});
    outcomes_.push_back({});
    outcomes_.back().rows = &rows_.emplace_back();
  }
  int Select() {
    return CRvoDatabase::SelectMany(queries_.data(), outcomes_.data(),
                                    static_cast<int>(queries_.size()));
  }
  int Execute() {
    return CRvoDatabase::ExecuteMany(queries_.data(), outcomes_.data(),
                                     static_cast<int>(queries_.size()));
  }
  // The number of the first row's cells and the first cell, the code, the class and the reason.
  static std::string Told(const CRvoDbRes& rows, int code, int error_class, const char* text) {
    std::string cells;
    if (rows.GetRecordCount() > 0) {
      cells = std::to_string(rows.GetFieldCount()) + " " +
              static_cast<const char*>(rows._str(rows.GetRecordCount() - 1, 0));
    }
    return cells + "|" + std::to_string(code) + "|" + std::to_string(error_class) + "|" + text;
  }
  [[nodiscard]] std::vector<std::string> Results() const {
    std::vector<std::string> results;
    for (std::size_t i = 0; i < outcomes_.size(); ++i) {
      const CRvoOutcome& one = outcomes_[i];
      results.push_back(Told(rows_[i], one.code, one.error_class, one.error_text));
    }
    return results;
  }
  // The same of the calls made one by one.
  [[nodiscard]] std::vector<std::string> Alone(bool executes = false) const {
    std::vector<std::string> results;
    for (const CRvoQuery& one : queries_) {
      CRvoDbRes rows;
      const int code = executes
                           ? CRvoDatabase::ExecuteSQL(one.sql, one.database)
                           : CRvoDatabase::SelectSQL(one.sql, &rows, one.database, one.use_cache);
      results.push_back(
          Told(rows, code, CRvoServer::GetLastErrorClass(), CRvoServer::GetLastErrorText()));
    }
    return results;
  }
  [[nodiscard]] std::vector<int> Codes() const {
    std::vector<int> codes;
    for (const CRvoOutcome& one : outcomes_) codes.push_back(one.code);
    return codes;
  }
  [[nodiscard]] std::vector<CRvoOutcome>& Outcomes() { return outcomes_; }

 private:
  std::deque<CString> texts_;
  std::deque<CRvoDbRes> rows_;
  std::vector<CRvoQuery> queries_;
  std::vector<CRvoOutcome> outcomes_;
};

// Selects of every outcome, from one database and another.
Batch MixedSelects() {
  Batch batch({});
  for (int i = 0; i < 25; ++i) {
    const std::string number = std::to_string(i);
    batch.Add(("select " + number + " as n").c_str(), "DESIGNDB", i % 2);
    batch.Add("select * from parts", i % 5 == 0 ? "NOWHERE" : "DESIGNDB", 0);
    batch.Add(i % 3 == 0 ? "" : "selec", "DESIGNDB", 1);
    batch.Add("select name from people order by id", "PLATDB", 1);
  }
  return batch;
}

class Many : public EndToEnd {};

TEST_F(Many, HundredSelectsHaveTheResultsThatTheyHaveAlone) {
  for (const bool web : {false, true}) {
    StandInOptions options = Options();
    options.http_port = 0;
    options.compress = true;
    const auto server = Serve(options);
    ConnectTo(web ? server->HttpPort() : server->Port(), web);
    Batch batch = MixedSelects();
    const auto alone = batch.Alone();
    const auto failed = std::ranges::count_if(
        alone, [](const std::string& one) { return one.find("|0|0|") == std::string::npos; });
    EXPECT_EQ(batch.Select(), failed);
    EXPECT_EQ(batch.Results(), alone);
    EXPECT_EQ(CRvoServer::GetLastErrorClass(), batch.Outcomes()[1].error_class) << "of the first";
    EXPECT_STREQ(CRvoServer::GetLastErrorText(), batch.Outcomes()[1].error_text);
    EXPECT_TRUE(std::filesystem::is_empty(folder_.Path() / "temp"));
  }
}

TEST_F(Many, StatementsRunOnceEachAndOneThatIsRefusedDoesNotStopTheOthers) {
  const auto server = Serve(Options());
  ASSERT_EQ(Execute("create table counted (n integer primary key, runs integer)"), 0);
  std::vector<std::string> texts;
  for (int i = 0; i < 100; ++i) {
    texts.push_back("insert into counted values (" + std::to_string(i) + ", 1)");
  }
  texts[40] = "insert into counted values (3, 1)";
  texts[50] = "";
  texts[60] = "insert into nowhere values (1)";
  Batch batch(texts);
  EXPECT_EQ(batch.Execute(), 3);
  EXPECT_EQ(batch.Outcomes()[40].error_class, error::kConstraint);
  EXPECT_EQ(batch.Outcomes()[50].error_class, error::kLocal);
  EXPECT_EQ(batch.Outcomes()[60].error_class, error::kUnknownObject);
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kConstraint);
  EXPECT_EQ(Rows("select count(*) as a, sum(runs) as b from counted"), "97|97|\n");
  Batch good({"delete from counted where n = 1", "delete from counted where n = 2"});
  EXPECT_EQ(good.Execute(), 0);
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kNone);
  Batch none({});
  EXPECT_EQ(none.Select() + none.Execute(), 0);
  EXPECT_EQ(CRvoDatabase::SelectMany(nullptr, nullptr, -1), 0);
}

TEST_F(Many, RowsThatNobodyWantsAreDroppedAndLargeOnesArrive) {
  StandInOptions options = Options();
  options.memory_threshold = 20'000;  // large answers travel as files
  const auto server = Serve(options);
  Batch batch({"select 1 as n", "select * from parts", "select 3 as n", kAllTypes});
  batch.Outcomes()[0].rows = nullptr;
  EXPECT_EQ(batch.Select(), 0);
  EXPECT_EQ(batch.Outcomes()[1].rows->GetRecordCount(), 3000);
  EXPECT_EQ(batch.Outcomes()[2].rows->GetRecordCount(), 1);
  EXPECT_GT(batch.Outcomes()[3].rows->GetRecordCount(), 10);
  DropBinaryCells();
}

TEST_F(Many, AnswersAreKeptAndGivenOffline) {
  auto server = Serve(Options());
  Batch batch({"select 1 as n", "select 2 as n", "select 3 as n"});
  batch.Add("select 4 as n", "DESIGNDB", 0);
  EXPECT_EQ(batch.Select(), 0);
  server->Stop();
  CRvoServer::SetNetClientPara("retry_after_ms", "3600000");
  Batch lost({"select 1 as n", "select 2 as n", "select 3 as n"});
  EXPECT_EQ(lost.Select(), 1) << "the first finds out that the client is offline";
  EXPECT_THAT(lost.Codes(), ElementsAre(-1, 0, 0));
  Batch offline({"select 1 as n", "select 5 as n", "select 3 as n"});
  offline.Add("select 4 as n", "DESIGNDB", 1);
  EXPECT_EQ(offline.Select(), 2);
  EXPECT_THAT(offline.Codes(), ElementsAre(0, 1, 0, 1));
  EXPECT_EQ(offline.Outcomes()[1].error_class, error::kOffline);
  Batch statements({"delete from a", "delete from b"});
  EXPECT_EQ(statements.Execute(), 2);
  EXPECT_THAT(statements.Codes(), Each(1));
  CRvoServer::SetNetClientPara("retry_after_ms", "3000");
}

TEST_F(Many, WithoutAServerAllFailAfterOneAttempt) {
  CRvoServer::SetConinfo("127.0.0.1", 9);
  CRvoServer::SetServerType("TCP_IP", "127.0.0.1", 9);
  CRvoDatabase::m_bServerSetCache = 0;
  CRvoDatabase::m_NeedUpdateCompressState = 0;
  Batch batch(std::vector<std::string>(50, "select 1 as n"));
  EXPECT_EQ(batch.Select(), 50);
  EXPECT_THAT(batch.Codes(), Each(-1));
  for (const CRvoOutcome& one : batch.Outcomes()) {
    EXPECT_EQ(one.error_class, error::kCannotConnect);
    EXPECT_STREQ(one.error_text, CRvoServer::GetLastErrorText());
  }
}

TEST_F(Many, AWrongTokenAndAnOldServerGiveWhatTheyGiveAlone) {
  StandInOptions options = Options();
  options.token = "another";
  const auto server = Serve(options);
  Batch batch({"select 1 as n", "", "select 3 as n"});
  CRvoServer::SetServerType("TCP_IP", "127.0.0.1", server->Port());
  const auto alone = batch.Alone();
  EXPECT_EQ(batch.Select(), 3);
  EXPECT_EQ(batch.Results(), alone);
  EXPECT_THAT(batch.Codes(), ElementsAre(3, 1, 3));

  ScriptedServer old([](ServerSide& side) {
    for (WholeFrame request; side.Receive(request);) {
      if (!side.Reply(Field("SUCCESS"))) return;
    }
  });
  CRvoServer::SetConinfo("127.0.0.1", old.Port());
  CRvoServer::SetServerType("TCP_IP", "127.0.0.1", old.Port());
  Batch statements({"a", "b", "c"});
  EXPECT_EQ(statements.Execute(), 0);
  EXPECT_EQ(old.Connections(), 2) << "a hello that it does not know, and all calls";
}

TEST_F(Many, AllAreSentBeforeTheFirstAnswer) {
  ScriptedServer server([](ServerSide& side) {
    if (ReceiveWhole(side, wire::FrameKind::kHello3).status != wire::FrameStatus::kDone) return;
    static_cast<void>(wire::SendHello(side, wire::FrameKind::kHello3));
    for (;;) {
      std::vector<WholeFrame> requests(100);
      for (WholeFrame& one : requests) {
        one = ReceiveWhole(side, wire::FrameKind::kNumberedRequest);
        if (one.status != wire::FrameStatus::kDone) return;
        one.payload = Field("SUCCESS");
      }
      for (const WholeFrame& one : requests) {
        if (SendWhole(side, wire::FrameKind::kNumberedReply,
                      {.payload = one.payload, .number = one.number}) != wire::FrameStatus::kDone) {
          return;
        }
      }
    }
  });
  ConnectTo(server.Port(), false);
  CRvoServer::SetServerType("TCP_IP", "127.0.0.1", server.Port());
  for (int i = 0; i < 2; ++i) {
    Batch batch(std::vector<std::string>(100, "delete from parts"));
    EXPECT_EQ(batch.Execute(), 0);
  }
  EXPECT_EQ(server.Connections(), 1);
}

TEST_F(Many, SeveralThreadsAtOnceGetTheirOwnAnswers) {
  const auto server = Serve(Options());
  std::vector<std::thread> threads;
  std::vector<int> wrong(4);
  for (std::size_t thread = 0; thread < wrong.size(); ++thread) {
    threads.emplace_back([thread, &wrong] {
      for (int round = 0; round < 3; ++round) {
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < 40; ++i) {
          texts.push_back("select " + std::to_string(thread * 100 + i) + " as n");
        }
        Batch batch(texts);
        wrong[thread] += batch.Select();
        for (std::size_t i = 0; i < 40; ++i) {
          const CString cell = batch.Outcomes()[i].rows->_str(0, 0);
          wrong[thread] += cell.View() == std::to_string(thread * 100 + i) ? 0 : 1;
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, std::vector<int>(4));
}

}  // namespace
}  // namespace qv
