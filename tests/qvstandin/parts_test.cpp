// Tests small parts of the stand-in, each by itself.
#include <gtest/gtest.h>
#include <zlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/TempFolder.h"
#include "tools/qvstandin/commands/MessageFields.h"
#include "tools/qvstandin/common/ServerLog.h"
#include "tools/qvstandin/databases/Database.h"
#include "tools/qvstandin/recordsets/AnswerSpool.h"
#include "tools/qvstandin/sql/ClientSql.h"
#include "tools/qvstandin/stores/DataFolder.h"

namespace qv::standin {
namespace {

TEST(FieldReader, TakesOnlyFieldsThatLieWholeInsideThePayload) {
  using Payload = std::vector<unsigned char>;
  const std::vector<Payload> refused{{},
                                     {1, 0, 0},
                                     {1, 0, 0, 0},
                                     {1, 0, 0, 0, 'a'},
                                     {0, 0, 0, 0, 0},
                                     {1, 0, 0, 0, 'a', 'b'},
                                     {2, 0, 0, 0, 'a', 0, 0},
                                     {0xff, 0xff, 0xff, 0xff, 'a', 0},
                                     {0xfb, 0xff, 0xff, 0xff, 'a', 0}};
  for (const Payload& payload : refused) {
    EXPECT_FALSE(FieldReader(payload).Text()) << testing::PrintToString(payload);
    EXPECT_FALSE(FieldReader(payload).Integer()) << testing::PrintToString(payload);
  }
  const Payload good{1, 0, 0, 0, 'a', 0, 4, 0, 0, 0, 0xfe, 0xff, 0xff, 0xff, 0};
  FieldReader reader(good);
  EXPECT_FALSE(reader.Integer());  // the field has not been consumed
  EXPECT_EQ(reader.Text(), "a");
  EXPECT_EQ(reader.Integer(), -2);
  EXPECT_FALSE(reader.Text());
}

TEST(TableNames, LoseTheirLocationOutsideQuotesAndComments) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"select a from QvCoMis.dbo.Mxd_sys_BaseInfo", "select a from Mxd_sys_BaseInfo"},
      {"select a from [My Db].[DBO].[T 1], dbo.t", "select a from [T 1], t"},
      {"select X.dbo.t.c,t.dbo from X.dbo.t", "select t.c,t.dbo from t"},
      {"select 'X.dbo.t', \"X.dbo.t\" -- X.dbo.t\n, 1",
       "select 'X.dbo.t', \"X.dbo.t\" -- X.dbo.t\n, 1"},
      {"select '''X.dbo.t' /* X.dbo.t */ from 表.dbo.部门",
       "select '''X.dbo.t' /* X.dbo.t */ from 部门"},
      {"select a.b.c, X.dbo. t, 1.5", "select a.b.c, X.dbo. t, 1.5"},
      {"'X.dbo.t", "'X.dbo.t"},
      {"[X.dbo.t", "[X.dbo.t"},
      {"X.dbo.", "X.dbo."},
      {".dbo.t, a..t", ".dbo.t, a..t"},
      {"select 1 from `X.dbo.t`,[dbo].[a]]b.c]", "select 1 from `X.dbo.t`,[a]]b.c]"}};
  for (const auto& [sql, plain] : cases) {
    EXPECT_EQ(WithPlainTableNames(sql, text::kSqlite), plain);
  }
  EXPECT_EQ(WithPlainTableNames("select $$X.dbo.t$$, [dbo].t /* /* */ dbo.t */", text::kPostgreSql),
            "select $$X.dbo.t$$, t /* /* */ dbo.t */");
}

TEST(ProcedureCall, ReadsArgumentsByTheirForm) {
  for (const char* text :
       {"call p(-1, 'it''s', null, 2.5)", " EXEC X.dbo.p -1, N'it''s', NULL, 2.5 ;"}) {
    const auto call = ParseProcedureCall(text);
    ASSERT_TRUE(call) << text;
    EXPECT_EQ(call->name, "p");
    const std::vector<ProcedureCall::Argument> expected{std::int64_t{-1}, "it's", std::monostate(),
                                                        2.5};
    EXPECT_EQ(call->arguments, expected) << text;
  }
  EXPECT_TRUE(ParseProcedureCall("exec p"));
  EXPECT_TRUE(ParseProcedureCall("call p()"));
  for (const char* text : {"", "call", "call p(", "call p(1", "call p(1,)", "call p('a", "exec p a",
                           "exec p 1 2", "select 1", "callp(1)", "call p() x"}) {
    EXPECT_FALSE(ParseProcedureCall(text)) << text;
  }
}

TEST(DatabaseName, NeverLeadsOutOfTheFolder) {
  for (const char* name : {"PLATDB", "a-b_9"}) EXPECT_TRUE(IsDatabaseName(name)) << name;
  for (const char* name : {"", "..", "../x", "a/b", "a\\b", "c:", "a.b", "名"}) {
    EXPECT_FALSE(IsDatabaseName(name)) << name;
  }
  EXPECT_TRUE(IsDatabaseName(std::string(64, 'a')));
  EXPECT_FALSE(IsDatabaseName(std::string(65, 'a')));
}

class GzipStreamTest : public testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(Heads, GzipStreamTest, testing::Bool());

TEST_P(GzipStreamTest, MakesAFileThatUnpacksToWhatWasWritten) {
  const bool replaced = GetParam();
  const TempFolder folder;
  std::string text;
  for (int i = 0; i < 40000; ++i) text += std::to_string(i * 7919 % 10007);
  std::string path;
  {
    AnswerSpool file(folder.At() + "/", 1000, 1 << 20);
    GzipStream gzip(file);
    const std::string head = text.substr(0, 300);
    ASSERT_TRUE(gzip.WriteHead(replaced ? "<another head>" : head));
    ASSERT_TRUE(gzip.Write(text.substr(300, 10)) && gzip.Write(text.substr(310)));
    ASSERT_TRUE(!replaced || gzip.ReplaceHead(head));
    ASSERT_TRUE(gzip.Finish());
    ASSERT_FALSE(file.InMemory());
    path = file.Path();
    EXPECT_EQ(std::filesystem::file_size(path), file.Size());
    EXPECT_EQ(BytesOf(path).substr(0, 2), "\x1f\x8b");
    const gzFile packed = gzopen(path.c_str(), "rb");
    std::string unpacked(text.size() + 1, '\0');
    const int length = gzread(packed, unpacked.data(), static_cast<unsigned>(unpacked.size()));
    EXPECT_EQ(gzclose(packed), Z_OK);
    ASSERT_EQ(length, static_cast<int>(text.size()));
    unpacked.pop_back();
    EXPECT_EQ(unpacked, text);
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(AnswerSpool, RefusesWhatIsTooLargeOrHasNoFolder) {
  const TempFolder folder;
  AnswerSpool small(folder.At() + "/", 4, 8);
  EXPECT_TRUE(small.Write("1234"));
  EXPECT_TRUE(small.InMemory());
  EXPECT_TRUE(small.Write("5678"));
  EXPECT_FALSE(small.Write("9"));
  AnswerSpool lost(folder.At() + "/missing/", 1, 8);
  EXPECT_FALSE(lost.Write("12"));
  EXPECT_FALSE(lost.Write("12"));
}

TEST(AnswerSpool, ReplacesItsHeadInMemoryAndOnTheDisk) {
  const TempFolder folder;
  for (const std::size_t kept : {100U, 4U}) {
    AnswerSpool spool(folder.At() + "/", kept, 12);
    ASSERT_TRUE(spool.WriteHead("ab") && spool.Write("1234") && spool.ReplaceHead("abcdef"));
    ASSERT_TRUE(spool.Finish());
    EXPECT_EQ(spool.InMemory() ? spool.Bytes() : BytesOf(spool.Path()), "abcdef1234");
    EXPECT_EQ(spool.Size(), 10U);
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
  AnswerSpool small(folder.At() + "/", 4, 8);
  ASSERT_TRUE(small.WriteHead("ab") && small.Write("123456"));
  EXPECT_FALSE(small.ReplaceHead("abc"));
  AnswerSpool over(folder.At() + "/", 4, 20, [] { return true; });
  ASSERT_TRUE(over.WriteHead("ab") && over.Write("123456"));
  EXPECT_FALSE(over.ReplaceHead("abc"));
}

TEST(ServerLog, KeepsATextOnOneLine) {
  const TempFolder folder;
  const std::string path = folder.At("server.log");
  ASSERT_TRUE(ServerLog(path).Append(3, "a\n9 \x1b[2J\\ 中"));
  ASSERT_TRUE(ServerLog(path).Append(-1, "b"));
  const std::string log = BytesOf(path);
  EXPECT_NE(log.find(" 3 a\\x0a9 \\x1b[2J\\x5c 中\n"), std::string::npos) << log;
  EXPECT_TRUE(log.ends_with(" -1 b\n"));
}

}  // namespace
}  // namespace qv::standin
