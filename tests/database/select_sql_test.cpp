#include <fstream>

#include "DatabaseFixture.h"

namespace qv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SelectSql : public DatabaseFixture {
 protected:
  // Lets the transport write the answer as a file, as it does unless the storage kind is "MEMORY".
  void AnswerWithFile(const std::string& bytes, const ScriptedReply& answer) {
    transport_.handler = [=](const SentRequest& request, ScriptedReply& reply) {
      if (IsSettings(request)) return -1;
      std::ofstream(request.reply_file_name, std::ios::binary) << bytes;
      reply = answer;
      return 0;
    };
  }
  void AnswerWithFile(const std::string& bytes, const char* status) {
    AnswerWithFile(bytes, ScriptedReply().Text(status).Number(1).Text("FILE"));
  }
};

TEST_F(SelectSql, SendsTheAgreedRequest) {
  EXPECT_EQ(Select(), "from server");
  ASSERT_EQ(transport_.requests.size(), 2u);
  const SentRequest& request = transport_.requests[1];
  ExpectQuery(request);
  EXPECT_FALSE(request.web);
  EXPECT_THAT(request.fields, ElementsAre("DESIGNDB", "select 1"));
  EXPECT_THAT(TempFiles(), IsEmpty());
}

TEST_F(SelectSql, AsksForCompressionByCommandOrByArgument) {
  settings_ = {.compress = "1", .select_default = "1"};
  EXPECT_EQ(Select(), "from server");
  EXPECT_THAT(QueryCommands(), ElementsAre(210u));

  UseServerType("Web_Iis");
  CRvoServer::SetConinfo("web", 80);
  answer_ = Memory(Gzipped(DataSet("A", "from the web")), "SUCCESS_COMPRESS");
  EXPECT_EQ(Select(), "from the web");
  EXPECT_EQ(transport_.requests.back().command, 200u);
  EXPECT_TRUE(transport_.requests.back().web);
  EXPECT_EQ(transport_.requests.back().compress, 1);
}

TEST_F(SelectSql, HandsOutZerosWhateverTransportsWroteIntoTheBlocks) {
  transport_.scribbles = true;
  int nested = 0;
  transport_.handler = [this, &nested, answer = transport_.handler](const SentRequest& request,
                                                                    ScriptedReply& reply) {
    if (nested < 5) {
      ++nested;
      EXPECT_EQ(Select(0, CString(std::string(70000, 'n').c_str())), "from server");
    }
    return answer(request, reply);
  };
  for (const int result : {0, -2, 0}) {
    answer_result_ = result;
    EXPECT_EQ(Select(), result == 0 ? "from server" : "result -2");
    CRvoServer::CheckServerLink("main", 4000);
  }
  EXPECT_EQ(Select(0, CString(std::string(0x180000, 's').c_str())), "from server");  // spills
  EXPECT_EQ(Select(), "from server");
  EXPECT_EQ(transport_.unclean_blocks, 0);
}

TEST_F(SelectSql, ReadsAnswersHoweverTheyArrive) {
  const std::string rowset = Rowset({{"A", "value"}});
  answer_ = Memory(Gzipped(rowset), "SUCCESS_COMPRESS");
  EXPECT_EQ(Select(), "value");
  AnswerWithFile(rowset, "SUCCESS");
  EXPECT_EQ(Select(), "value");
  AnswerWithFile(Gzipped(rowset), "SUCCESS_COMPRESS");
  EXPECT_EQ(Select(), "value");
  EXPECT_THAT(TempFiles(), IsEmpty());
}

TEST_F(SelectSql, ReturnsTheAgreedCodesAndLeavesNothing) {
  const std::string gzip = Gzipped(Rowset({{"A", "value"}}));
  std::string damaged = gzip;
  damaged[damaged.size() - 6] = static_cast<char>(~damaged[damaged.size() - 6]);
  const struct {
    const char* what;
    ScriptedReply reply;
    int result;
  } cases[] = {
      {"refused", ScriptedReply().Text("FAILURE").Number(7), 3},
      {"refused without a code", ScriptedReply().Text("FAILURE"), 3},
      {"status in lower case", Memory("x", "success"), 3},
      {"no status", ScriptedReply(), 3},
      {"only a status", ScriptedReply().Text("SUCCESS"), 2},
      {"no storage kind", ScriptedReply().Text("SUCCESS").Number(1), 2},
      {"number of eight bytes", ScriptedReply().Text("SUCCESS").Text("12345678").Text("MEMORY"), 2},
      {"file that is missing", ScriptedReply().Text("SUCCESS").Number(1).Text("MEMORY"), 1},
      {"file that nobody wrote", ScriptedReply().Text("SUCCESS").Number(1).Text("FILE"), 1},
      {"storage kind in lower case",
       ScriptedReply().Text("SUCCESS").Number(1).Text("memory").Text(Rowset({{"A", "v"}})), 1},
      {"no recordset", Memory("<xml/>"), 1},
      {"no recordset, packed", Memory(Gzipped("<xml/>"), "SUCCESS_COMPRESS"), 1},
      {"not gzip", Memory(Rowset({{"A", "v"}}), "SUCCESS_COMPRESS"), 10},
      {"gzip that ends early", Memory(gzip.substr(0, gzip.size() - 9), "SUCCESS_COMPRESS"), 10},
      {"gzip with a bad checksum", Memory(damaged, "SUCCESS_COMPRESS"), 10},
      {"compressed file missing", ScriptedReply().Text("SUCCESS_COMPRESS").Number(1).Text("FILE"),
       10},
  };
  for (const auto& c : cases) {
    answer_ = c.reply;
    EXPECT_EQ(Select(), "result " + std::to_string(c.result)) << c.what;
    EXPECT_THAT(TempFiles(), IsEmpty()) << c.what;
  }
  answer_ = Memory(Rowset({{"A", "value"}}));
  for (const int transport : {-1, -2, 5}) {
    answer_result_ = transport;
    EXPECT_EQ(Select(), "result " + std::to_string(transport));
    EXPECT_THAT(TempFiles(), IsEmpty()) << transport;
  }
}

TEST_F(SelectSql, FailsWithoutAFolderForTheAnswer) {
  const std::string folder = static_cast<const char*>(CRvoDatabase::GetTempFilePath());
  for (const int use_cache : {0, 1}) {
    CRvoDatabase::SetFileTempInfo((folder + "missing/").c_str());
    EXPECT_EQ(Select(use_cache), "result 1");
    CRvoDatabase::SetFileTempInfo(folder.c_str());
    EXPECT_EQ(Select(use_cache), "from server");
  }
}

TEST_F(SelectSql, DeletesWhatATransportWroteBesideAnAnswerInItsReply) {
  AnswerWithFile("x", Memory(Rowset({{"A", "in the reply"}})));
  EXPECT_EQ(Select(), "in the reply");
  EXPECT_THAT(TempFiles(), IsEmpty());
}

TEST_F(SelectSql, LeavesTheTransportsFileWhereTheCallCannotUseIt) {
  AnswerWithFile("x", "FAILURE");
  EXPECT_EQ(Select(), "result 3");
  EXPECT_EQ(TempFiles().size(), 1u);
  AnswerWithFile("x", ScriptedReply().Text("SUCCESS"));
  EXPECT_EQ(Select(), "result 2");
  EXPECT_EQ(TempFiles().size(), 2u);
  transport_.handler = [](const SentRequest& request, ScriptedReply&) {
    std::ofstream(request.reply_file_name) << "x";
    return -2;
  };
  EXPECT_EQ(Select(), "result -2");
  EXPECT_EQ(TempFiles().size(), 3u);
}

TEST_F(SelectSql, UnpacksBesideTheAnswerUnderTheEndOfItsName) {
  std::string unpacked;
  transport_.handler = [&](const SentRequest& request, ScriptedReply& reply) {
    if (IsSettings(request)) return -1;
    unpacked = request.reply_file_name.substr(request.reply_file_name.size() - 16);
    std::filesystem::create_directory(folder_.Path() / "temp" / unpacked);
    reply = Memory(Gzipped(Rowset({{"A", "value"}})), "SUCCESS_COMPRESS");
    return 0;
  };
  EXPECT_EQ(Select(), "result 10");  // its place is taken by a folder
  EXPECT_THAT(TempFiles(), ElementsAre(unpacked));
}

TEST_F(SelectSql, LoadsTheSettingsBeforeItLooksAtTheText) {
  settings_.cache = "1";
  EXPECT_EQ(Select(0, ""), "result 1");
  EXPECT_EQ(transport_.requests.size(), 1u);
  EXPECT_TRUE(IsSettings(transport_.requests[0]));
  EXPECT_EQ(Select(0, ""), "result 1");
  EXPECT_EQ(transport_.requests.size(), 1u);
  EXPECT_EQ(transport_.bad_state_questions.size(), 1u);  // the settings'
}

TEST_F(SelectSql, AnswersFromTheCacheWhileOffline) {
  OpenCache();
  settings_.cache = "1";
  EXPECT_EQ(Select(1), "from server");
  EXPECT_TRUE(state_.cache.Find("main>DESIGNDB:select 1", folder_.At()));
  answer_ = Memory(Rowset({{"A", "newer"}}));

  CRvoServer::SetCacheState(1);
  const std::size_t sent = transport_.requests.size();
  EXPECT_EQ(Select(2), "from server");
  EXPECT_EQ(Select(1, "select 2"), "result 1");  // never asked before
  EXPECT_EQ(transport_.requests.size(), sent);
  EXPECT_EQ(Select(0), "newer");  // without the cache, offline does not count
  EXPECT_THAT(TempFiles(), IsEmpty());

  CRvoServer::SetCacheState(0);
  transport_.bad_state = 1;
  EXPECT_EQ(Select(0), "newer");
  EXPECT_EQ(state_.cache.State(), 2);  // the network is looked at all the same
  EXPECT_EQ(Select(1), "from server");
  transport_.bad_state = 0;
  EXPECT_EQ(Select(1), "newer");  // asked again; the stored word stays, so nothing is kept
  transport_.bad_state = 1;
  EXPECT_EQ(Select(1), "from server");
}

TEST_F(SelectSql, GoesToTheServerWhileOfflineWhenNothingSaysThatItMayNot) {
  OpenCache();
  CRvoServer::SetCacheState(1);  // and no settings were ever kept
  EXPECT_EQ(Select(1), "from server");
  EXPECT_EQ(transport_.requests.size(), 1u);
}

TEST_F(SelectSql, KeepsTheGzipFileWhenThereIsOne) {
  OpenCache();
  settings_ = {.cache = "1", .compress = "1", .select_default = "1"};
  answer_ = Memory(Gzipped(Rowset({{"A", "packed"}})), "SUCCESS_COMPRESS");
  EXPECT_EQ(Select(1), "packed");
  bool found = false;
  for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / "cache")) {
    found = found || BytesOf(platform::NarrowFromPath(entry.path())).starts_with("\x1f\x8b");
  }
  EXPECT_TRUE(found);
  CRvoServer::SetCacheState(1);
  EXPECT_EQ(Select(1), "packed");
}

TEST_F(SelectSql, KeepsNothingThatItWasNotAllowedTo) {
  OpenCache();
  settings_.cache = "1";
  answer_ = Memory("no recordset");
  EXPECT_EQ(Select(1), "result 1");
  EXPECT_FALSE(state_.cache.Find("main>DESIGNDB:select 1", folder_.At()));
  answer_ = Memory(Rowset({{"A", "from server"}}));
  EXPECT_EQ(Select(0), "from server");
  CRvoDatabase::m_bServerSetCache = 0;
  EXPECT_EQ(Select(1), "from server");
  CRvoServer::SetCacheState(1);
  EXPECT_EQ(Select(1), "from server");  // offline counts only where caching is allowed
  CRvoDatabase::m_bServerSetCache = 1;
  EXPECT_EQ(Select(1), "result 1");
}

TEST_F(SelectSql, NeverLosesAnAnswerToTheCache) {
  OpenCache();
  settings_.cache = "1";
  std::filesystem::remove_all(folder_.Path() / "cache");
  folder_.Write("cache", "now a file");
  EXPECT_EQ(Select(1), "from server");
}

TEST_F(SelectSql, SendsTextsThatSpillOrCannotBeSent) {
  const CString sql(std::string(0x180000, 's').c_str());
  EXPECT_EQ(Select(0, sql), "from server");
  EXPECT_EQ(transport_.requests.back().fields.at(1).size(), 0x180000u);
  EXPECT_EQ(Select(0, CString(std::string_view("\0x", 2))), "from server");
  EXPECT_THAT(transport_.requests.back().fields, ElementsAre("DESIGNDB"));
}

TEST_F(SelectSql, WorksOnALocalDatabaseWhenToldTo) {
  CRvoServer::UseLocalDB(1);
  EXPECT_EQ(Select(), "result 1");  // nothing is open
  EXPECT_TRUE(transport_.requests.empty());

  FakeLocalDatabase local;
  state_.local_database = &local;
  CRvoDatabase::SetNeedUpdateCompressState();
  EXPECT_EQ(Select(0, ""), "");  // the local database decides about empty texts
  EXPECT_TRUE(local.log.starts_with("select PLATDB select CI_ServerSetCache,"));
  EXPECT_TRUE(local.log.ends_with(";select DESIGNDB ;"));
  EXPECT_TRUE(transport_.requests.empty());

  CRvoServer::CareOpenDBConn(0);
  local.log.clear();
  transport_.handler = [](const SentRequest& request, ScriptedReply& reply) {
    EXPECT_EQ(request.command, 710u);
    reply.Text("1").Text("conn");
    return 0;
  };
  EXPECT_EQ(Select(), "");
  EXPECT_EQ(local.log, "open DESIGNDB conn;select DESIGNDB select 1;close DESIGNDB;");
}

TEST_F(SelectSql, SaysWhyAnAnswerWasNotRead) {
  EXPECT_EQ(Select(), "from server");
  CRvoServer::SetResultLimit(20);
  EXPECT_EQ(Select(), "result 1");
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kTooLarge);
  EXPECT_EQ(CRvoServer::GetLastErrorText(),
            "the answer takes more memory than the limit of 20 bytes");
  CRvoServer::SetResultLimit(0);
  EXPECT_EQ(Select(), "from server");
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kNone);
  answer_ = Memory("no recordset");
  EXPECT_EQ(Select(), "result 1");
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kBadReply);
  CRvoDbRes rows;
  const std::string file = folder_.Write("rows.xml", Rowset({{"A", "from a file"}}));
  EXPECT_EQ(CRvoDatabase::ReadFromXmlFile(file.c_str(), &rows, state_.temp_files), 1);
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kNone);
}

}  // namespace
}  // namespace qv::test
