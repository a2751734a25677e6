// Tests the recordset writers by reading their files with the slow reference reader.
#include "tools/qvstandin/recordsets/RecordsetWriter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "fuzz/ReferenceReader.h"

namespace qv::standin {
namespace {

class TextSink : public AnswerSink {
 public:
  bool WriteHead(std::string_view head) override {
    head_ = head.size();
    return Write(head);
  }
  bool ReplaceHead(std::string_view head) override {
    text.replace(0, head_, head);
    return true;
  }
  bool Write(std::string_view bytes) override {
    text += bytes;
    return true;
  }
  bool Finish() override { return true; }

  std::string text;

 private:
  std::size_t head_ = 0;
};

template <typename Writer = RowsetWriter>
std::string Written(const std::vector<Column>& columns,
                    const std::vector<std::vector<Cell>>& rows) {
  TextSink sink;
  Writer writer(sink);
  EXPECT_TRUE(writer.Begin(columns));
  for (const auto& row : rows) EXPECT_TRUE(writer.Row(row));
  EXPECT_TRUE(writer.Finish());
  EXPECT_EQ(writer.RowCount(), static_cast<std::int32_t>(rows.size()));
  return sink.text;
}

TEST(RowsetWriter, DeclaresEachKindAsReadersKnowIt) {
  const std::vector<std::pair<ColumnKind, int>> kinds{
      {ColumnKind::kInt32, 3},       {ColumnKind::kInt64, 20},   {ColumnKind::kInt16, 2},
      {ColumnKind::kUint8, 17},      {ColumnKind::kBoolean, 11}, {ColumnKind::kDouble, 5},
      {ColumnKind::kSingle, 4},      {ColumnKind::kDate, 7},     {ColumnKind::kDateTime, 135},
      {ColumnKind::kFixedText, 129}, {ColumnKind::kText, 200},   {ColumnKind::kLongText, 201},
      {ColumnKind::kBinary, 205}};
  std::vector<Column> columns;
  for (const auto& [kind, type] : kinds) columns.push_back({"c" + std::to_string(type), kind, 40});
  ReferenceTable table;
  ASSERT_TRUE(ReadRowsetByReference(Written(columns, {}), table));
  ASSERT_EQ(table.columns.size(), kinds.size());
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    EXPECT_EQ(table.columns[i].name, columns[i].name);
    EXPECT_EQ(table.columns[i].type, kinds[i].second);
  }
  EXPECT_EQ(table.columns[9].declared_length, 40);
}

TEST(RowsetWriter, KeepsEveryCharacterOfATextButNul) {
  const std::string hard = "<a b='1' c=\"2\"/> &#x3c; </z:row> <z:row\r\n\t= 图纸";
  const std::string with_nul = std::string("x\0y", 3);
  const std::string file = Written({{"t", ColumnKind::kText}, {"u", ColumnKind::kText}},
                                   {{Cell(hard), Cell(with_nul)}, {Cell(), Cell("next")}});
  ReferenceTable table;
  ASSERT_TRUE(ReadRowsetByReference(file, table));
  ASSERT_EQ(table.columns[0].cells.size(), 2U);
  EXPECT_EQ(std::get<std::string>(table.columns[0].cells[0]), hard);
  EXPECT_EQ(std::get<std::string>(table.columns[1].cells[0]), "xy");
  EXPECT_EQ(std::get<std::string>(table.columns[1].cells[1]), "next");
  EXPECT_NE(file.find("<z:row u='next'/>"), std::string::npos) << "a null is left out";
}

TEST(RowsetWriter, GivesEachColumnAHarmlessNameOfItsOwn) {
  const std::vector<std::string> names{"a b", "count(*)", "", "x", "x", "x_2", "<'=\"/>&", "列"};
  const std::vector<std::string> expected{"a_b", "count(*)", "column3", "x",
                                          "x_2", "x_2_2",    "_______", "列"};
  std::vector<Column> columns;
  for (const std::string& name : names) columns.push_back({name, ColumnKind::kText});
  const std::vector<Cell> cells(names.size(), Cell("v"));
  ReferenceTable table;
  ASSERT_TRUE(ReadRowsetByReference(Written(columns, {cells}), table));
  ASSERT_EQ(table.columns.size(), names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(table.columns[i].name, expected[i]);
    EXPECT_EQ(std::get<std::string>(table.columns[i].cells.at(0)), "v");
  }
}

TEST(RowsetWriter, WritesValuesAsTheirColumnShowsThem) {
  struct Case {
    ColumnKind kind;
    Cell cell;
    std::string attribute;  // empty: the attribute is missing
  };
  const std::vector<Case> cases{
      {ColumnKind::kInt64, std::numeric_limits<std::int64_t>::min(), "-9223372036854775808"},
      {ColumnKind::kBoolean, std::int64_t{2}, "True"},
      {ColumnKind::kBoolean, std::int64_t{0}, "False"},
      {ColumnKind::kDouble, 0.1, "0.1"},
      {ColumnKind::kDouble, -1.5e300, "-1.5e+300"},
      {ColumnKind::kSingle, static_cast<double>(0.1F), "0.1"},
      {ColumnKind::kSingle, 1e300, "1e+300"},
      {ColumnKind::kDecimal, "12345678901234.5678", "12345678901234.5678"},
      {ColumnKind::kDecimal, 1e-9, "0.000000001"},
      {ColumnKind::kDecimal, std::int64_t{-5}, "-5"},
      {ColumnKind::kDate, "2024-02-29", "2024-02-29T00:00:00"},
      {ColumnKind::kSingle, 0.1, "0.1"},
      {ColumnKind::kSingle, 0.123456789012, "0.123456789012"},
      {ColumnKind::kDateTime, "2024-02-29 23:59:01.500", "2024-02-29T23:59:01.5"},
      {ColumnKind::kDateTime, "2024-02-29T23:59:01.000+02", "2024-02-29T23:59:01"},
      {ColumnKind::kDateTime, "2024-02-29 12:30", "2024-02-29T12:30:00"},
      {ColumnKind::kDateTime, "0044-03-15 12:00:00 BC", "0044-03-15 12:00:00 BC"},
      {ColumnKind::kDateTime, "29.2.2024 at noon here", "29.2.2024 at noon here"},
      {ColumnKind::kDateTime, std::int64_t{1577836800}, "1577836800"},
      {ColumnKind::kBoolean, "perhaps", "perhaps"},
      {ColumnKind::kInt64, 1e15, "1000000000000000"},
      {ColumnKind::kBinary, Binary{std::string_view("\x00\xff'", 3)}, "00ff27"},
      {ColumnKind::kText, std::monostate(), ""}};
  for (const Case& c : cases) {
    const std::string file = Written({{"c", c.kind}}, {{c.cell}});
    const std::string row = c.attribute.empty() ? "<z:row/>" : "<z:row c='" + c.attribute + "'/>";
    EXPECT_NE(file.find(row), std::string::npos) << row << "\n" << file;
  }
}

TEST(RecordsetWriters, DeclareAKindThatHoldsEveryValue) {
  using Kind = ColumnKind;
  constexpr std::int64_t kBig = std::numeric_limits<std::int64_t>::max();
  const std::string large = "1" + std::string(400, '0');
  struct Case {
    Kind declared;
    std::vector<Cell> cells;
    int type;
  };
  const std::vector<Case> cases{
      {Kind::kInt32, {std::int64_t{2147483647}, std::int64_t{-2147483647 - 1}}, 3},
      {Kind::kInt32, {std::int64_t{1}, std::int64_t{2147483648}, Cell()}, 20},
      {Kind::kInt16, {std::int64_t{40000}}, 3},
      {Kind::kUint8, {std::int64_t{-1}}, 2},
      {Kind::kUint8, {std::int64_t{255}}, 17},
      {Kind::kInt64, {std::int64_t{1}, 0.5}, 5},
      {Kind::kInt64, {std::int64_t{1}, 2.0}, 20},
      {Kind::kInt64, {kBig, 0.5}, 131},
      {Kind::kInt32, {"some text", std::int64_t{5}}, 200},
      {Kind::kInt32, {std::int64_t{5}, "12abc"}, 200},
      {Kind::kInt32, {Binary{"x"}}, 200},
      {Kind::kSingle, {0.5, "1.5", Cell()}, 4},
      {Kind::kSingle, {0.5, "half"}, 200},
      {Kind::kDouble, {0.1, 1e300, 1e-9}, 5},
      {Kind::kDouble, {std::int64_t{1} << 53}, 5},
      {Kind::kDouble, {(std::int64_t{1} << 53) + 1, std::int64_t{1}}, 20},
      {Kind::kDouble, {kBig, 0.5}, 131},
      {Kind::kDouble, {"12.5000000000", "-133844670540", "1e300", "0.000", "NaN"}, 5},
      {Kind::kDouble, {"12345678901234.5", "0.10000000000000001"}, 131},
      {Kind::kDouble, {"12345678901234.5678"}, 131},
      {Kind::kDouble, {"133844670540", "9223372036854775807"}, 20},
      {Kind::kDouble, {"9223372036854775808", "1"}, 5},
      {Kind::kDouble, {"9223372036854775809"}, 131},
      {Kind::kDouble, {large}, 131},
      {Kind::kDouble, {"no number", 0.5}, 200},
      {Kind::kDecimal, {"12345678901234.5678", 0.5, std::int64_t{1}}, 131},
      {Kind::kDecimal, {"12.50", std::int64_t{1}}, 5},
      {Kind::kDecimal, {"9223372036854775807"}, 20},
      {Kind::kBoolean, {std::int64_t{2}, "false"}, 11},
      {Kind::kBoolean, {"perhaps"}, 200},
      {Kind::kDateTime, {"2024-02-29 23:59:01.5", Cell()}, 135},
      {Kind::kDateTime, {std::int64_t{1700000000}}, 200},
      {Kind::kDateTime, {"2024-02-29T23:59:59Z", "0001-01-01 00:00 +02:30"}, 135},
      {Kind::kDate, {"2024-02-29 at noon"}, 200},
      {Kind::kDate, {"2023-02-29"}, 200},
      {Kind::kDate, {"0000-00-00"}, 200},
      {Kind::kDate, {"10000-01-01"}, 200},
      {Kind::kDateTime, {"2024-02-29 24:00:00"}, 200},
      {Kind::kDateTime, {"2024-02-29 01:30 PM"}, 200},
      {Kind::kDateTime, {"0044-03-15 12:00:00 BC"}, 200},
      {Kind::kDateTime, {"infinity"}, 200}};
  for (const Case& c : cases) {
    std::vector<std::vector<Cell>> rows;
    for (const Cell& cell : c.cells) rows.push_back({cell});
    const std::string file = Written({{"c", c.declared, 7}}, rows);
    ReferenceTable table;
    ASSERT_TRUE(ReadRowsetByReference(file, table)) << file;
    EXPECT_EQ(table.columns[0].type, c.type) << file;
    EXPECT_EQ(table.columns[0].cells.size(), rows.size()) << file;
    ReferenceTable other;
    ASSERT_TRUE(ReadSchemaByReference(Written<SchemaWriter>({{"c", c.declared, 7}}, rows), other));
    EXPECT_EQ(other.columns[0].type, c.type) << file;
  }
}

TEST(SchemaWriter, IsReadBackInItsDialect) {
  const std::vector<Column> columns{
      {"Table", ColumnKind::kText}, {"Table_x", ColumnKind::kInt64}, {"a b", ColumnKind::kBoolean},
      {"d", ColumnKind::kDateTime}, {"b", ColumnKind::kBinary},      {"r", ColumnKind::kDouble},
      {"s", ColumnKind::kSingle},   {"u", ColumnKind::kUint8},       {"h", ColumnKind::kInt16}};
  const std::string hard = "<Table> </Table> &#x3c; 'x' \"y\"/> 图纸";
  const std::vector<Cell> nulls(columns.size());
  const std::string bytes("\0\xff'a", 4);
  const std::vector<Cell> cells{
      Cell(hard), std::int64_t{-5},  std::int64_t{1}, "2024-02-29 01:02:03", Binary{bytes}, 0.25,
      0.5,        std::int64_t{255}, std::int64_t{-7}};
  ReferenceTable table;
  ASSERT_TRUE(ReadSchemaByReference(Written<SchemaWriter>(columns, {cells, nulls, cells}), table));
  const std::vector<int> types{200, 20, 11, 135, 205, 5, 4, 17, 2};
  ASSERT_EQ(table.columns.size(), types.size());
  for (std::size_t i = 0; i < types.size(); ++i) {
    EXPECT_EQ(table.columns[i].type, types[i]);
    ASSERT_EQ(table.columns[i].cells.size(), 3U);
  }
  EXPECT_EQ(table.columns[2].name, "a_b");
  EXPECT_EQ(std::get<std::string>(table.columns[0].cells[2]), hard);
  EXPECT_EQ(std::get<std::string>(table.columns[0].cells[1]), "");
  EXPECT_EQ(std::get<std::int32_t>(table.columns[1].cells[0]), -5);
  EXPECT_EQ(std::get<std::optional<ReferenceDate>>(table.columns[3].cells[0])->second, 3);
  EXPECT_EQ(table.last_binary, bytes);
}

}  // namespace
}  // namespace qv::standin
