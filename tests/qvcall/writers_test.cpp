#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "qvnetcall/RvoDatabase.h"
#include "tests/support/TempFolder.h"
#include "tools/qvcall/output/ResultWriter.h"

namespace {

using qv::tool::Format;

// Fills `rows` from a file, which is the only way for a host. `columns` are AttributeType elements.
void Load(const std::string& columns, const std::string& row_elements, CRvoDbRes& rows) {
  const qv::TempFolder folder;
  const std::string path = folder.Write(
      "rows.xml", "<xml><s:Schema><s:ElementType name='row'>" + columns +
                      "</s:ElementType></s:Schema><rs:data>" + row_elements + "</rs:data></xml>");
  ASSERT_EQ(CRvoDatabase::ReadFromXmlFile(path.c_str(), &rows, tagTEMPFILEINFO{}), 1);
}

std::string Column(const std::string& name, const std::string& type) {
  return "<s:AttributeType name='" + name + "'><s:datatype dt:type='" + type +
         "'/></s:AttributeType>";
}

std::string Written(const CRvoDbRes& rows, Format format) {
  std::ostringstream out;
  EXPECT_TRUE(qv::tool::WriteResult(rows, format, out));
  return out.str();
}

TEST(Writers, TableAlignsByCellsAndNumbersToTheRight) {
  CRvoDbRes rows;
  Load(Column("名", "string") + Column("qty", "int") + Column("note", "string"),
       "<z:row 名='阀门' qty='5' note='a\nb'/><z:row 名='pump 1' qty='-120' note=''/>", rows);
  EXPECT_EQ(Written(rows, Format::kTable),
            "名     |  qty | note\n"
            "-------+------+-----\n"
            "阀门   |    5 | a\\nb\n"
            "pump 1 | -120 |\n");
}

TEST(Writers, TableKeepsAHugeCellWholeAndOtherRowsShort) {
  CRvoDbRes rows;
  const std::string huge(100'000, 'x');
  Load(Column("a", "string") + Column("b", "string"),
       "<z:row a='" + huge + "' b='1'/><z:row a='y' b='2'/>", rows);
  const std::string table = Written(rows, Format::kTable);
  EXPECT_NE(table.find(huge + " | 1\n"), std::string::npos);
  EXPECT_LT(table.size(), huge.size() + 2000);
}

TEST(Writers, CsvQuotesWhatNeedsIt) {
  CRvoDbRes rows;
  Load(Column("a,b", "string") + Column("c", "string"),
       "<z:row a,b='say \"hi\"' c='阀门'/><z:row a,b='two\nlines' c=''/>", rows);
  EXPECT_EQ(Written(rows, Format::kCsv), "\"a,b\",c\n\"say \"\"hi\"\"\",阀门\n\"two\nlines\",\n");
  CRvoDbRes lone;
  Load(Column("a", "string"), "<z:row a=''/>", lone);
  EXPECT_EQ(Written(lone, Format::kCsv), "a\n\"\"\n");
}

TEST(Writers, JsonIsValidWhateverTheBytesAndNames) {
  CRvoDbRes rows;
  Load(Column("a", "string") + Column("a", "string") + Column("a_2", "string") +
           Column("\xff", "string") + Column("\xfe", "string"),
       "<z:row a='q\"\\\n\x01' a_2='x\xff'/><z:row a='阀门'/>", rows);
  const auto json = nlohmann::json::parse(Written(rows, Format::kJson));
  ASSERT_EQ(json.size(), 2U);
  EXPECT_EQ(json[0].size(), 5U);
  EXPECT_EQ(json[0]["a"], "q\"\\\n\x01");
  EXPECT_EQ(json[0]["a_2_2"], "x\xEF\xBF\xBD");
  EXPECT_EQ(json[1]["a"], "阀门");
}

TEST(Writers, WriteAnEmptyResult) {
  CRvoDbRes rows;
  Load(Column("a", "int"), "", rows);
  EXPECT_EQ(Written(rows, Format::kTable), "a\n-\n");
  EXPECT_EQ(Written(rows, Format::kCsv), "a\n");
  EXPECT_EQ(nlohmann::json::parse(Written(rows, Format::kJson)), nlohmann::json::array());
}

TEST(Writers, ReportAnOutputThatTakesNothing) {
  CRvoDbRes rows;
  Load(Column("a", "int"), "<z:row a='1'/>", rows);
  for (const Format format : {Format::kTable, Format::kCsv, Format::kJson}) {
    std::ostream nowhere(nullptr);
    EXPECT_FALSE(qv::tool::WriteResult(rows, format, nowhere));
  }
}

}  // namespace
