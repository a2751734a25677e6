#include <utility>

#include "DatabaseFixture.h"

namespace qv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Statements : public DatabaseFixture {
 protected:
  static int Execute(const char* text) {
    const CString sql(text);
    return CRvoDatabase::ExecuteSQL(&sql, "DESIGNDB");
  }
  static int ExecuteBatch(const std::vector<const char*>& texts) {
    CStringArray sqls;
    for (const char* const text : texts) sqls.Add(text);
    return CRvoDatabase::ExecuteMultiSQL(&sqls, "DESIGNDB");
  }
  // Returns the text of the first cell, or "result N".
  static std::string Call(int use_cache = 0, const char* text = "call p") {
    CRvoDbRes result;
    const CString sql(text);
    const int code = CRvoDatabase::ExecuteSP(&sql, &result, "DESIGNDB", use_cache);
    if (code != 0) return "result " + std::to_string(code);
    return static_cast<const char*>(result._str(0, 0));
  }
  void UseWebServer() {
    UseServerType("web_iis");
    CRvoServer::SetConinfo("web", 80);
  }
  void GoOffline() {
    CRvoDatabase::m_bServerSetCache = 1;
    CRvoServer::SetCacheState(1);
  }
};

// The scripted transport cannot send calls back to back.
TEST_F(Statements, ManyOverOtherTransportsAreMadeOneByOne) {
  const CString texts[] = {"a", "", "b"};
  const CRvoQuery queries[] = {
      {&texts[0], "DESIGNDB", 0}, {&texts[1], "DESIGNDB", 0}, {&texts[2], "OTHER", 0}};
  const auto run = [&](auto many) {
    CRvoOutcome outcomes[3];
    const int failed = many(queries, outcomes, 3);
    return std::vector{failed, outcomes[0].code, outcomes[1].code, outcomes[2].code};
  };
  const auto asked = [&] {
    std::string all;
    for (const SentRequest& request : std::exchange(transport_.requests, {})) {
      all += std::to_string(request.command) + (request.web ? " web " : " ") + request.fields[0] +
             " " + request.fields[1] + ";";
    }
    return all;
  };
  answer_ = ScriptedReply().Text("SUCCESS");
  EXPECT_THAT(run(CRvoDatabase::ExecuteMany), ElementsAre(1, 0, 1, 0));
  EXPECT_EQ(asked(), "300 DESIGNDB a;300 OTHER b;");
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kLocal);
  answer_ = Memory(Rowset({{"A", "x"}}));
  CRvoDatabase::m_NeedUpdateCompressState = 0;
  EXPECT_THAT(run(CRvoDatabase::SelectMany), ElementsAre(1, 0, 1, 0));
  EXPECT_EQ(asked(), "200 DESIGNDB a;200 OTHER b;");
  UseWebServer();
  answer_ = ScriptedReply().Text("SUCCESS");
  EXPECT_THAT(run(CRvoDatabase::ExecuteMany), ElementsAre(1, 0, 1, 0));
  EXPECT_EQ(asked(), "300 web DESIGNDB a;300 web OTHER b;");
  CRvoServer::UseLocalDB(1);
  FakeLocalDatabase local;
  state_.local_database = &local;
  EXPECT_THAT(run(CRvoDatabase::ExecuteMany), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(run(CRvoDatabase::SelectMany), ElementsAre(0, 0, 0, 0));
  EXPECT_EQ(local.log,
            "execute DESIGNDB a;execute DESIGNDB ;execute OTHER b;"
            "select DESIGNDB a;select DESIGNDB ;select OTHER b;");
  EXPECT_EQ(asked(), "");
}

TEST_F(Statements, OneStatementReturnsTheAgreedCodes) {
  const struct {
    ScriptedReply reply;
    int transport;
    int result;
  } cases[] = {
      {ScriptedReply().Text("SUCCESS"), 0, 0},          {ScriptedReply().Text("success"), 0, 1},
      {ScriptedReply().Text("FAILURE"), 0, 1},          {ScriptedReply(), 0, 1},
      {ScriptedReply().Text("SUCCESS_COMPRESS"), 0, 1}, {ScriptedReply().Text("SUCCESS"), -1, -1},
      {ScriptedReply().Text("SUCCESS"), -2, -2},        {ScriptedReply().Text("SUCCESS"), 7, 7}};
  for (const auto& c : cases) {
    answer_ = c.reply;
    answer_result_ = c.transport;
    EXPECT_EQ(Execute("delete from t"), c.result);
  }
  const SentRequest& request = transport_.requests.back();
  EXPECT_EQ(request.command, 300u);
  EXPECT_THAT(request.fields, ElementsAre("DESIGNDB", "delete from t"));
  EXPECT_EQ(request.message_flag, 0);
  EXPECT_FALSE(request.web);
  EXPECT_EQ(transport_.requests.size(), std::size(cases));  // nothing twice, and no settings

  GoOffline();
  EXPECT_EQ(Execute("delete from t"), 1);
  state_.cache.SetState(0);
  transport_.bad_state = 1;
  transport_.bad_state_questions.clear();
  EXPECT_EQ(Execute(""), 1);
  EXPECT_THAT(transport_.bad_state_questions, IsEmpty());
  EXPECT_EQ(Execute("delete from t"), 1);
  EXPECT_EQ(transport_.requests.size(), std::size(cases));
  CRvoDatabase::m_bServerSetCache = 0;  // offline counts only where caching is allowed
  EXPECT_EQ(Execute("delete from t"), 7);

  UseWebServer();  // knows no offline work
  CRvoDatabase::m_ServerIsCompress = 1;
  answer_ = ScriptedReply().Text("SUCCESS");
  answer_result_ = 0;
  EXPECT_EQ(Execute("delete from t"), 0);
  EXPECT_TRUE(transport_.requests.back().web);
  EXPECT_EQ(transport_.requests.back().compress, 0);
  EXPECT_EQ(transport_.requests.back().server, "web");
  EXPECT_EQ(transport_.requests.back().port, 80u);
  EXPECT_EQ(transport_.requests.size(), std::size(cases) + 2);
}

TEST_F(Statements, ABatchReturnsTheAgreedCodes) {
  const struct {
    ScriptedReply reply;
    int transport;
    int result;
  } cases[] = {{ScriptedReply().Text("SUCCESS"), 0, 0},
               {ScriptedReply().Text("FAILURE").Number(9).Number(3), 0, 103},
               {ScriptedReply().Text("FAILURE").Number(9).Number(-101), 0, -1},
               {ScriptedReply().Text("FAILURE").Number(9).Number(0x7FFFFFFF), 0, -0x7FFFFFFF + 98},
               {ScriptedReply().Text("FAILURE").Number(9), 0, 2},
               {ScriptedReply(), 0, 2},
               {ScriptedReply().Number(9).Number(3), 0, 2},
               {ScriptedReply().Text("success"), 0, 2},
               {ScriptedReply().Text("SUCCESS_COMPRESS"), 0, 2},
               {ScriptedReply().Text("SUCCESS"), -1, -1},
               {ScriptedReply().Text("SUCCESS"), -2, -2}};
  for (const auto& c : cases) {
    answer_ = c.reply;
    answer_result_ = c.transport;
    EXPECT_EQ(ExecuteBatch({"one", "two"}), c.result);
  }
  const SentRequest& request = transport_.requests.back();
  EXPECT_EQ(request.command, 310u);
  EXPECT_THAT(request.fields, ElementsAre("DESIGNDB", std::string("\x02\0\0\0", 4), "one", "two"));
  EXPECT_EQ(request.message_flag, 0);
  EXPECT_EQ(request.request_block, 0x100000u);
  EXPECT_EQ(request.reply_block, 0x100000u);
  EXPECT_EQ(transport_.requests.size(), std::size(cases));  // nothing twice
}

TEST_F(Statements, ABatchAsksForNothingBeforeItIsSent) {
  answer_ = ScriptedReply().Text("SUCCESS");
  UseServerType("");  // asking for the type would be a probe
  CRvoServer::SetConinfo("other", 1);
  CRvoDatabase::m_bServerSetCache = 1;
  state_.cache.SetState(1);
  EXPECT_EQ(ExecuteBatch({}), 0);
  EXPECT_THAT(transport_.requests.back().fields, ElementsAre("DESIGNDB", std::string(4, '\0')));
  EXPECT_EQ(ExecuteBatch({"", "two", "three"}), 0);
  // The empty statement ends the chain; it and all statements after it are missing.
  EXPECT_THAT(transport_.requests.back().fields,
              ElementsAre("DESIGNDB", std::string("\x03\0\0\0", 4)));
  EXPECT_EQ(transport_.requests.size(), 2u);
  UseWebServer();
  EXPECT_EQ(ExecuteBatch({"one"}), 0);
  EXPECT_FALSE(transport_.requests.back().web);
}

TEST_F(Statements, AProcedureFillsAResultSet) {
  const std::string gzip = Gzipped(Rowset({{"A", "packed"}}));
  const struct {
    ScriptedReply reply;
    int transport;
    const char* result;
  } cases[] = {{Memory(Rowset({{"A", "plain"}})), 0, "plain"},
               {Memory(gzip, "SUCCESS_COMPRESS"), 0, "packed"},
               {Memory("no gzip", "SUCCESS_COMPRESS"), 0, "result 10"},
               {Memory("no recordset"), 0, "result 1"},
               {ScriptedReply().Text("FAILURE").Number(1), 0, "result 3"},
               {ScriptedReply(), 0, "result 3"},
               {ScriptedReply().Text("SUCCESS").Number(1), 0, "result 2"},
               {Memory(Rowset({{"A", "plain"}})), 5, "result 5"}};
  for (const auto& c : cases) {
    answer_ = c.reply;
    answer_result_ = c.transport;
    EXPECT_EQ(Call(), c.result);
    EXPECT_THAT(TempFiles(), IsEmpty());
  }
  EXPECT_EQ(Call(0, ""), "result 1");
  EXPECT_EQ(transport_.requests.back().command, 900u);
  EXPECT_EQ(transport_.requests.size(), std::size(cases));  // no settings over the socket
}

TEST_F(Statements, AProcedureOnAWebServerLoadsTheSettingsFirst) {
  UseWebServer();
  settings_answer_ = Memory(DataSet("CI_ServerCompress", "1"));
  answer_ = Memory(DataSet("A", "from the web"));
  EXPECT_EQ(Call(0, ""), "result 1");
  EXPECT_EQ(transport_.requests.size(), 1u);
  EXPECT_EQ(Call(), "from the web");
  EXPECT_EQ(transport_.requests.back().command, 900u);
  EXPECT_EQ(transport_.requests.back().compress, 1);
  EXPECT_EQ(transport_.requests.size(), 2u);  // loaded once

  CRvoDatabase::SetNeedUpdateCompressState();
  settings_result_ = -1;
  EXPECT_EQ(Call(), "from the web");  // it runs without them
}

TEST_F(Statements, AProceduresAnswerIsKeptUnpacked) {
  OpenCache();
  CRvoDatabase::m_bServerSetCache = 1;
  answer_ = Memory(Gzipped(Rowset({{"A", "packed"}})), "SUCCESS_COMPRESS");
  EXPECT_EQ(Call(0), "packed");
  EXPECT_FALSE(state_.cache.Find("main>DESIGNDB:call p", folder_.At()));
  EXPECT_EQ(Call(2), "packed");
  EXPECT_TRUE(state_.cache.Find("main>DESIGNDB:call p", folder_.At()));
  for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / "cache")) {
    EXPECT_FALSE(BytesOf(platform::NarrowFromPath(entry.path())).starts_with("\x1f\x8b"));
  }
  GoOffline();
  const std::size_t sent = transport_.requests.size();
  EXPECT_EQ(Call(1), "packed");
  EXPECT_EQ(Call(1, "call other"), "result 1");
  EXPECT_EQ(transport_.requests.size(), sent);
  EXPECT_EQ(Call(0), "packed");
  EXPECT_EQ(transport_.requests.size(), sent + 1);
  CRvoDatabase::m_bServerSetCache = 0;
  EXPECT_EQ(Call(1), "packed");  // offline counts only where caching is allowed
  EXPECT_EQ(transport_.requests.size(), sent + 2);
  CRvoDatabase::m_bServerSetCache = 1;
  state_.cache.SetState(0);
  transport_.bad_state = 1;
  EXPECT_EQ(Call(0), "packed");
  EXPECT_EQ(state_.cache.State(), 2);  // the network is looked at all the same
}

TEST_F(Statements, RunOnALocalDatabaseWhenToldTo) {
  CRvoServer::UseLocalDB(1);
  EXPECT_EQ(Execute("x"), 1);  // nothing is open
  EXPECT_EQ(Call(), "result 1");
  FakeLocalDatabase local;
  state_.local_database = &local;
  EXPECT_EQ(Execute(""), 0);  // the local database decides about empty texts
  EXPECT_EQ(Call(0, ""), "");
  EXPECT_EQ(ExecuteBatch({"x"}), -1);
  EXPECT_EQ(local.log, "execute DESIGNDB ;select DESIGNDB ;");
  EXPECT_TRUE(transport_.requests.empty());
}

TEST_F(Statements, OpenALocalDatabaseAroundEachCallWhenTheHostDoesNot) {
  CRvoServer::UseLocalDB(2);
  CRvoServer::CareOpenDBConn(0);
  FakeLocalDatabase local;
  local.result = 1;
  state_.local_database = &local;
  answer_ = ScriptedReply().Text("0");  // no connection text: it is tried all the same
  EXPECT_EQ(Execute("x"), 1);
  EXPECT_EQ(Call(), "result 1");
  EXPECT_EQ(local.log,
            "open DESIGNDB ;execute DESIGNDB x;close DESIGNDB;"
            "open DESIGNDB ;select DESIGNDB call p;close DESIGNDB;");
}

TEST_F(Statements, OnlyAProcedureAsksForTheTypeInLocalMode) {
  CRvoServer::UseLocalDB(1);
  FakeLocalDatabase local;
  state_.local_database = &local;
  UseServerType("");  // asking for the type is a probe, which finds no server
  CRvoServer::SetConinfo("other", 1);
  answer_result_ = -1;
  EXPECT_EQ(Execute("x"), 0);
  EXPECT_EQ(ExecuteBatch({"x"}), -1);
  EXPECT_TRUE(transport_.requests.empty());
  EXPECT_EQ(Call(), "");
  EXPECT_EQ(transport_.requests.size(), 1u);
  EXPECT_TRUE(local.log.starts_with("execute DESIGNDB x;select PLATDB select CI_"));
}

}  // namespace
}  // namespace qv::test
