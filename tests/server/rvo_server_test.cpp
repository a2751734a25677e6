#include "qvnetcall/RvoServer.h"

#include <climits>
#include <cstdint>
#include <string>
#include <vector>

#include "resultset/Reading.h"
#include "resultset/readers/ReaderThreads.h"
#include "server/ModuleState.h"
#include "tests/support/ModuleTest.h"

namespace qv {
namespace {

using test::ScriptedReply;
using test::SentRequest;
using Log = std::vector<std::string>;

class RvoServer : public test::ModuleTest {
 protected:
  void Answer(const std::string& text, int result = 0) {
    transport_.handler = [=](const SentRequest&, ScriptedReply& reply) {
      if (!text.empty()) reply.Text(text);
      return result;
    };
  }
  static std::string TypeOf(const char* server, unsigned long port) {
    CString type;
    EXPECT_EQ(CRvoServer::GetServerType(type, server, port), 1);
    return static_cast<const char*>(type);
  }
};

TEST_F(RvoServer, StartsAndStopsTheWebTransportFirst) {
  CRvoServer::InitNet();
  CRvoServer::FinitNet();
  EXPECT_EQ(transport_.life, (Log{"web init", "socket init", "web fini", "socket fini"}));
}

TEST_F(RvoServer, ProbesTheGivenServerQuietly) {
  Log states;
  transport_.handler = [&](const SentRequest& request, ScriptedReply& reply) {
    states.push_back(transport_.parameters["dispmsg"]);
    EXPECT_EQ(request.command, 3u);
    EXPECT_EQ(request.payload, "");
    EXPECT_EQ(request.request_block, 1024u);
    EXPECT_EQ(request.reply_block, 1024u);
    EXPECT_EQ(request.server + ":" + std::to_string(request.port), "other:5000");
    reply.Text("SUCCESS");
    return 0;
  };
  EXPECT_EQ(CRvoServer::CheckServerLink("other", 5000), 1);
  EXPECT_EQ(states, (Log{"0"}));
  EXPECT_EQ(transport_.parameter_log, (Log{"dispmsg=0", "dispmsg=1"}));

  const struct {
    const char* text;
    int result;
    int linked;
  } cases[] = {
      {"SUCCESS", -1, 0}, {"SUCCESS", 1, 1}, {"SUCCESS", -2, 1}, {"success", 0, 0}, {"", 0, 0}};
  for (const auto& c : cases) {
    Answer(c.text, c.result);
    EXPECT_EQ(CRvoServer::CheckServerLink("main", 1), c.linked) << c.text << c.result;
    EXPECT_EQ(transport_.parameters["dispmsg"], "1") << c.text << c.result;
  }
}

TEST_F(RvoServer, FindsItsTypeOncePerServerAndPort) {
  Answer("SUCCESS");
  EXPECT_EQ(TypeOf("main", 1), "TCP_IP");
  Answer("SUCCESS", -1);
  CRvoServer::SetConinfo("elsewhere", 9);  // is not what the memo goes by
  EXPECT_EQ(TypeOf("main", 1), "TCP_IP");
  EXPECT_EQ(TypeOf("main", 2), "WEB_IIS");
  EXPECT_EQ(transport_.requests.size(), 2u);

  UseServerType("own_kind");
  EXPECT_EQ(TypeOf("main", 2), "WEB_IIS");  // a changed file counts for a new server only
  EXPECT_EQ(TypeOf("main", 3), "own_kind");
  EXPECT_EQ(TypeOf("other", 3), "own_kind");
  UseServerType("");
  EXPECT_EQ(TypeOf("main", 3), "WEB_IIS");  // the memo has room for one
  EXPECT_EQ(transport_.requests.size(), 3u);
}

TEST_F(RvoServer, TakesTheHostsWordForItsType) {
  UseServerType("TCP_IP");
  EXPECT_EQ(TypeOf("main", 1), "TCP_IP");
  EXPECT_EQ(CRvoServer::SetServerType("WEB_IIS", "main", 1), 1);
  EXPECT_EQ(TypeOf("main", 1), "WEB_IIS");
  CRvoServer::SetServerType("", "main", 1);
  EXPECT_EQ(TypeOf("main", 1), "TCP_IP");
}

TEST_F(RvoServer, CutsTheTypeAndTheModulesPathAsItsBuffersDo) {
  UseServerType(std::string(120, 't'));
  EXPECT_EQ(TypeOf("main", 1), std::string(99, 't'));
  // Cutting a path removes its file name, and perhaps a folder, but never adds one.
  state_.module_file = folder_.At(std::string(300, 'm'));
  EXPECT_EQ(TypeOf("main", 2), std::string(99, 't'));
}

TEST_F(RvoServer, ReadsAndSetsParametersOfTheStoredServer) {
  CString value = "before";
  EXPECT_EQ(CRvoServer::SetNetClientPara("token", "secret"), 1);
  EXPECT_EQ(CRvoServer::GetNetClientPara("token", value), 1);
  EXPECT_EQ(value, "secret");
  EXPECT_EQ(CRvoServer::GetNetClientPara("unknown", value), 0);
  EXPECT_EQ(value, "secret");
  transport_.parameter_result = 1;  // delivered for every other call
  EXPECT_EQ(CRvoServer::SetNetClientPara("token", "x"), 0);
  EXPECT_EQ(CRvoServer::GetNetClientPara("token", value), 0);
}

TEST_F(RvoServer, GivesTheCacheItsFolderAndClearsIt) {
  const std::string file = folder_.Write("answer", "x");
  EXPECT_EQ(CRvoServer::SetCachePath(file.c_str()), 0);
  EXPECT_EQ(CRvoServer::SetCachePath(folder_.At("cache").c_str()), 1);
  EXPECT_TRUE(state_.cache.Store("key", file, kCachePlain));
  EXPECT_EQ(CRvoServer::ClearCurCache(), 1);
  EXPECT_FALSE(state_.cache.Find("key", folder_.At()));
  EXPECT_EQ(CRvoServer::SetCachePath(nullptr), 1);
  EXPECT_EQ(CRvoServer::ClearCurCache(), 0);  // switched off
}

TEST_F(RvoServer, SetsTheCacheStateAndTellsTheNetwork) {
  UseServerType("TCP_IP");
  const struct {
    int state;
    int result;
    int stored;
    std::vector<int> declared;
  } cases[] = {{1, 1, 1, {}}, {3, 0, 1, {}}, {-1, 0, 1, {}}, {2, 1, 2, {1}}, {0, 1, 0, {1, 0}}};
  for (const auto& c : cases) {
    EXPECT_EQ(CRvoServer::SetCacheState(c.state), c.result) << c.state;
    EXPECT_EQ(state_.cache.State(), c.stored) << c.state;
    EXPECT_EQ(transport_.declared_bad_states, c.declared) << c.state;
  }
}

TEST_F(RvoServer, FollowsTheNetworkUnlessOfflineByChoice) {
  UseServerType("TCP_IP");
  const struct {
    int state;
    int network;
    int expected;
  } cases[] = {{0, 0, 0}, {0, 1, 2}, {2, 0, 0}, {2, 1, 2},
               {1, 0, 1}, {1, 1, 1}, {2, 5, 2}, {0, 5, 0}};
  for (const auto& c : cases) {
    state_.cache.SetState(c.state);
    transport_.bad_state = c.network;
    EXPECT_EQ(CRvoServer::GetCacheState(7), c.expected) << c.state << c.network;
    EXPECT_EQ(state_.cache.State(), c.expected);
  }
  for (const int question : transport_.bad_state_questions) EXPECT_EQ(question, 7);
  transport_.bad_state = 5;
  EXPECT_EQ(CRvoServer::GetIsNetworkBad(1), 5);
  EXPECT_EQ(transport_.bad_state_questions.back(), 1);
}

TEST_F(RvoServer, KnowsNoCacheStateOverTheWeb) {
  UseServerType("web_iis");
  state_.cache.SetState(1);
  EXPECT_EQ(CRvoServer::SetCacheState(2), 0);
  EXPECT_EQ(CRvoServer::GetCacheState(0), 0);
  EXPECT_EQ(state_.cache.State(), 1);
  EXPECT_TRUE(transport_.bad_state_questions.empty());
  char token[32];
  EXPECT_EQ(CRvoServer::GetWebLoginToken(token), 1);
  EXPECT_EQ(std::string(token), "scripted-token");
}

TEST_F(RvoServer, KnowsNoLocalDatabaseThatItDidNotOpen) {
  CString said;
  EXPECT_EQ(CRvoServer::OpenLocalDB("X", "Driver=None there"), 0);
  EXPECT_EQ(CRvoServer::GetLocalDBError(said), 1);
  EXPECT_TRUE(said.View().starts_with("X: ["));
  EXPECT_EQ(CRvoServer::CloseLocalDB("X"), 0);
  EXPECT_EQ(CRvoServer::UseLocalDB(1), 1);
  EXPECT_EQ(CRvoServer::CareOpenDBConn(0), 1);
  EXPECT_EQ(state_.use_local_database, 1);
  EXPECT_EQ(state_.care_open_connection, 0);
}

TEST_F(RvoServer, LimitsAnswersUntilTheDefaultIsWantedBack) {
  const std::uint64_t half_of_memory = ResultLimit();
  EXPECT_EQ(CRvoServer::SetResultLimit(12345), 1);
  EXPECT_EQ(CRvoServer::SetResultLimit(-1), 0);
  EXPECT_EQ(ResultLimit(), 12345U);
  ModuleState::Get().Reset();
  EXPECT_EQ(ResultLimit(), half_of_memory);
  EXPECT_EQ(CRvoServer::SetResultLimit(LLONG_MAX), 1);
  EXPECT_EQ(CRvoServer::SetResultLimit(0), 1);
  EXPECT_EQ(ResultLimit(), half_of_memory);
}

TEST_F(RvoServer, SetsTheNumberOfReaderThreads) {
  const int cores = ReaderThreads();
  const std::pair<int, int> set_and_read[] = {{7, 7}, {65, 64}, {1, 1}, {0, cores}, {3, 3}};
  for (const auto& [set, read] : set_and_read) {
    EXPECT_EQ(CRvoServer::SetReaderThreads(set), 1);
    EXPECT_EQ(CRvoServer::SetReaderThreads(-1), 0);
    EXPECT_EQ(ReaderThreads(), read);
  }
  ModuleState::Get().Reset();
  EXPECT_EQ(ReaderThreads(), cores);
}

}  // namespace
}  // namespace qv
