// The same database calls over every way to a database: the socket, the web, and directly.
#include <algorithm>
#include <cstdio>
#include <memory>

#include "EndToEnd.h"
#include "base/platform/Folder.h"
#include "base/platform/Platform.h"

namespace qv {
namespace {

enum class Way { kSocket, kWeb, kDirect };

class EveryWay : public EndToEnd, public testing::WithParamInterface<Way> {
 protected:
  EveryWay() {
    const std::filesystem::path data = folder_.Path() / "data";
    std::filesystem::create_directory(data);
    const std::string database = (data / "db/DESIGNDB.sqlite").generic_string();
    const std::string settings =
        R"({"DESIGNDB": {"connection_text": "Driver=SQLite3;Database=)" + database + R"("}})";
    const std::string file = (data / "databases.json").string();
    std::fputs(settings.c_str(),
               platform::FilePtr(platform::CreatePrivateFile(file, platform::Create::kNew)).get());
    StandInOptions options = Options();
    options.http_port = 0;
    options.memory_threshold = 20'000;
    options.compress = true;
    server_ = Serve(options);
    const bool web = GetParam() == Way::kWeb;
    ConnectTo(web ? server_->HttpPort() : server_->Port(), web);
    if (GetParam() == Way::kDirect) {
      CRvoServer::UseLocalDB(1);
      CRvoServer::CareOpenDBConn(0);  // the connection text comes from the server, for each call
    }
  }
  ~EveryWay() override {
    CRvoServer::UseLocalDB(0);
    CRvoServer::CareOpenDBConn(1);
  }

  // Returns the value for the way that is tested.
  template <class Value>
  static Value Per(Value socket, Value web, Value direct) {
    return GetParam() == Way::kSocket ? socket : GetParam() == Way::kWeb ? web : direct;
  }
  // Returns the commands that the server has received since the last call, except those for the
  // settings and for connection texts.
  std::vector<std::uint32_t> Asked() {
    std::vector<std::uint32_t> commands;
    const auto served = server_->Served();
    for (; asked_ < served.size(); ++asked_) {
      const ServedCommand& command = served[asked_];
      if (command.database != "PLATDB" && command.command != 710) {
        commands.push_back(command.command);
      }
    }
    return commands;
  }
  using Commands = std::vector<std::uint32_t>;

  std::unique_ptr<StandIn> server_;
  std::size_t asked_ = 0;
};

TEST_P(EveryWay, QueriesGiveTheSameCells) {
  const std::string rows = Rows(kAllTypes);
  const std::string first = rows.substr(0, rows.find('\n'));
  // Entities, Chinese text, a boolean, 64 bits held in 32, dates, doubles, null.
  EXPECT_TRUE(
      first.starts_with("1|D00001-ST|结构计算书 <1> \"A&B\"|1|0|2147483647|2018-02-01 "
                        "09:52:31||2018-11-04 00:00:00|0.000000|张伟|"))
      << first;
  // The first query loads the settings, so that this one asks for a compressed answer over sockets.
  EXPECT_EQ(Asked(), Per<Commands>({210}, {200}, {}));
  if (GetParam() == Way::kDirect) {
    CRvoServer::UseLocalDB(0);
    EXPECT_TRUE(rows == Rows(kAllTypes));  // as over the socket; too many to print
    CRvoServer::UseLocalDB(1);
  }
  DropBinaryCells();
  EXPECT_EQ(Rows("select id, name from projects where id < 0"), "");
}

TEST_P(EveryWay, QueriesAreRefused) {
  EXPECT_EQ(Rows("select * from nothing"), Per("result 3", "result 3", "result 1"));
  EXPECT_EQ(Rows(""), "result 1");
  CRvoDbRes rows;
  const CString sql("select 1");
  EXPECT_EQ(CRvoDatabase::SelectSQL(&sql, &rows, "UNKNOWN", 0), Per(3, 3, 1));
  EXPECT_EQ(CRvoDatabase::ExecuteSQL(&sql, "UNKNOWN"), 1);
}

TEST_P(EveryWay, StatementsWrite) {
  const char* const names = "select name from projects where id < 3 order by id";
  EXPECT_EQ(Execute("update projects set name = '第一 <&>' where id = 1"), 0);
  EXPECT_EQ(Execute("update projects set name = '' where id = 2"), 0);
  EXPECT_EQ(Execute("update nothing set x = 1"), 1);
  EXPECT_EQ(Execute(""), 1);
  EXPECT_EQ(Asked(), Per<Commands>({300, 300, 300}, {300, 300, 300}, {}));
  EXPECT_EQ(Rows(names), "第一 <&>|\n|\n");
}

TEST_P(EveryWay, BatchesAreWholeOrAbsent) {
  const char* const names = "select name from projects where id < 3 order by id";
  const std::string before = Rows(names);
  const std::vector<std::string> batch = {"update projects set name = 'one' where id = 1",
                                          "update projects set name = 'two' where id = 2"};
  auto refused = batch;
  refused.push_back("nonsense");
  Asked();
  // Batches use the socket even if the server is a web server; direct access has none.
  EXPECT_EQ(ExecuteBatch(refused), Per(103, 103, -1));
  EXPECT_EQ(Rows(names), before);
  EXPECT_EQ(ExecuteBatch(batch), Per(0, 0, -1));
  EXPECT_EQ(Asked(), Per<Commands>({310, 210, 310}, {310, 200, 310}, {}));
  EXPECT_EQ(Rows(names), GetParam() == Way::kDirect ? before : "one|\ntwo|\n");
  EXPECT_EQ(ExecuteBatch({}), Per(0, 0, -1));
  // More than a request holds: the server receives one field too few, and runs no statement.
  const std::string comment = "/*" + std::string(700'000, 'x') + "*/";
  EXPECT_NE(ExecuteBatch({batch[0] + comment, batch[1] + comment, "delete from projects"}), 0);
  EXPECT_NE(Rows(names), "");
}

TEST_P(EveryWay, ProceduresGiveRows) {
  const char* const call = "call parts_heavier_than(2000, 3)";
  const std::string rows = Rows(call, 0, CRvoDatabase::ExecuteSP);
  if (GetParam() == Way::kDirect) {
    EXPECT_EQ(rows, "result 1");  // this database has none of its own
  } else {
    EXPECT_EQ(std::count(rows.begin(), rows.end(), '\n'), 3);
  }
  EXPECT_EQ(Rows("call no_such_thing()", 0, CRvoDatabase::ExecuteSP),
            Per("result 3", "result 3", "result 1"));
  EXPECT_EQ(Rows("", 0, CRvoDatabase::ExecuteSP), "result 1");
  EXPECT_EQ(Rows("select count(*) as n from parts", 0, CRvoDatabase::ExecuteSP), "3000|\n");
}

TEST_P(EveryWay, OfflineIsWhatTheSocketKnows) {
  const char* const query = "select id, name from projects order by id";
  const std::string online = Rows(query, 1);
  CRvoServer::SetCacheState(1);
  server_->Stop();
  EXPECT_EQ(Rows(query, 1), Per<std::string>(online, "result -1", "result 1"));
  EXPECT_EQ(Rows("select 1 as unknown", 1), Per("result 1", "result -1", "result 1"));
  EXPECT_EQ(Execute("delete from projects"), Per(1, -1, 1));
  EXPECT_EQ(ExecuteBatch({"delete from projects"}), -1);
  EXPECT_TRUE(std::filesystem::is_empty(folder_.Path() / "temp"));
}

constexpr const char* kNames[] = {"Socket", "Web", "Direct"};

INSTANTIATE_TEST_SUITE_P(Ways, EveryWay, testing::Values(Way::kSocket, Way::kWeb, Way::kDirect),
                         [](const auto& way) { return kNames[static_cast<int>(way.param)]; });

}  // namespace
}  // namespace qv
