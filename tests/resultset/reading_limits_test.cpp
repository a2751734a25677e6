// What bounds the readers: large and hostile files, the limit on memory, cancelled calls.
#include <cstdint>

#include "ReadersFixture.h"
#include "base/call/CancelFlag.h"
#include "base/call/LastError.h"
#include "qvnetcall/ResultCodes.h"
#include "resultset/Reading.h"
#include "resultset/readers/ReaderThreads.h"
#include "resultset/readers/TextWindow.h"

namespace qv {
namespace {

struct Threads {
  int count;
  std::size_t piece_bytes;
};

void PrintTo(const Threads& threads, std::ostream* out) { *out << threads.count; }

class ReadingLimits : public ReadersTest, public testing::WithParamInterface<Threads> {
 protected:
  void SetUp() override {
    SetReaderThreads(GetParam().count);
    SetPieceBytes(GetParam().piece_bytes);
  }
  void TearDown() override {
    EndReaderThreads();
    SetReaderThreads(0);
    SetPieceBytes(0);
  }
};

INSTANTIATE_TEST_SUITE_P(Threads, ReadingLimits,
                         testing::Values(Threads{1, 0}, Threads{2, 64}, Threads{7, 4096}),
                         testing::PrintToStringParamName());

// Shapes that make a careless search start over for every row.
TEST_P(ReadingLimits, LargeHostileFilesComeBack) {
  constexpr int kMany = 500000;
  struct Case {
    bool rowset;
    std::string body;
    bool read;
    int rows;
  };
  const Case cases[] = {
      {false, Repeated("<T/>", kMany) + "</T>", true, kMany},
      {false, Repeated("<T/>", kMany), false, 0},
      {false, "<T></T>" + Repeated("<T/>", kMany), true, kMany + 1},
      {false, Repeated("<T>", kMany) + "</T>", true, 1},
      {false, "<T></T>" + Repeated("<T>", kMany), true, 1},
      {false, "<T></T>" + Repeated("<T>/>", kMany), true, kMany + 1},
      {false, Repeated("<T</T", kMany), true, kMany},
      {false, "<T>" + Repeated("<a>", kMany) + "</T>", true, 1},
      {false, "<T>" + Repeated("<b>1</b>", kMany) + "</T>", true, 1},
      {true, Repeated("<z:row/>", kMany), true, kMany},
      {true, Repeated("<z:row", kMany), true, 1},
      {true, "<z:row " + Repeated("=", 2 * kMany), true, 1},
      {true, Repeated("<z:row a='", kMany), true, 1},
      {true, "<z:row a='" + Repeated("=\"", kMany) + "\"/>", true, 1},
      {true, "<z:row" + Repeated(" b='1'", kMany) + "/>", true, 1},
      // Starts of rows in values: from each, the rest of the file is one row without end.
      {true, Repeated("<z:row a='<z:row b=\" ='/>\n", kMany), true, kMany},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE((c.rowset ? "rowset " : "schema ") + c.body.substr(0, 20));
    CRvoDbRes result;
    const std::string file =
        (c.rowset ? RowsetHead({"name='a'"}) : SchemaHead(kIntColumn)) + c.body;
    EXPECT_EQ(c.rowset ? Rowset(file, result) : Schema(file, result), c.read);
    EXPECT_EQ(result.GetFieldCount(), 1);
    EXPECT_EQ(result.GetRecordCount(), c.rows);
  }
}

// Sets the limit for the rest of a test.
class Limited {
 public:
  explicit Limited(std::uint64_t bytes) { SetResultLimit(bytes); }
  ~Limited() { SetResultLimit(0); }
  Limited(const Limited&) = delete;
  Limited& operator=(const Limited&) = delete;
};

std::string Columns(int count, const std::string& name, const std::string& type = "") {
  Rows all = {"name='image' dt:type='bin.hex'"};
  for (int i = 0; i < count; ++i) {
    all.push_back("name='" + name + (name.empty() ? std::to_string(i) : "") + "'" + type);
  }
  return RowsetHead(all);
}

TEST_P(ReadingLimits, AnswersBeyondTheLimitAreRefused) {
  const Limited limited(50000);
  const std::string long_value = "<z:row a='" + std::string(10000, 'x') + "'/>";
  const std::pair<const char*, std::string> refused[] = {
      {"empty cells", Columns(400, "") + "<z:row image='4a'/>" + Repeated("<z:row/>", 500)},
      {"columns of one name", Columns(400, "a") + long_value},
      {"files of one value", RowsetHead(Rows(400, "name='a' dt:type='bin.hex'")) + long_value},
      {"paths",
       RowsetHead(Rows(400, "name='a' dt:type='bin.hex'")) + Repeated("<z:row a='4a'/>", 1000)},
  };
  for (const auto& [what, file] : refused) {
    SCOPED_TRACE(what);
    CRvoDbRes result;
    EXPECT_FALSE(Rowset(file, result));
    EXPECT_GE(result.GetFieldCount(), 400);
    EXPECT_EQ(result.GetRecordCount(), 0);  // nothing is held on to
    const std::filesystem::directory_iterator files(folder_.Path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);  // nor on the disk
    EXPECT_EQ(call::LastError().error_class, error::kTooLarge);
    EXPECT_NE(call::LastError().text.find(" 50000 bytes"), std::string::npos);
  }
  CRvoDbRes schema;
  const std::string rows = Repeated("<T><a>1</a></T>", 30000);
  EXPECT_FALSE(Schema(SchemaHead(kIntColumn) + rows, schema));
  EXPECT_EQ(schema.GetRecordCount(), 0);

  CRvoDbRes other;
  EXPECT_FALSE(Rowset("", other));
  EXPECT_EQ(call::LastError().error_class, error::kBadReply);
  EXPECT_TRUE(Rowset(Columns(30, "") + Repeated("<z:row/>", 300), other));
}

TEST_P(ReadingLimits, ACancelledCallReadsNoFurther) {
  const std::string rowset = Columns(1, "") + Repeated("<z:row image='4a'/>", 3000);
  const std::string schema = SchemaHead(kIntColumn) + Repeated("<T><a>1</a></T>", 3000);
  call::CancelFlag flag;
  flag = true;
  call::SetCancelFlag(&flag);
  CRvoDbRes from_rowset, from_schema;
  EXPECT_FALSE(Rowset(rowset, from_rowset));
  EXPECT_EQ(call::LastError().error_class, error::kCancelled);
  EXPECT_FALSE(Schema(schema, from_schema));
  call::SetCancelFlag(nullptr);
  EXPECT_EQ(from_rowset.GetRecordCount() + from_schema.GetRecordCount(), 0);
  const std::filesystem::directory_iterator files(folder_.Path());
  EXPECT_EQ(std::distance(begin(files), end(files)), 1);
  EXPECT_TRUE(Rowset(rowset, from_rowset));
}

TEST_P(ReadingLimits, TheLimitIsTheLastByte) {
  const std::string file = RowsetHead({"name='a'", "name='n' dt:type='int'"}) +
                           Repeated("<z:row a='12345' n='1'/>", 100);
  constexpr std::uint64_t kBytes = 100 * (4 + 5 + 8 + 1);  // end, text, integer, null bits
  for (const std::uint64_t limit : {kBytes, kBytes - 1}) {
    const Limited limited(limit);
    CRvoDbRes result;
    EXPECT_EQ(Rowset(file, result), limit == kBytes);
  }
}

TEST_P(ReadingLimits, WideAndNearlyEmptyAnswersAreRead) {
  constexpr int kRows = 30000;
  std::string rows;
  for (int i = 0; i < kRows; ++i) {
    rows += "<z:row " + std::to_string(i % 300) + "='2024-02-29T01:02:03'/>";
  }
  CRvoDbRes result;
  ASSERT_TRUE(Rowset(Columns(300, "", " dt:type='dateTime'") + rows, result));
  ASSERT_EQ(result.GetRecordCount(), kRows);
  EXPECT_EQ(result._text(299, 300), "2024-02-29 01:02:03");
  EXPECT_TRUE(result.IsNull(298, 300));
}

TEST_P(ReadingLimits, AnAbsurdTagIsRefused) {
  CRvoDbRes long_tag;
  const std::string tag(2000, 'T');
  EXPECT_FALSE(Schema("<xs:schema></xs:schema><xs:element name='" + tag +
                          "' msdata:MainDataTable='t'><xs:sequence></xs:sequence>",
                      long_tag));
}

}  // namespace
}  // namespace qv
