// The reasons for which calls fail, as hosts get them.
#include <gmock/gmock.h>

#include <cstdint>

#include "EndToEnd.h"
#include "tests/support/HttpSide.h"
#include "tests/support/ScriptedServer.h"
#include "tools/qvstandin/databases/Sqlite.h"

namespace qv {
namespace {

using standin::SqliteConnection;
using standin::WorkLimit;
using testing::Pair;

class LastError : public EndToEnd {
 protected:
  LastError() { CRvoDatabase::m_NeedUpdateCompressState = 0; }
  ~LastError() override { CRvoServer::UseLocalDB(0); }

  static std::pair<int, std::string> Error() {
    return {CRvoServer::GetLastErrorClass(),
            static_cast<const char*>(CRvoServer::GetLastErrorText())};
  }
  // Answers every request over sockets or HTTP with a reply that has `payload` and `reason`.
  static ScriptedServer::Script Answering(bool web, const std::string& payload,
                                          const wire::Reason& reason) {
    const auto encoded = wire::EncodeReason(reason);
    MemoryStream reply;
    static_cast<void>(SendWhole(reply, wire::FrameKind::kReplyWithReason,
                                {.token = {encoded.begin(), encoded.end()}, .payload = payload}));
    return [web, answer = reply.written](ServerSide& side) {
      WholeFrame request;
      HttpRequestSeen web_request;
      while (web ? ReceiveHttp(side, web_request) : side.Receive(request)) {
        side.Write({BytesOfText(web ? HttpAnswer(answer) : answer)});
      }
    };
  }
};

const std::string kRefused = Field("FAILURE") + Field({"\6\0\0\0", 4});

TEST_F(LastError, IsTheServersForEveryKindOfCallAndEndsWithTheNext) {
  const struct {
    const char* what;
    std::string (*call)();
    const char* result;
  } calls[] = {
      {"query", [] { return Rows("selekt 1"); }, "result 3"},
      {"procedure", [] { return Rows("exec none", 0, CRvoDatabase::ExecuteSP); }, "result 3"},
      {"statement", [] { return std::to_string(Execute("selekt 1")); }, "1"},
  };
  for (const bool web : {false, true}) {
    const ScriptedServer server(
        Answering(web, kRefused, {error::kSyntax, "near \"selekt\": syntax error"}));
    const ScriptedServer content(Answering(web, Field("SUCCESS"), {}));
    for (const auto& one : calls) {
      SCOPED_TRACE(std::string(one.what) + (web ? " over the web" : ""));
      ConnectTo(server.Port(), web);
      EXPECT_EQ(one.call(), one.result);
      EXPECT_THAT(Error(), Pair(error::kSyntax, "near \"selekt\": syntax error"));
      std::thread([] { EXPECT_EQ(CRvoServer::GetLastErrorClass(), 0); }).join();
      ConnectTo(content.Port(), web);
      EXPECT_EQ(Execute("update x"), 0);
      EXPECT_THAT(Error(), Pair(error::kNone, ""));
    }
  }
}

TEST_F(LastError, HasEveryClassOfTheServersOverBothTransports) {
  StandInOptions options = Options();
  options.http_port = 0;
  options.statement_limit = std::chrono::milliseconds(500);
  const auto server = Serve(options);
  options.data_folder = folder_.At("guarded");
  options.token = "secret";
  const auto guarded = Serve(options);
  CRvoDatabase::m_NeedUpdateCompressState = 0;
  folder_.Write("data/db/BROKEN.sqlite", std::string(4096, 'x'));
  const std::string path = folder_.At("data/db/DESIGNDB.sqlite");
  const SqliteConnection other = standin::OpenSqlite(path);
  const struct {
    error::Class error_class;
    const char* text;
    const char* sql;
    const char* database = "DESIGNDB";
    bool is_query = true;
  } cases[] = {
      {error::kSyntax, "near \"selekt\": syntax error", "selekt 1"},
      {error::kUnknownObject, "no such table: none", "select * from none"},
      {error::kUnknownDatabase, "no such database: NONE", "select 1", "NONE"},
      {error::kNotAllowed, "a query must only read", "delete from parts"},
      {error::kConstraint, "UNIQUE constraint failed", "insert into parts select * from parts",
       "DESIGNDB", false},
      {error::kTimeLimit, "the statement took longer than 500 ms",
       "with recursive n(i) as (select 1 union all select i + 1 from n) select count(*) from n"},
      {error::kBusy, "the database is locked", "delete from parts", "DESIGNDB", false},
      {error::kTooLarge, "longer than 1 MiB", "select zeroblob(3000000)"},
      {error::kBadToken, "wrong token", "select 1"},
      {error::kInternal, "file is not a database", "select * from x", "BROKEN"},
  };
  for (const bool web : {false, true}) {
    for (const auto& one : cases) {
      SCOPED_TRACE(std::string(one.text) + (web ? " over the web" : ""));
      const StandIn& asked = one.error_class == error::kBadToken ? *guarded : *server;
      ConnectTo(web ? asked.HttpPort() : asked.Port(), web);
      const bool is_locked = one.error_class == error::kBusy;
      if (is_locked) sqlite3_exec(other.get(), "begin immediate", nullptr, nullptr, nullptr);
      CRvoDbRes rows;
      const CString sql(one.sql);
      EXPECT_EQ(one.is_query ? CRvoDatabase::SelectSQL(&sql, &rows, one.database, 0)
                             : CRvoDatabase::ExecuteSQL(&sql, one.database),
                one.is_query ? 3 : 1);
      EXPECT_THAT(Error(), Pair(one.error_class, testing::HasSubstr(one.text)));
      EXPECT_EQ(asked.Served().back().error_class, one.error_class);
      if (is_locked) sqlite3_exec(other.get(), "rollback", nullptr, nullptr, nullptr);
    }
  }
}

TEST_F(LastError, IsTheServersForFilesToo) {
  const ScriptedServer server(
      Answering(false, Field("FAILURE"), {error::kUnknownObject, "no such file: a.dwg"}));
  ConnectTo(server.Port(), false);
  const std::string local = folder_.At("a.dwg");
  EXPECT_EQ(CRvoFile::DownLoadServerFile(local.c_str(), "a.dwg"), 2);
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kUnknownObject);
  EXPECT_EQ(CRvoFile::UpLoadFileToServer(local.c_str(), "a.dwg"), -1);
  EXPECT_THAT(Error(), Pair(error::kLocal, "cannot read the file " + local));
  EXPECT_EQ(ExecuteBatch({"x"}), 2);
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kUnknownObject);
}

TEST_F(LastError, IsTheLibrarysIfNobodyElseKnowsOne) {
  // A server of version 1, which has no reasons.
  const ScriptedServer old([](ServerSide& side) {
    WholeFrame request;
    while (side.ReceiveAsOldServer(request)) side.Reply(kRefused);
  });
  ConnectTo(old.Port(), false);
  EXPECT_EQ(Rows("x"), "result 3");
  EXPECT_THAT(Error(), Pair(error::kInternal, "the server refused the query without a reason (6)"));
  EXPECT_EQ(Execute(""), 1);
  EXPECT_THAT(Error(), Pair(error::kLocal, "the statement is empty"));

  const ScriptedServer strange(Answering(false, Field("SUCCESS"), {}));
  ConnectTo(strange.Port(), false);
  EXPECT_EQ(Rows("x"), "result 2");
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kBadReply);

  CRvoDatabase::m_bServerSetCache = 1;
  CRvoServer::SetCacheState(1);
  EXPECT_EQ(Rows("x", 1), "result 1");
  EXPECT_THAT(Error(), Pair(error::kOffline, "offline, and the cache has no answer to this query"));
  EXPECT_EQ(Execute("x"), 1);
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kOffline);
  CRvoServer::SetCacheState(2);
  EXPECT_EQ(CRvoFile::DeleteServerFile("a.dwg"), 0) << "offline, it counts as done";
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kOffline);
  CRvoDatabase::m_bServerSetCache = 0;
}

TEST_F(LastError, IsTheDatabasesInDirectAccessAndAgreesWithTheOlderCall) {
  CRvoServer::UseLocalDB(1);
  EXPECT_EQ(CRvoServer::OpenLocalDB("DESIGNDB", "Driver=none"), 0);
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kLocal);
  const std::string file = (folder_.Path() / "direct.sqlite").generic_string();
  ASSERT_EQ(CRvoServer::OpenLocalDB("DESIGNDB", ("Driver=SQLite3;Database=" + file).c_str()), 1);
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kNone);
  EXPECT_EQ(Execute("create table t (a integer primary key)"), 0);
  EXPECT_EQ(Execute("insert into t values (1)"), 0);
  const std::pair<const char*, int> cases[] = {{"selekt 1", error::kSyntax},
                                               {"select * from none", error::kUnknownObject},
                                               {"select b from t", error::kUnknownObject},
                                               {"insert into t values (1)", error::kConstraint},
                                               {"", error::kLocal}};
  for (const auto& [sql, error_class] : cases) {
    EXPECT_EQ(Execute(sql), 1) << sql;
    EXPECT_EQ(CRvoServer::GetLastErrorClass(), error_class) << sql << ": " << Error().second;
    CString older;
    EXPECT_EQ(CRvoServer::GetLocalDBError(older), 1);
    EXPECT_THAT(static_cast<const char*>(older), testing::HasSubstr(Error().second));
  }
  EXPECT_EQ(Rows("select a from t"), "1|\n");
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kNone);
  EXPECT_EQ(ExecuteBatch({"x"}), -1);
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kLocal);
  CString older;
  EXPECT_EQ(CRvoServer::GetLocalDBError(older), 1);
  EXPECT_EQ(older, "DESIGNDB: local mode does not support batches");
  CRvoServer::CloseLocalDB("DESIGNDB");
}

}  // namespace
}  // namespace qv
