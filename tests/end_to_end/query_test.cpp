#include <gtest/gtest.h>
#include <qvnetcall/QvNetCall4.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "standin/StandIn.h"
#include "tests/support/TempFolder.h"

namespace qv {
namespace {

constexpr const char kAllTypes[] =
    "select d.id, d.number, d.title, d.revision, d.locked, d.size_bytes, d.created, d.remarks, "
    "p.started,"
    " p.budget, u.name, r.scale, r.digest from documents d join projects p on p.id = d.project_id"
    " join people u on u.id = d.author_id join revisions r on r.document_id = d.id order by d.id, "
    "r.revision";

class EndToEnd : public testing::Test {
 protected:
  EndToEnd() {
    CRvoServer::InitNet();
    std::filesystem::create_directory(folder_.Path() / "temp");
    CRvoDatabase::SetFileTempInfo((folder_.Path() / "temp/").c_str());
    CRvoServer::SetCachePath((folder_.Path() / "cache").c_str());
  }
  ~EndToEnd() override {
    CRvoServer::SetCacheState(0);
    CRvoServer::SetCachePath("");
    CRvoServer::FinitNet();
    CRvoDatabase::Ini();
  }

  // Starts a server over the test's data and connects to it.
  std::unique_ptr<StandIn> Serve(std::uint32_t memory_threshold, bool compress) {
    StandInOptions options;
    options.data_folder = (folder_.Path() / "data").string();
    options.memory_threshold = memory_threshold;
    options.compress = compress;
    auto server = std::make_unique<StandIn>(options);
    std::string error;
    EXPECT_TRUE(server->Start(&error)) << error;
    CRvoServer::SetConinfo("127.0.0.1", server->Port());
    CRvoDatabase::SetNeedUpdateCompressState();
    return server;
  }
  // All cells of a query as text, or "result N".
  static std::string Rows(const char* text, int use_cache = 0) {
    CRvoDbRes rows;
    const CString sql(text);
    const int result = CRvoDatabase::SelectSQL(&sql, &rows, "DESIGNDB", use_cache);
    if (result != 0) return "result " + std::to_string(result);
    std::string all;
    for (int row = 0; row < rows.GetRecordCount(); ++row) {
      for (int column = 0; column < rows.GetFieldCount(); ++column) {
        // Binary cells hold the names of files, which differ from call to call.
        const bool binary = rows.GetFiledName(column) == "digest";
        const std::string cell = static_cast<const char*>(rows._str(row, column));
        all += (binary && !cell.empty() ? BytesOf(cell) : cell) + "|";
      }
      all += "\n";
    }
    return all;
  }
  void DropBinaryCells() const {
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / "temp")) {
      EXPECT_TRUE(entry.path().filename().string().starts_with("qvcd_")) << entry.path();
      std::filesystem::remove(entry.path());
    }
  }

  TempFolder folder_;
};

TEST_F(EndToEnd, EveryWayOfAnAnswerGivesTheSameRows) {
  std::string first;
  for (const bool compress : {false, true}) {
    for (const std::uint32_t threshold : {0u, 900u << 10}) {
      const auto server = Serve(threshold, compress);
      const std::string rows = Rows(kAllTypes);
      ASSERT_FALSE(rows.starts_with("result")) << rows;
      if (first.empty()) first = rows;
      EXPECT_EQ(rows, first);
      EXPECT_EQ(server->Served().back().command, compress ? 210u : 200u);
      DropBinaryCells();
    }
  }
  // The first document: entities, Chinese text, a boolean, 64 bits held in 32, dates, doubles, a
  // blob.
  const std::string row = first.substr(0, first.find('\n'));
  EXPECT_TRUE(
      row.starts_with("1|D00001-ST|结构计算书 <1> \"A&B\"|1|0|2147483647|2018-02-01 09:52:31||"))
      << row;
}

TEST_F(EndToEnd, TellsWhatTheServerRefuses) {
  const auto server = Serve(1000, false);
  EXPECT_EQ(Rows("select * from nothing"), "result 3");
  EXPECT_EQ(Rows("delete from parts"), "result 3");
  EXPECT_EQ(Rows(""), "result 1");
  EXPECT_EQ(Rows("select count(*) as n from parts"), "3000|\n");
}

TEST_F(EndToEnd, WritesAndCallsProcedures) {
  const auto server = Serve(1000, false);
  const auto execute = [](const char* text) {
    const CString sql(text);
    return CRvoDatabase::ExecuteSQL(&sql, "DESIGNDB");
  };
  const auto batch = [](const std::vector<const char*>& texts) {
    CStringArray sqls;
    for (const char* const text : texts) sqls.Add(text);
    return CRvoDatabase::ExecuteMultiSQL(&sqls, "DESIGNDB");
  };
  const char* const names = "select name from projects where id < 3 order by id";
  EXPECT_EQ(execute("update projects set name = 'one' where id = 1"), 0);
  EXPECT_EQ(execute("update nothing set x = 1"), 1);
  EXPECT_EQ(batch({"update projects set name = 'two' where id = 2", "nonsense"}), 102);
  EXPECT_TRUE(Rows(names).starts_with("one|\n"));
  EXPECT_EQ(Rows(names).find("two"), std::string::npos);  // all or nothing
  EXPECT_EQ(batch({"update projects set name = 'two' where id = 2"}), 0);
  EXPECT_EQ(Rows(names), "one|\ntwo|\n");
  // More than a request holds: the server hears of one field too few, and runs none of them.
  const std::string comment = "/*" + std::string(700000, 'x') + "*/";
  const std::string large = "update projects set name = 'large' where id = 1 " + comment;
  EXPECT_GT(batch({large.c_str(), large.c_str(), "delete from projects"}), 0);
  EXPECT_EQ(Rows(names), "one|\ntwo|\n");

  CRvoDbRes parts;
  const CString call("call parts_heavier_than(2000, 3)");
  EXPECT_EQ(CRvoDatabase::ExecuteSP(&call, &parts, "DESIGNDB", 0), 0);
  EXPECT_EQ(parts.GetRecordCount(), 3);
}

TEST_F(EndToEnd, GoesOfflineAndComesBack) {
  const char* const query = "select id, name from projects order by id";
  auto server = Serve(1000, false);
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

  StandInOptions options;
  options.data_folder = (folder_.Path() / "data").string();
  options.port = port;
  StandIn again(options);
  ASSERT_TRUE(again.Start());
  EXPECT_EQ(CRvoServer::CheckServerLink("127.0.0.1", port), 1);
  EXPECT_EQ(CRvoServer::GetCacheState(0), 0);
  EXPECT_EQ(Rows("select 1 as never_asked", 1), "1|\n");
  CRvoServer::SetNetClientPara("retry_after_ms", "3000");
}

TEST_F(EndToEnd, SeveralThreadsQueryAtOnce) {
  const auto server = Serve(20000, true);
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

}  // namespace
}  // namespace qv
