#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

#include "qvnetcall/RvoDatabase.h"
#include "tests/support/TempFolder.h"
#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/output/ResultWriter.h"

namespace {

using qv::tool::Format;

// Filled from a file, which is the only way for a host. `columns` are AttributeType elements.
struct Loaded : CRvoDbRes {
  Loaded(const std::string& columns, const std::string& row_elements) {
    const qv::TempFolder folder;
    const std::string path = folder.Write(
        "rows.xml", "<xml><s:Schema><s:ElementType name='row'>" + columns +
                        "</s:ElementType></s:Schema><rs:data>" + row_elements + "</rs:data></xml>");
    EXPECT_EQ(CRvoDatabase::ReadFromXmlFile(path.c_str(), this, tagTEMPFILEINFO{}), 1);
  }
};

std::string Column(const std::string& name, const std::string& type) {
  return "<s:AttributeType name='" + name + "'><s:datatype dt:type='" + type +
         "'/></s:AttributeType>";
}

std::string Written(const CRvoDbRes& rows, Format format,
                    std::optional<std::string> null_text = std::nullopt) {
  std::ostringstream out;
  EXPECT_TRUE(
      qv::tool::WriteResult(rows, {.format = format, .null_text = std::move(null_text)}, out));
  return out.str();
}

constexpr const char kValues[] =
    "<z:row i='9223372036854775807' d='1e-9' f='0.1' b='True' t='阀\n' "
    "w='2026-02-28T23:59:59.120'/>"
    "<z:row/><z:row i='0' d='1e300' f='.1' b='False' t='' w=''/>";

// A column of each kind.
std::string Columns() {
  return Column("i", "i8") + Column("d", "float") + Column("f", "r4") + Column("b", "boolean") +
         Column("t", "string") + Column("w", "dateTime");
}

TEST(Writers, GiveExactValuesAndTellNullFromNothing) {
  const Loaded rows(Columns(), kValues);
  EXPECT_EQ(Written(rows, Format::kTable),
            "                  i |      d |    f |    b | t    | w\n"
            "--------------------+--------+------+------+------+------------------------\n"
            "9223372036854775807 |  1e-09 |  0.1 |    1 | 阀\\n | 2026-02-28 23:59:59.120\n"
            "               NULL |   NULL | NULL | NULL | NULL | NULL\n"
            "                  0 | 1e+300 |   .1 |    0 |      |\n");
  EXPECT_EQ(Written(rows, Format::kCsv),
            "i,d,f,b,t,w\n"
            "9223372036854775807,1e-09,0.1,1,\"阀\n\",2026-02-28 23:59:59.120\n"
            ",,,,,\n"
            "0,1e+300,.1,0,\"\",\"\"\n");
  EXPECT_EQ(Written(rows, Format::kJson),
            "[\n"
            "{\"i\":9223372036854775807,\"d\":1e-09,\"f\":0.1,\"b\":true,\"t\":\"阀\\n\","
            "\"w\":\"2026-02-28 23:59:59.120\"},\n"
            "{\"i\":null,\"d\":null,\"f\":null,\"b\":null,\"t\":null,\"w\":null},\n"
            "{\"i\":0,\"d\":1e+300,\"f\":\".1\",\"b\":false,\"t\":\"\",\"w\":\"\"}\n"
            "]\n");
}

TEST(Writers, JsonTakesNumbersOnlyAsItWritesThem) {
  const std::pair<const char*, bool> cases[] = {
      {"-0.5E+10", true}, {"10", true},  {"-", false},   {"01", false},  {"1.", false},
      {"1e", false},      {"+1", false}, {"inf", false}, {"0x1", false}, {"1 2", false}};
  for (const auto& [text, is_number] : cases) {
    const Loaded rows(Column("f", "r4"), std::string("<z:row f='") + text + "'/>");
    const auto json = nlohmann::json::parse(Written(rows, Format::kJson));
    EXPECT_EQ(json[0]["f"].is_number(), is_number) << text;
  }
}

TEST(Writers, TableAlignsByCells) {
  const Loaded rows(Column("名", "string") + Column("qty", "int") + Column("note", "string"),
                    "<z:row 名='阀门' qty='0' note='a\nb'/><z:row 名='pump 1' qty='-120'/>");
  EXPECT_EQ(Written(rows, Format::kTable, ""),
            "名     |  qty | note\n"
            "-------+------+-----\n"
            "阀门   |    0 | a\\nb\n"
            "pump 1 | -120 |\n");
}

TEST(Writers, TableKeepsAHugeCellWholeAndOtherRowsShort) {
  const std::string huge(100'000, 'x');
  const Loaded rows(Column("a", "string") + Column("b", "string"),
                    "<z:row a='" + huge + "' b='1'/><z:row a='y' b='2'/>");
  const std::string table = Written(rows, Format::kTable);
  EXPECT_NE(table.find(huge + " | 1\n"), std::string::npos);
  EXPECT_LT(table.size(), huge.size() + 2000);
}

TEST(Writers, CsvQuotesWhatNeedsIt) {
  const Loaded rows(Column("a,b", "string") + Column("c", "string"),
                    "<z:row a,b='say \"hi\"' c='阀门'/><z:row a,b='two\nlines' c=''/>");
  EXPECT_EQ(Written(rows, Format::kCsv),
            "\"a,b\",c\n\"say \"\"hi\"\"\",阀门\n\"two\nlines\",\"\"\n");
  const Loaded lone(Column("a", "string"), "<z:row a=''/><z:row/><z:row a='-'/>");
  EXPECT_EQ(Written(lone, Format::kCsv), "a\n\"\"\n\"\"\n-\n");
  EXPECT_EQ(Written(lone, Format::kCsv, "-"), "a\n\"\"\n-\n\"-\"\n");
}

TEST(Writers, SpellControlsOutAndDefuseFormulas) {
  const Loaded rows(Column("@a", "string") + Column("b", "string") + Column("n", "int"),
                    "<z:row @a='\x1b[2J\t\u009b\x7f阀' b='=1+1' n='-5'/><z:row @a='\xff' b='-'/>");
  EXPECT_EQ(Written(rows, Format::kCsv), "@a,b,n\n\\x1b[2J\t\\u009b\\u007f阀,=1+1,-5\n\xff,-,\n");
  std::ostringstream out;
  const qv::tool::Style both{.format = Format::kCsv,
                             .null_text = "-",
                             .keeps_controls = true,
                             .is_for_spreadsheets = true};
  EXPECT_TRUE(qv::tool::WriteResult(rows, both, out));
  EXPECT_EQ(out.str(), "'@a,b,n\n\x1b[2J\t\u009b\x7f阀,'=1+1,-5\n\xff,'-,-\n");
  const std::string json = Written(rows, Format::kJson);
  EXPECT_NE(json.find("\\u001b[2J\\t\\u009b\\u007f阀\""), std::string::npos) << json;
}

TEST(Writers, JsonIsValidWhateverTheBytesAndNames) {
  const Loaded rows(Column("a", "string") + Column("a", "string") + Column("a_2", "string") +
                        Column("\xff", "string") + Column("\xfe", "string"),
                    "<z:row a='q\"\\\n\x01' a_2='x\xff'/><z:row a='阀门'/>");
  const auto json = nlohmann::json::parse(Written(rows, Format::kJson));
  ASSERT_EQ(json.size(), 2U);
  EXPECT_EQ(json[0].size(), 5U);
  EXPECT_EQ(json[0]["a"], "q\"\\\n\x01");
  EXPECT_EQ(json[0]["a_2_2"], "x\xEF\xBF\xBD");
  EXPECT_EQ(json[1]["a"], "阀门");
}

TEST(Writers, CanBeShownOnATerminal) {
  const Loaded rows(Column("a", "string") + Column("b", "string"),
                    "<z:row a='\x1b[2J\n阀' b='\u009b'/>");
  for (const auto& [format, shown] :
       {std::pair{Format::kCsv, "a,b\n\"\\x1b[2J\n阀\",\\u009b\n"},
        {Format::kJson, "[\n{\"a\":\"\\u001b[2J\\n阀\",\"b\":\"\\u009b\"}\n]\n"}}) {
    std::ostringstream terminal;
    qv::tool::VisibleOutput visible(terminal);
    EXPECT_TRUE(qv::tool::WriteResult(rows, {.format = format}, visible));
    EXPECT_EQ(terminal.str(), shown);
  }
}

TEST(Writers, WriteAnEmptyResult) {
  const Loaded rows(Column("a", "int"), "");
  EXPECT_EQ(Written(rows, Format::kTable), "a\n-\n");
  EXPECT_EQ(Written(rows, Format::kCsv), "a\n");
  EXPECT_EQ(nlohmann::json::parse(Written(rows, Format::kJson)), nlohmann::json::array());
}

TEST(Writers, ReportAnOutputThatTakesNothing) {
  const Loaded rows(Column("a", "int"), "<z:row a='1'/>");
  for (const Format format : {Format::kTable, Format::kCsv, Format::kJson}) {
    std::ostream nowhere(nullptr);
    EXPECT_FALSE(qv::tool::WriteResult(rows, {.format = format}, nowhere));
  }
}

struct Case {
  std::string text;
  std::string shown;
  std::size_t cells;
};

TEST(DisplayWidth, ShowsWhatATerminalCanShow) {
  const std::string bad = "\xEF\xBF\xBD";
  const Case cases[] = {
      {"", "", 0},
      {"valve 12", "valve 12", 8},
      {"阀门", "阀门", 4},
      {"ｶﾅカナ", "ｶﾅカナ", 6},                    // half-width and full-width letters
      {"e\u0301te\u0301", "e\u0301te\u0301", 3},  // combining marks
      {"\U00020000\U0001F600", "\U00020000\U0001F600", 4},
      {"é€", "é€", 2},
      {"a\tb\nc\r", "a\\tb\\nc\\r", 9},
      {"\x1b[31m", "\\x1b[31m", 8},
      {std::string("a\0b", 3), "a\\x00b", 6},
      {"\x7f\u009b", "\\u007f\\u009b", 12},
      {"a\u202eb", "a\\u202eb", 8},       // would reverse the order of what follows
      {"a\xff\xfe", "a" + bad + bad, 3},  // never begins a character
      {"\xe9\x98", bad + bad, 2},         // cut short at the end
      {"\xe9\x98|", bad + bad + "|", 3},  // cut short before another character
  };
  for (const Case& each : cases) {
    std::string line = "> ";
    EXPECT_EQ(qv::tool::AppendVisible(each.text, line), each.cells) << each.shown;
    EXPECT_EQ(line, "> " + each.shown);
  }
}

TEST(DisplayWidth, CutsBetweenCharacters) {
  EXPECT_EQ(qv::tool::VisibleStart("a\nb阀", 6), "a\\nb阀");
  EXPECT_EQ(qv::tool::VisibleStart("a阀门阀门", 7), "a阀...");
  EXPECT_EQ(qv::tool::VisibleStart("a阀\u0301\n门阀门", 6), "a阀\u0301...");
}

}  // namespace
