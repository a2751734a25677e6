#include "qvnetcall/RvoDbRes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <limits>
#include <string>
#include <vector>

#include "qvnetcall/framework/InvalidArgException.h"
#include "resultset/CellValue.h"
#include "resultset/ResultTable.h"

namespace qv {
namespace {

struct TypedColumn {
  std::string name;
  std::uint8_t type;
  std::vector<std::string> cells;
};

// Fills a result set without a file, so that these tests stand on their own.
void Fill(CRvoDbRes& result, const std::vector<TypedColumn>& columns) {
  ResultTable& table = ResultTable::Of(result);
  for (const TypedColumn& typed : columns) {
    Column& column =
        table.AddColumn({.name = typed.name, .type = typed.type, .cells = CellsFor(typed.type)});
    for (const std::string& text : typed.cells) {
      if (auto* ints = std::get_if<IntCells>(&column.cells)) ints->push_back(std::stoi(text));
      if (auto* doubles = std::get_if<DoubleCells>(&column.cells)) {
        doubles->push_back(ParseDouble(text));
      }
      if (auto* dates = std::get_if<DateCells>(&column.cells)) {
        dates->push_back(ParseDate(text).date);
      }
      if (auto* texts = std::get_if<TextCells>(&column.cells)) texts->push_back(text);
    }
  }
}

std::vector<std::string> Texts(const CRvoDbRes& result, const char* field) {
  std::vector<std::string> texts;
  for (int row = 0; row < result.GetRecordCount(); ++row) {
    texts.emplace_back(result._str(row, field));
  }
  return texts;
}

using Strings = std::vector<std::string>;

TEST(RvoDbRes, GivesTextFormsAndValuesByType) {
  CRvoDbRes result;
  Fill(result, {{"n", 3, {"-7", "2147483647", "0"}},
                {"d", 5, {"2.5", "2.1", "-2.5"}},
                {"t", 135, {"2024-02-29T23:59:59", "1899-12-29 06:00:01", ""}},
                {"s", 200, {" 12.5x ", "", "text"}}});
  EXPECT_EQ(Texts(result, "N"), (Strings{"-7", "2147483647", "0"}));
  EXPECT_EQ(Texts(result, "D"), (Strings{"2.500000", "2.100000", "-2.500000"}));
  EXPECT_EQ(Texts(result, "T"), (Strings{"2024-02-29 23:59:59", "1899-12-29 06:00:01", ""}));
  EXPECT_EQ(Texts(result, "S"), (Strings{" 12.5x ", "", "text"}));

  EXPECT_EQ(result._int(0, "n"), -7);
  EXPECT_EQ(result._int(1, "d"), 3);  // upward
  EXPECT_EQ(result._int(2, "d"), -2);
  EXPECT_EQ(result._int(0, "t"), 0);
  EXPECT_EQ(result._int(0, "s"), 12);
  EXPECT_EQ(result._dabl(0, "n"), -7.0);
  EXPECT_EQ(result._dabl(1, "d"), 2.1);
  EXPECT_EQ(result._dabl(0, "t"), 0.0);
  EXPECT_EQ(result._dabl(0, "s"), 0.0);  // text is not parsed here
  EXPECT_EQ(result._time(0, "t").GetSecond(), 59);
  EXPECT_EQ(result._time(2, "t").m_dt, 0.0);
  EXPECT_EQ(result._time(0, "n").m_dt, 0.0);
}

TEST(RvoDbRes, HoldsHugeDoublesWithin32Bits) {
  CRvoDbRes result;
  Fill(result, {{"d", 5, {"1e300", "-inf", "nan", "-0.5", "2147483646.5"}}});
  const std::vector<long> expected = {2147483647, -2147483648L, 0, 0, 2147483647};
  for (int row = 0; row < result.GetRecordCount(); ++row) {
    EXPECT_EQ(result._int(row, 0), expected[static_cast<std::size_t>(row)]) << row;
  }
}

TEST(RvoDbRes, IsNeutralOutsideTheTable) {
  CRvoDbRes result;
  Fill(result, {{"n", 3, {"1"}}});
  const std::pair<int, int> places[] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {2147483647, 2147483647}};
  for (const auto& [row, column] : places) {
    EXPECT_TRUE(result._str(row, column).IsEmpty());
    EXPECT_EQ(result._int(row, column), 0);
    EXPECT_EQ(result._dabl(row, column), 0.0);
    EXPECT_EQ(result._time(row, column).GetStatus(), COleDateTime::valid);
  }
  EXPECT_TRUE(result._str(0, "unknown").IsEmpty());
  EXPECT_TRUE(result[5].IsEmpty());
  EXPECT_TRUE(result["unknown"].IsEmpty());
  EXPECT_THROW(result.GetFiledName(1), CInvalidArgException);
  EXPECT_THROW(result.GetFiledLength(-1), CInvalidArgException);
}

TEST(RvoDbRes, MovesItsCursorWithinTheRows) {
  CRvoDbRes result;
  EXPECT_EQ(result.MoveFirst(), 0);
  EXPECT_EQ(result.GetRecordCount(), 0);
  result.AddOneRow();
  EXPECT_EQ(result.GetRecordCount(), 0);  // no columns, no rows
  Fill(result, {{"n", 3, {"1", "2", "3"}}});
  Strings seen;
  for (int more = result.MoveFirst(); more == 1; more = result.MoveNext()) {
    seen.emplace_back(result[0]);
  }
  EXPECT_EQ(seen, (Strings{"1", "2", "3"}));
  EXPECT_EQ(result["n"], "3");  // the failed move left the cursor

  CRvoDbRes no_rows;
  Fill(no_rows, {{"n", 3, {}}});
  EXPECT_EQ(no_rows.MoveFirst(), 0);
  EXPECT_EQ(no_rows.MoveNext(), 0);
  EXPECT_THROW(no_rows[0], CInvalidArgException);
  EXPECT_THROW(no_rows["n"], CInvalidArgException);
  EXPECT_TRUE(no_rows._str(0, 0).IsEmpty());
}

TEST(RvoDbRes, TrimsNamesOnlyAtTheBrackets) {
  CRvoDbRes result;
  Fill(result, {{"Name", 200, {"first"}}, {"NAME", 200, {"second"}}, {" odd", 200, {"odd"}}});
  EXPECT_EQ(result["  NAME "], "first");
  EXPECT_EQ(result.GetFieldNameId("  NAME "), -1);
  EXPECT_EQ(result.GetFieldNameId("nAME"), 0);
  EXPECT_TRUE(result[" odd"].IsEmpty());  // the argument is trimmed, the column's name is not
  EXPECT_EQ(result._str(0, " ODD"), "odd");
}

TEST(RvoDbRes, AddsASumRow) {
  CRvoDbRes result;
  Fill(result, {{"n", 3, {"1", "2", "3"}},
                {"w", 20, {"2147483647", "1", "0"}},
                {"d", 5, {"0.5", "0.25", "1"}},
                {"s", 200, {"a", "b", "c"}},
                {"t", 7, {"", "", ""}}});
  result.AddOneRow();
  CStringArray fields;
  for (const char* const name : {"S", "T", "none", "N", "W", "D"}) fields.Add(name);
  result.AddSumInfo(fields);
  EXPECT_EQ(Texts(result, "n"), (Strings{"1", "2", "3", "6"}));
  EXPECT_EQ(result._int(3, "w"), -2147483648L);
  EXPECT_EQ(result._dabl(3, "d"), 1.75);
  EXPECT_TRUE(result._str(3, "s").IsEmpty());
  EXPECT_EQ(result._time(3, "t"), COleDateTime(std::time_t{0}));
  EXPECT_EQ(result.GetFiledLength(0), 0);

  CRvoDbRes no_rows;
  Fill(no_rows, {{"s", 200, {}}, {"n", 3, {}}});
  CStringArray text_only;
  text_only.Add("s");
  EXPECT_NO_THROW(no_rows.AddSumInfo(text_only));
  EXPECT_THROW(no_rows.AddSumInfo(fields), CInvalidArgException);
}

TEST(RvoDbRes, ReplacesTextsAndCarriesThemOver) {
  CMapStringToString texts;
  texts.SetAt("A", "Alpha");
  CRvoDbRes result;
  Fill(result, {{"x", 200, {"A", "B", "A"}}, {"y", 200, {"B", "A", ""}}});
  result.ReplaceStrByFieldName("X", &texts);
  result.ReplaceStrByFieldName("Y", &texts);
  result.ReplaceStrByFieldName("none", &texts);
  EXPECT_EQ(Texts(result, "x"), (Strings{"Alpha", "Alpha", "Alpha"}));
  EXPECT_EQ(Texts(result, "y"), (Strings{"", "Alpha", "Alpha"}));
  EXPECT_EQ(result.GetFiledLength(0), 5);
}

TEST(RvoDbRes, ReplacesIntegersWithoutCarryingOver) {
  CMap<long, long, CString, CString> texts;
  texts.SetAt(1, "one");
  CRvoDbRes result;
  Fill(result, {{"n", 11, {"1", "2", "1"}}, {"s", 200, {"1", "2", "3"}}});
  ResultTable::Of(result).Columns()[0].declared_length = 9;
  result.ReplaceIntByFieldName("N", &texts);
  result.ReplaceIntByFieldName("S", &texts);  // not an integer column
  EXPECT_EQ(Texts(result, "n"), (Strings{"one", "", "one"}));
  EXPECT_EQ(Texts(result, "s"), (Strings{"1", "2", "3"}));
  EXPECT_EQ(ResultTable::Of(result).Columns()[0].type, 202);
  EXPECT_EQ(ResultTable::Of(result).Columns()[0].declared_length, 9);
  EXPECT_EQ(result.GetFiledLength(0), 3);
}

TEST(RvoDbRes, RemovesColumns) {
  CRvoDbRes result;
  Fill(result, {{"a", 3, {"1"}}, {"b", 200, {"x"}}, {"c", 5, {"2"}}});
  result.DelOneColumn("A");
  result.DelOneColumn("A");
  ASSERT_EQ(result.GetFieldCount(), 2);
  EXPECT_EQ(result.GetFiledName(0), "b");
  EXPECT_EQ(result._str(0, 1), "2.000000");
}

TEST(CellText, MeasuresWithoutFormatting) {
  const double infinity = std::numeric_limits<double>::infinity();
  std::vector<double> values = {0.0,          -0.0,      1e-320,
                                -1e-9,        1e15,      1e16,
                                1e22,         1e300,     1.7976931348623157e308,
                                infinity,     -infinity, std::nan(""),
                                -std::nan("")};
  // Around every power of ten, and around what rounds up to it.
  for (double power = 1; power < 1e17; power *= 10) {
    for (const double base : {power, power - 5e-7, power + 5e-7}) {
      double below = base;
      double above = base;
      for (int step = 0; step < 40; ++step) {
        values.insert(values.end(), {below, above, -below, -above});
        below = std::nextafter(below, 0.0);
        above = std::nextafter(above, HUGE_VAL);
      }
    }
  }
  for (const double value : values) {
    EXPECT_EQ(FixedLength(value), std::snprintf(nullptr, 0, "%f", value)) << std::hexfloat << value;
  }
  for (const std::int64_t number : {0, 9, 10, -1, -10, 2147483647}) {
    EXPECT_EQ(DecimalLength(static_cast<std::int32_t>(number)), std::to_string(number).size());
  }
  EXPECT_EQ(DecimalLength(std::numeric_limits<std::int32_t>::min()), 11);
}

TEST(CellValue, ReadsNumbersAsTheCLibraryDoes) {
  // Halfway between the largest double and what would follow it.
  const std::string halfway =
      "179769313486231580793728971405303415079934132710037826936173778980444968292764750946649017"
      "977587207096330286416692887910946555547851940402630657488671505820681908902000708383676273"
      "854845817711531764475730270069855571366959622842914819860834936475292719074168444365510704"
      "342711559699508093042880177904174497792";
  const char* const texts[] = {"",          " ",          "1",        "+1",
                               "-1.5",      "\t\n 2.25x", "1e",       "1e+",
                               "1e5",       ".5",         "5.",       ".",
                               "-.",        "+-1",        "- 1",      "inf",
                               "-Infinity", "nan",        "0x1A",     "-0x1.8p3",
                               "0x",        "0x-5",       "0xg",      "1e400",
                               "-1e400",    "1e-400",     "4.9e-324", "2.4703282292062328e-324",
                               "0x1p5000",  "0x1p-5000",  "1,5",      halfway.c_str()};
  for (const char* const text : texts) {
    char* end = nullptr;
    const double read = std::strtod(text, &end);
    const double expected = end == text ? 0 : read;  // where a sign alone would be a negative zero
    const double value = ParseDouble(text);
    EXPECT_TRUE(value == expected || (std::isnan(value) && std::isnan(expected)))
        << text << ": " << value << " for " << expected;
    EXPECT_EQ(std::signbit(value), std::signbit(expected)) << text;
  }
}

}  // namespace
}  // namespace qv
