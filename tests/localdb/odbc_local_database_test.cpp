#include "localdb/LocalDatabase.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "qvnetcall/RvoDbRes.h"
#include "qvnetcall/framework/String.h"
#include "resultset/Reading.h"
#include "resultset/ResultTable.h"
#include "tests/support/TempFolder.h"

namespace qv {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class DirectAccess : public testing::Test {
 protected:
  DirectAccess() {
    std::filesystem::create_directory(Blobs());
    UseBlobFolder(folder_.At("blobs"));
    EXPECT_EQ(database_.Open("DESIGN", ConnectionText("design").c_str()), 1)
        << database_.LastError();
  }

  std::filesystem::path Blobs() const { return folder_.Path() / "blobs"; }
  void UseBlobFolder(const std::string& path) {
    files_ = {};
    path.copy(files_.path, sizeof files_.path - 1);
    std::strcpy(files_.prefix, "qv");
    std::strcpy(files_.ext, "bin");
  }
  // The file's name must reach the driver unchanged.
  std::string ConnectionText(const std::string& name) const {
    return "Driver=SQLite3;SyncPragma=OFF;Database=" + folder_.At(u8"图纸 ") + name;
  }
  void Run(const std::string& sql) {
    EXPECT_EQ(database_.Execute(CString(std::string_view(sql)), "DESIGN"), 0)
        << database_.LastError();
  }
  void Query(const std::string& sql, CRvoDbRes& rows) {
    EXPECT_EQ(database_.Select(CString(std::string_view(sql)), rows, "DESIGN"), 0)
        << database_.LastError();
  }
  std::size_t BlobFiles() const {
    const std::filesystem::directory_iterator files(Blobs());
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
  }

  TempFolder folder_;
  tagTEMPFILEINFO files_{};
  OdbcLocalDatabase database_{files_};
};

TEST_F(DirectAccess, GivesColumnsAsTheReadersDoAndExactCells) {
  const struct {
    const char* declared;
    const char* value;
    int type;
    const char* text;
    int length;
    const char* of_null;
    const char* exact;  // null: the cell is null
  } cases[] = {
      {"smallint", "-12", kTypeSmallInt, "-12", 3, "0", "-12"},
      {"integer", "2147483647", kTypeInteger, "2147483647", 10, "0", "2147483647"},
      {"integer", "133844670540", kTypeInteger, "2147483647", 10, "0", "133844670540"},
      {"integer", "'12 apples'", kTypeInteger, "12", 2, "0", "12"},
      {"integer", "'99999999999 apples'", kTypeInteger, "2147483647", 10, "0", "99999999999"},
      {"integer", "'apples'", kTypeInteger, "0", 1, "0", nullptr},
      {"bigint", "9223372036854775807", kTypeBigInt, "2147483647", 10, "0", "9223372036854775807"},
      {"bigint", "-9223372036854775807 - 1", kTypeBigInt, "-2147483648", 11, "0",
       "-9223372036854775808"},
      {"tinyint", "200", kTypeUnsignedTinyInt, "200", 3, "0", "200"},
      {"boolean", "1", kTypeBoolean, "1", 1, "0", "1"},
      {"boolean", "'True'", kTypeBoolean, "1", 1, "0", "1"},
      {"boolean", "'no'", kTypeBoolean, "0", 1, "0", "0"},
      {"double", "2.5", kTypeDouble, "2.500000", 8, "0.000000", "2.5"},
      {"double", "0.1", kTypeDouble, "0.100000", 8, "0.000000", "0.1"},
      {"double", "1e-9", kTypeDouble, "0.000000", 8, "0.000000", "1e-09"},
      {"double", "1e22", kTypeDouble, "10000000000000000000000.000000", 30, "0.000000", "1e+22"},
      {"double", "-123456789.012345", kTypeDouble, "-123456789.012345", 17, "0.000000",
       "-123456789.012345"},  // this driver gives 15 digits
      {"float", "'text'", kTypeDouble, "0.000000", 8, "0.000000", nullptr},
      {"date", "'2024-02-09'", kTypeDate, "2024-02-09 00:00:00", 14, "", "2024-02-09 00:00:00"},
      {"timestamp", "'2024-02-09 13:14:15.678'", kTypeTimeStamp, "2024-02-09 13:14:15", 17, "",
       "2024-02-09 13:14:15.678"},
      {"timestamp", "'no date'", kTypeTimeStamp, "", 0, "", nullptr},
      {"numeric(18,4)", "'12345678901.5678'", kTypeDouble, "12345678901.567801", 18, "0.000000",
       "12345678901.5678"},
      {"varchar(20)", "'  中\U0001F600 \t'", kTypeVarChar, "中\U0001F600", 7, "",
       "  中\U0001F600 \t"},
      {"varchar(20)", "''", kTypeVarChar, "", 0, "", ""},
      {"text", "'&#x3c;'", kTypeLongVarChar, "&#x3c;", 6, "", "&#x3c;"},
      {"blob", "x''", kTypeLongVarBinary, "", 0, "", ""}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.declared) + " " + c.value);
    Run("drop table if exists T");
    Run(std::string("create table T (Id int, C ") + c.declared + ")");
    Run(std::string("insert into T values (1, ") + c.value + "), (2, null)");
    CRvoDbRes rows;
    Query("select C from T order by Id", rows);
    ASSERT_EQ(rows.GetRecordCount(), 2);
    const Column& column = ResultTable::Of(rows).Columns().front();
    EXPECT_EQ(column.name, "C");
    EXPECT_EQ(column.type, c.type);
    EXPECT_EQ(rows._str(0, 0), c.text);
    EXPECT_EQ(rows._str(1, 0), c.of_null);
    EXPECT_EQ(rows.GetFiledLength(0), c.length);
    EXPECT_EQ(rows._text(0, "C"), c.exact != nullptr ? c.exact : "");
    EXPECT_EQ(rows._text(1, "C"), "");
    EXPECT_EQ(rows.IsNull(0, "C") != 0, c.exact == nullptr);
    EXPECT_TRUE(rows.IsNull(1, "C"));
    Query("select 'x' as Later", rows);
    EXPECT_TRUE(rows.IsNull(0, "C") && !rows.IsNull(0, "Later"));
  }
}

TEST_F(DirectAccess, GivesTextOfAnyLengthAndColumnsWithoutRows) {
  std::string text;
  while (text.size() < 300000) text += "中\U0001F600é";
  Run("create table T (Id int, S varchar(20))");
  Run("insert into T values (1, '" + text + "')");
  CRvoDbRes rows;
  Query("select S, Id as \"编号\", Id + 1 from T", rows);
  EXPECT_TRUE(rows._str(0, 0).View() == text);
  EXPECT_EQ(rows.GetFiledLength(0), static_cast<int>(text.size()));
  EXPECT_EQ(ResultTable::Of(rows).Columns()[0].declared_length, 20);
  EXPECT_EQ(rows["编号"], "1");
  EXPECT_EQ(rows._str(0, 2), "2");  // a column without a declared type
  CRvoDbRes none;
  Query("select * from T where Id = 2", none);
  EXPECT_EQ(none.GetFieldCount(), 2);
  EXPECT_EQ(none.GetRecordCount(), 0);
  CRvoDbRes nothing;
  Query("update T set Id = 3", nothing);
  EXPECT_EQ(nothing.GetFieldCount(), 0);
  Run("select * from T");
}

TEST_F(DirectAccess, BringsManyColumnsAndLongNames) {
  const std::string name(5000, 'n');
  std::string list;
  for (int i = 0; i < 1900; ++i) list += std::to_string(i) + " as c" + std::to_string(i) + ",";
  CRvoDbRes rows;
  Query("select " + list + " 5 as \"" + name + "\"", rows);
  ASSERT_EQ(rows.GetFieldCount(), 1901);
  EXPECT_EQ(rows["c1899"], "1899");
  EXPECT_THAT(name, StartsWith(std::string(rows.GetFiledName(1900).View())));
}

TEST_F(DirectAccess, WritesBinaryCellsToFiles) {
  Run("create table T (Id int, B blob)");
  Run("insert into T values (1, x'0001FF27'), (2, zeroblob(150000)), (3, x''), (4, null)");
  CRvoDbRes rows;
  Query("select B, Id from T order by Id", rows);
  EXPECT_EQ(BytesOf(rows._str(0, 0).View().data()), std::string("\x00\x01\xFF'", 4));
  EXPECT_EQ(BytesOf(rows._str(1, 0).View().data()), std::string(150000, '\0'));
  EXPECT_THAT(rows._str(0, 0).View().data(), StartsWith(folder_.At("blobs/qv_")));
  EXPECT_EQ(rows._str(2, 0), "");
  EXPECT_EQ(rows._str(3, 0), "");
  EXPECT_EQ(rows._str(3, 1), "4");
  EXPECT_EQ(BlobFiles(), 2u);

  UseBlobFolder("");
  CRvoDbRes without;
  Query("select B, Id from T order by Id", without);
  EXPECT_EQ(without._str(0, 0), "");
  EXPECT_FALSE(without.IsNull(0, 0) || without.IsNull(1, 0) || without.IsNull(2, 0));
  EXPECT_TRUE(without.IsNull(3, 0));
  EXPECT_EQ(without._str(1, 1), "2");
  EXPECT_EQ(BlobFiles(), 2u);
}

TEST_F(DirectAccess, LeavesNothingOfAQueryThatFails) {
  // Row by row, so that a query can fail after its first rows.
  const std::string stepping = ConnectionText("design") + ";StepAPI=1";
  ASSERT_EQ(database_.Open("DESIGN", stepping.c_str()), 1);
  Run("create table T (B blob, N bigint)");
  Run("insert into T values (x'01', 1), (x'02', -9223372036854775807 - 1)");
  CRvoDbRes rows;
  Query("select 7 as Kept", rows);
  const char* const broken[] = {"select * from Nowhere", "select B, abs(N) from T", "not sql",
                                "select '\xFF'"};
  for (const char* const sql : broken) {
    EXPECT_EQ(database_.Select(sql, rows, "DESIGN"), 1) << sql;
    EXPECT_THAT(database_.LastError(), StartsWith("DESIGN: ["));
    EXPECT_EQ(rows.GetFieldCount(), 1);
    EXPECT_EQ(rows["Kept"], "7");
    EXPECT_EQ(BlobFiles(), 0u);
  }
  Query("select 8 as Later union all select 9", rows);
  EXPECT_EQ(database_.LastError(), "");
  ASSERT_EQ(rows.GetFieldCount(), 2);
  EXPECT_EQ(rows._int(1, "Kept"), 0);
  EXPECT_EQ(rows._str(1, "Later"), "9");
}

TEST_F(DirectAccess, ReadsNoMoreThanTheLimit) {
  Run("create table T (N int, S text, B blob)");
  Run("with recursive C(N) as (select 1 union all select N + 1 from C where N < 1000) "
      "insert into T select N, 'text', x'01' from C");
  const char* const queries[] = {"select N from T", "select S from T", "select B from T",
                                 "select replace(hex(zeroblob(5000)), '00', 'x') as S"};
  for (const char* const query : queries) {
    SCOPED_TRACE(query);
    SetResultLimit(4000);
    CRvoDbRes rows;
    EXPECT_EQ(database_.Select(query, rows, "DESIGN"), 1);
    EXPECT_EQ(rows.GetFieldCount(), 0);
    EXPECT_THAT(database_.LastError(), HasSubstr("limit of 4000 bytes"));
    EXPECT_EQ(BlobFiles(), 0u);
    SetResultLimit(0);
    Query(query, rows);
    EXPECT_GT(rows.GetRecordCount(), 0);
    std::filesystem::remove_all(Blobs());
    std::filesystem::create_directory(Blobs());
  }
}

TEST_F(DirectAccess, KeepsTheDatabaseWhereTheTextSays) {
  EXPECT_EQ(database_.Execute("create table OnlyHere (N int)", "DESIGN"), 0);
  EXPECT_TRUE(std::filesystem::exists(folder_.Path() / u8"图纸 design"));
}

TEST_F(DirectAccess, KeepsConnectionsByName) {
  CRvoDbRes rows;
  EXPECT_EQ(database_.Execute("create table OnlyHere (N int)", "DESIGN"), 0);
  EXPECT_EQ(database_.Execute("", "DESIGN"), 1);
  EXPECT_EQ(database_.Select("select 1", rows, "design"), 1);
  EXPECT_THAT(database_.LastError(), HasSubstr("no connection"));
  EXPECT_EQ(database_.Select("select 1", rows, nullptr), 1);
  EXPECT_EQ(database_.Close("OTHER"), 0);
  EXPECT_EQ(database_.Close(nullptr), 0);

  // A connection that cannot be opened leaves the previous one open, and is the reason that is
  // kept.
  EXPECT_EQ(database_.Open("DESIGN", "Driver=None there"), 0);
  EXPECT_THAT(database_.LastError(), StartsWith("DESIGN: ["));
  EXPECT_EQ(database_.Open("NEW", nullptr), 0);
  const std::string reason = database_.LastError();
  EXPECT_EQ(database_.Execute("select 1", "NEW"), 1);
  EXPECT_EQ(database_.LastError(), reason);
  EXPECT_EQ(database_.Select("select * from OnlyHere", rows, "DESIGN"), 0);

  EXPECT_EQ(database_.Open("DESIGN", ConnectionText("other").c_str()), 1);
  EXPECT_EQ(database_.Select("select * from OnlyHere", rows, "DESIGN"), 1);
  EXPECT_EQ(database_.Close("DESIGN"), 1);
  EXPECT_EQ(database_.Close("DESIGN"), 0);
}

TEST_F(DirectAccess, ServesAnyNumberOfThreads) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 25;
  Run("create table T (Who int, N int)");
  const auto work = [&](int who) {
    for (int i = 0; i < kRounds; ++i) {
      const std::string values = std::to_string(who) + ", " + std::to_string(i);
      EXPECT_EQ(database_.Execute(("insert into T values (" + values + ")").c_str(), "DESIGN"), 0);
      CRvoDbRes rows;
      const std::string own = "select N from T where Who = " + std::to_string(who);
      EXPECT_EQ(database_.Select(own.c_str(), rows, "DESIGN"), 0);
      EXPECT_EQ(rows.GetRecordCount(), i + 1);
      // Meanwhile other names are opened and closed; this thread has its own error text.
      const std::string name = "own" + std::to_string(i % 2);
      EXPECT_EQ(database_.Open(name.c_str(), ConnectionText("shared").c_str()), 1);
      EXPECT_EQ(database_.Execute(values.c_str(), "DESIGN"), 1);
      EXPECT_THAT(database_.LastError(), StartsWith("DESIGN: "));
      database_.Close(name.c_str());
    }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(database_.LastError(), IsEmpty());
}

}  // namespace
}  // namespace qv
