#include "DatabaseFixture.h"
#include "base/platform/Platform.h"

namespace qv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

int UpdateSettings();
int CanCompress();
int IsOffline(int need_server_cache);

// Defines the functions above for private members: an explicit instantiation may name them.
template <int (*kUpdate)(), int (*kCanCompress)(), int (*kIsOffline)(int)>
struct PrivateMembers {
  friend int UpdateSettings() { return kUpdate(); }
  friend int CanCompress() { return kCanCompress(); }
  friend int IsOffline(int need_server_cache) { return kIsOffline(need_server_cache); }
};
template struct PrivateMembers<&CRvoDatabase::UpdateServerIsCompressInfo,
                               &CRvoDatabase::IsCanUseCompressMode,
                               &CRvoDatabase::IsCanUseOffCache>;

class ServerSettingsLoad : public DatabaseFixture {
 protected:
  static std::string Flags() {
    std::string text;
    for (const int flag :
         {CRvoDatabase::GetServerIsSetCatche(), CRvoDatabase::GetServerIsCompressMode(),
          CRvoDatabase::GetDefaultSelectCompress(), CRvoDatabase::GetDefaultDisplayCompress(),
          CRvoDatabase::GetDefaultDisplayDomain()}) {
      text += std::to_string(flag);
    }
    return text;
  }
  // Loads these settings, whether or not they are due.
  std::string Load(const Settings& settings) {
    settings_ = settings;
    CRvoDatabase::SetNeedUpdateCompressState();
    EXPECT_EQ(UpdateSettings(), 0);
    return Flags();
  }
};

TEST_F(ServerSettingsLoad, AsksTheServerOnce) {
  EXPECT_EQ(Flags(), "00000");
  EXPECT_EQ(CRvoDatabase::m_NeedUpdateCompressState, 1);
  EXPECT_EQ(UpdateSettings(), 0);
  EXPECT_EQ(UpdateSettings(), 0);
  ASSERT_EQ(transport_.requests.size(), 1u);
  ExpectQuery(transport_.requests[0]);
  EXPECT_THAT(transport_.requests[0].fields,
              ElementsAre("PLATDB",
                          "select CI_ServerSetCache,CI_ServerCompress,CI_DefaultSelectCompress,"
                          "CI_DefaultDisplayCompress,CI_DefaultDisplayDomain from "
                          "QvCoMis.dbo.Mxd_sys_BaseInfo"));
  EXPECT_THAT(TempFiles(), IsEmpty());
}

TEST_F(ServerSettingsLoad, TakesTheFirstRow) {
  EXPECT_EQ(Load({"1", "1", "1", "1", "1"}), "11111");
  EXPECT_EQ(Load({"", "", "", "", ""}),
            "10000");  // empty says nothing, and only the first flag outlives a load
  EXPECT_EQ(Load({"2", "2", " 1x", "-1", "01"}), "00101");
}

TEST_F(ServerSettingsLoad, AllowsCompressionWhenServerAndADefaultAgree) {
  EXPECT_EQ(CanCompress(), 0);
  const struct {
    Settings settings;
    int allowed;
  } cases[] = {{{"0", "1", "0", "0", "0"}, 0},
               {{"0", "1", "1", "0", "0"}, 1},
               {{"0", "1", "0", "1", "0"}, 1},
               {{"0", "0", "1", "1", "0"}, 0}};
  for (const auto& c : cases) {
    Load(c.settings);
    EXPECT_EQ(CanCompress(), c.allowed);
  }
}

TEST_F(ServerSettingsLoad, ReturnsTheAgreedCodesAndClearsAllButCaching) {
  const std::string row = SettingsRow();
  const struct {
    const char* what;
    ScriptedReply reply;
    int transport;
    int result;
  } cases[] = {
      {"not delivered", ScriptedReply(), -1, -1},
      {"refused", ScriptedReply().Text("FAILURE").Number(1), 0, 3},
      {"compressed, which nobody asked for", Memory(Gzipped(row), "SUCCESS_COMPRESS"), 0, 3},
      {"no fields", ScriptedReply().Text("SUCCESS"), 0, 2},
      {"no recordset", Memory("x"), 0, 1},
      {"a binary column, whose file nobody would hear of",
       Memory("<s:ElementType><s:AttributeType name='B' dt:type='bin.hex'></s:AttributeType>"
              "</s:ElementType><rs:data><z:row B='00ff'/>"),
       0, 0},
      {"no row",
       Memory("<s:ElementType><s:AttributeType name='CI_ServerSetCache'>"
              "</s:AttributeType></s:ElementType><rs:data>"),
       0, 0},
  };
  for (const auto& c : cases) {
    Load({"1", "1", "1", "1", "1"});
    CRvoDatabase::SetNeedUpdateCompressState();
    settings_answer_ = c.reply;
    settings_result_ = c.transport;
    EXPECT_EQ(UpdateSettings(), c.result) << c.what;
    EXPECT_EQ(Flags(), "10000") << c.what;
    EXPECT_EQ(CRvoDatabase::m_NeedUpdateCompressState, 0) << c.what;
    EXPECT_THAT(TempFiles(), IsEmpty()) << c.what;
    settings_answer_.reset();
    settings_result_ = 0;
  }
}

TEST_F(ServerSettingsLoad, GoesOverTheWebWithoutCompression) {
  UseServerType("WEB_IIS");
  CRvoDatabase::m_ServerIsCompress = 1;
  OpenCache();
  settings_answer_ = Memory(DataSet("CI_ServerCompress", "1"));
  EXPECT_EQ(UpdateSettings(), 0);
  EXPECT_TRUE(
      state_.cache.Find("main>PLATDB:" + transport_.requests.back().fields[1], folder_.At()));
  EXPECT_TRUE(transport_.requests.back().web);
  EXPECT_EQ(transport_.requests.back().compress, 0);
  EXPECT_EQ(Flags(), "01000");
}

TEST_F(ServerSettingsLoad, ComesFromTheCacheWhileOffline) {
  OpenCache();
  state_.cache.SetState(2);  // as an earlier failure left it: nothing is kept
  EXPECT_EQ(Load({"0", "1", "0", "0", "0"}), "01000");
  CRvoServer::SetCacheState(1);
  CRvoDatabase::SetNeedUpdateCompressState();
  EXPECT_EQ(UpdateSettings(), 1);
  EXPECT_EQ(transport_.requests.size(), 1u);

  CRvoServer::SetCacheState(0);
  EXPECT_EQ(Load({"0", "1", "0", "0", "0"}), "01000");  // kept, although caching is not allowed
  settings_answer_ = Memory("x");                       // does not take its place
  CRvoDatabase::SetNeedUpdateCompressState();
  EXPECT_EQ(UpdateSettings(), 1);
  CRvoServer::SetCacheState(1);
  CRvoDatabase::m_bServerSetCache = 1;
  EXPECT_EQ(Load({"1", "1", "1", "1", "1"}), "01000");
  EXPECT_EQ(transport_.requests.size(), 3u);
  EXPECT_THAT(TempFiles(), IsEmpty());
}

TEST_F(ServerSettingsLoad, DecidesWhetherToWorkOffline) {
  struct Case {
    int allowed, need, state, network, offline, state_after;
  };
  const Case cases[] = {{0, 1, 1, 1, 0, 1}, {0, 0, 1, 0, 1, 1}, {1, 1, 1, 0, 1, 1},
                        {1, 1, 0, 1, 1, 2}, {0, 0, 0, 1, 1, 2}, {1, 1, 2, 0, 0, 2},
                        {1, 1, 0, 2, 0, 0}, {0, 0, 1, 1, 1, 1}, {0, 1, 0, 1, 0, 0}};
  for (const Case& c : cases) {
    CRvoDatabase::m_bServerSetCache = c.allowed;
    state_.cache.SetState(c.state);
    transport_.bad_state = c.network;
    EXPECT_EQ(IsOffline(c.need), c.offline) << &c - cases;
    EXPECT_EQ(state_.cache.State(), c.state_after) << &c - cases;
  }
  EXPECT_THAT(transport_.bad_state_questions, testing::Each(0));  // it may try the network again
  UseServerType("WEB_IIS");
  CRvoServer::SetConinfo("web", 80);
  transport_.bad_state = 1;
  for (const int state : {0, 1}) {
    state_.cache.SetState(state);
    EXPECT_EQ(IsOffline(0), 0);
    EXPECT_EQ(state_.cache.State(), state);
  }
}

TEST_F(ServerSettingsLoad, RunsTheQueryOnALocalDatabaseAndLooksAtNoRow) {
  Load({"1", "1", "1", "1", "1"});
  FakeLocalDatabase local;
  local.answer = folder_.Write("row.xml", SettingsRow());
  state_.local_database = &local;
  CRvoServer::UseLocalDB(1);
  for (const int result : {0, 1}) {
    local.result = result;
    CRvoDatabase::SetNeedUpdateCompressState();
    EXPECT_EQ(UpdateSettings(), result);
    EXPECT_EQ(Flags(), "10000");
  }
}

TEST_F(ServerSettingsLoad, ShowsTheDomainByTheLoginFileWithoutAServer) {
  CRvoServer::SetConinfo("", 4000);
  CRvoDatabase::m_DefaultDisplayDomain = 1;
  EXPECT_EQ(CRvoDatabase::GetDefaultDisplayDomain(), 0);
  for (const char* const value : {"0", "", "1"}) {
    folder_.Write("QvLogIn.ini", std::string("[ServerInfo]\nUseAD=") + value + "\n");
    EXPECT_EQ(CRvoDatabase::GetDefaultDisplayDomain(), 1) << value;
  }
  folder_.Write("QvLogIn.ini", "[ServerInfo]\nUseAD=-1\n");
  CRvoServer::SetConinfo("main", 0);
  EXPECT_EQ(CRvoDatabase::GetDefaultDisplayDomain(), 0);
}

TEST(TempFiles, AreSetUpAtLoadAndCutToTheirRecord) {
  const tagTEMPFILEINFO& files = qv::ModuleState::Get().temp_files;
  CRvoDatabase::SetFileTempInfo(std::string(300, 'p').c_str(), std::string(260, 'x').c_str(), "e");
  EXPECT_EQ(std::string(files.path), std::string(259, 'p'));
  EXPECT_EQ(std::string(files.prefix), std::string(259, 'x'));
  CRvoDatabase::SetFileTempInfo("short/");
  EXPECT_EQ(CRvoDatabase::GetTempFilePath(), "short/");
  EXPECT_EQ(std::string(files.ext), "e");
  CRvoDatabase::Ini();
  EXPECT_EQ(CRvoDatabase::GetTempFilePath(), qv::platform::TempFolder().c_str());
  EXPECT_EQ(std::string(files.prefix), "qvcd");
  EXPECT_EQ(std::string(files.ext), "tmp");
}

}  // namespace
}  // namespace qv::test
