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

// Fills a result set without a file, so that these tests do not depend on the readers.
void Fill(CRvoDbRes& result, std::initializer_list<TypedColumn> columns) {
  ResultTable& table = ResultTable::Of(result);
  for (const TypedColumn& typed : columns) {
    Column& column =
        table.AddColumn({.name = typed.name, .type = typed.type, .cells = CellsFor(typed.type)});
    for (const std::string& text : typed.cells) {
      if (auto* ints = std::get_if<IntCells>(&column.cells)) ints->push_back(ParseInteger(text));
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

struct Filled : CRvoDbRes {
  Filled(std::initializer_list<TypedColumn> columns) { Fill(*this, columns); }
};

std::vector<std::string> Texts(const CRvoDbRes& result, const char* field) {
  std::vector<std::string> texts;
  for (int row = 0; row < result.GetRecordCount(); ++row) {
    texts.emplace_back(result._str(row, field));
  }
  return texts;
}

using Strings = std::vector<std::string>;

TEST(RvoDbRes, GivesTextFormsAndValuesByType) {
  Filled result{{"n", 3, {"-7", "2147483647", "0"}},
                {"d", 5, {"2.5", "2.1", "-2.5"}},
                {"t", 135, {"2024-02-29T23:59:59", "1899-12-29 06:00:01", ""}},
                {"s", 200, {" 12.5x ", "", "text"}}};
  EXPECT_EQ(Texts(result, "N"), (Strings{"-7", "2147483647", "0"}));
  EXPECT_EQ(Texts(result, "D"), (Strings{"2.500000", "2.100000", "-2.500000"}));
  EXPECT_EQ(Texts(result, "T"), (Strings{"2024-02-29 23:59:59", "1899-12-29 06:00:01", ""}));
  EXPECT_EQ(Texts(result, "S"), (Strings{"12.5x", "", "text"}));

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
  Filled result{{"d", 5, {"1e300", "-inf", "nan", "-0.5", "2147483646.5"}}};
  const std::vector<long> expected = {2147483647, -2147483648L, 0, 0, 2147483647};
  for (int row = 0; row < result.GetRecordCount(); ++row) {
    EXPECT_EQ(result._int(row, 0), expected[static_cast<std::size_t>(row)]) << row;
  }
}

TEST(RvoDbRes, IsNeutralOutsideTheTable) {
  Filled result{{"n", 3, {"1"}}};
  const std::pair<int, int> places[] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {2147483647, 2147483647}};
  for (const auto& [row, column] : places) {
    EXPECT_TRUE(result._str(row, column).IsEmpty());
    EXPECT_EQ(result._int(row, column), 0);
    EXPECT_EQ(result._dabl(row, column), 0.0);
    EXPECT_EQ(result._time(row, column).GetStatus(), COleDateTime::valid);
    EXPECT_TRUE(result.IsNull(row, column));
    EXPECT_TRUE(result._text(row, column).IsEmpty());
    EXPECT_EQ(result._int64(row, column), 0);
  }
  EXPECT_FALSE(result.IsNull(0, 0));
  EXPECT_TRUE(result.IsNull(0, "unknown"));
  EXPECT_EQ(result.GetFieldType(1), field_type::kNoField);
  EXPECT_EQ(result.GetFieldType("unknown"), field_type::kNoField);
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

  Filled no_rows{{"n", 3, {}}};
  EXPECT_EQ(no_rows.MoveFirst(), 0);
  EXPECT_EQ(no_rows.MoveNext(), 0);
  EXPECT_THROW(no_rows[0], CInvalidArgException);
  EXPECT_THROW(no_rows["n"], CInvalidArgException);
  EXPECT_TRUE(no_rows._str(0, 0).IsEmpty());
}

TEST(RvoDbRes, TrimsNamesOnlyAtTheBrackets) {
  Filled result{{"Name", 200, {"first"}}, {"NAME", 200, {"second"}}, {" odd", 200, {"odd"}}};
  EXPECT_EQ(result["  NAME "], "first");
  EXPECT_EQ(result.GetFieldNameId("  NAME "), -1);
  EXPECT_EQ(result.GetFieldNameId("nAME"), 0);
  EXPECT_TRUE(result[" odd"].IsEmpty());  // the argument is trimmed, the column's name is not
  EXPECT_EQ(result._str(0, " ODD"), "odd");
}

TEST(RvoDbRes, AddsASumRow) {
  Filled result{{"n", 3, {"1", "2", "3"}},
                {"w", 20, {"2147483647", "1", "0"}},
                {"d", 5, {"0.5", "0.25", "1"}},
                {"s", 200, {"a", "b", "c"}},
                {"t", 7, {"", "", ""}}};
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

  Filled no_rows{{"s", 200, {}}, {"n", 3, {}}};
  CStringArray text_only;
  text_only.Add("s");
  EXPECT_NO_THROW(no_rows.AddSumInfo(text_only));
  EXPECT_THROW(no_rows.AddSumInfo(fields), CInvalidArgException);
}

TEST(RvoDbRes, ReplacesTextsAndCarriesThemOver) {
  CMapStringToString texts;
  texts.SetAt("A", "Alpha ");
  Filled result{{"x", 200, {" A", "B", "A"}}, {"y", 200, {"B", "A", ""}}};
  result.ReplaceStrByFieldName("X", &texts);
  result.ReplaceStrByFieldName("Y", &texts);
  result.ReplaceStrByFieldName("none", &texts);
  EXPECT_EQ(Texts(result, "x"), (Strings{"Alpha ", "Alpha ", "Alpha "}));
  EXPECT_EQ(Texts(result, "y"), (Strings{"", "Alpha ", "Alpha "}));
  EXPECT_EQ(result.GetFiledLength(0), 6);
}

TEST(RvoDbRes, ReplacesIntegersWithoutCarryingOver) {
  CMap<long, long, CString, CString> texts;
  texts.SetAt(1, "one");
  Filled result{{"n", 11, {"1", "2", "1"}}, {"s", 200, {"1", "2", "3"}}};
  ResultTable::Of(result).Columns()[0].declared_length = 9;
  result.ReplaceIntByFieldName("N", &texts);
  result.ReplaceIntByFieldName("S", &texts);  // not an integer column
  EXPECT_EQ(Texts(result, "n"), (Strings{"one", "", "one"}));
  EXPECT_EQ(Texts(result, "s"), (Strings{"1", "2", "3"}));
  EXPECT_EQ(ResultTable::Of(result).Columns()[0].type, 202);
  EXPECT_EQ(ResultTable::Of(result).Columns()[0].declared_length, 9);
  EXPECT_EQ(result.GetFiledLength(0), 3);
}

Strings ExactTexts(const CRvoDbRes& result, const char* field) {
  Strings texts;
  for (int row = 0; row < result.GetRecordCount(); ++row) {
    texts.emplace_back(result.IsNull(row, field) ? "null" : result._text(row, field).GetString());
  }
  return texts;
}

TEST(RvoDbRes, GivesWhatTheServerSaidBesideThePlatformsForm) {
  const struct {
    int type;
    const char* value;
    const char* text;
    std::int64_t integer;
    const char* platforms_text;
  } cases[] = {
      {20, "9223372036854775807", "9223372036854775807", INT64_MAX, "2147483647"},
      {20, "-9223372036854775809", "-9223372036854775808", INT64_MIN, "-2147483648"},
      {3, "2147483648", "2147483648", 2147483648, "2147483647"},
      {3, "1234567890123456", "1234567890123456", 1234567890123456, "2147483647"},
      {17, "12345678901x2345", "12345678901", 12345678901, "2147483647"},
      {5, "0.1", "0.1", 1, "0.100000"},
      {5, "1e-9", "1e-09", 1, "0.000000"},
      {5, "-0", "-0", 0, "-0.000000"},
      {5, "9007199254740993", "9007199254740992", 9007199254740992, "9007199254740992.000000"},
      {5, "-1e19", "-1e+19", INT64_MIN, "-10000000000000000000.000000"},
      {5, "9223372036854775807", "9223372036854775808", INT64_MAX, "9223372036854775808.000000"},
      {5, "nan", "nan", 0, "nan"},
      {135, "2024-02-29T23:59:59.9876+08:00", "2024-02-29 23:59:59.987", 0, "2024-02-29 23:59:59"},
      {135, "2024-02-29 23:59:59.05", "2024-02-29 23:59:59.050", 0, "2024-02-29 23:59:59"},
      {7, "2024-02-29 00:00:00.000", "2024-02-29 00:00:00", 0, "2024-02-29 00:00:00"},
      {7, "1899-12-30 00:00:00", "1899-12-30 00:00:00", 0, ""},
      {7, "0001-01-01 00:00:00", "0001-01-01 00:00:00", 0, ""},
      {7, "2023-02-29 25:00:00", "2023-02-29 25:00:00", 0, ""},
      {7, "2024-02-29", "2024-02-29", 0, ""},
      {7, "abcd-ef-gh ij:kl:mn", "", 0, ""},
      {7, "2024- 1- 2 03:04:05", "2024-01-02 03:04:05", 0, "2024-01-02 03:04:05"},
      {200, "99999999999 files", "99999999999 files", 99999999999, "99999999999 files"},
      {129, " \t 12 x\r\n", " \t 12 x\r\n", 12, "12 x"},
      {131, "12345678901234.5678", "12345678901234.5678", 12345678901234, "12345678901234.5678"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    Filled result{{"c", static_cast<std::uint8_t>(c.type), {c.value}}};
    EXPECT_EQ(result.GetFieldType("C"), c.type);
    EXPECT_EQ(result._text(0, 0), c.text);
    EXPECT_EQ(result._int64(0, 0), c.integer);
    EXPECT_EQ(result._str(0, 0), c.platforms_text);
  }
}

TEST(RvoDbRes, KeepsThePlatformsStatusOfDates) {
  Filled result{
      {"t",
       7,
       {"", "1899-12-30 00:00:00", "2023-02-29 00:00:00", "abcd-ef-gh ij:kl:mn", "2024-02-29"}}};
  const int statuses[] = {COleDateTime::valid, COleDateTime::valid, COleDateTime::invalid,
                          COleDateTime::invalid, COleDateTime::valid};
  for (int row = 0; row < result.GetRecordCount(); ++row) {
    EXPECT_EQ(result._time(row, 0).GetStatus(), statuses[row]) << row;
    EXPECT_EQ(result._time(row, 0).m_dt, 0.0) << row;
  }
}

TEST(RvoDbRes, SumsExactlyAndAsThePlatformDoes) {
  Filled result{{"n", 20, {"9223372036854775807", "5", "-9223372036854775807"}},
                {"most", 20, {"9223372036854775807", "9223372036854775807", "7"}},
                {"d", 5, {"0.5", "0", "1"}}};
  for (Column& column : ResultTable::Of(result).Columns()) column.nulls.Add(1);
  CStringArray fields;
  for (const char* const name : {"n", "most", "d"}) fields.Add(name);
  result.AddOneRow();
  result.AddSumInfo(fields);
  const std::string largest = "9223372036854775807";
  EXPECT_EQ(ExactTexts(result, "n"), (Strings{largest, "null", "-" + largest, "5"}));
  EXPECT_EQ(result._int(3, "n"), 4);  // the largest, 5 and the smallest number of 32 bits
  EXPECT_EQ(result._str(3, "n"), "4");
  EXPECT_EQ(result._dabl(3, "n"), 4.0);
  EXPECT_EQ(result._int64(3, "most"), INT64_MAX);
  EXPECT_EQ(ExactTexts(result, "d"), (Strings{"0.5", "null", "1", "1.5"}));
  // A sum is a value like others for the next one.
  result.AddOneRow();
  result.AddSumInfo(fields);
  EXPECT_EQ(result._int64(4, "n"), 10);
  EXPECT_EQ(result._int(4, "n"), 8);
}

TEST(RvoDbRes, KnowsWhichCellsAreNullAfterChanges) {
  CMapStringToString texts;
  texts.SetAt("A", "Alpha");
  CMap<long, long, CString, CString> names;
  names.SetAt(0, "none");
  names.SetAt(2147483647, "huge");
  Filled result{{"s", 200, {"", "A", "", "B"}},
                {"n", 20, {"", "4294967296", "", "7"}},
                {"m", 3, {"", "1", "", "2"}},
                {"t", 7, {"", "2024-02-29 00:00:00", "", ""}}};
  for (Column& column : ResultTable::Of(result).Columns()) {
    column.nulls.Add(0);
    column.nulls.Add(2);
  }
  EXPECT_EQ(ExactTexts(result, "s"), (Strings{"null", "A", "null", "B"}));
  EXPECT_EQ(ExactTexts(result, "n"), (Strings{"null", "4294967296", "null", "7"}));
  EXPECT_EQ(result._int(0, "n"), 0);
  result.ReplaceStrByFieldName("s", &texts);
  EXPECT_EQ(ExactTexts(result, "s"), (Strings{"null", "Alpha", "Alpha", "Alpha"}));
  result.ReplaceIntByFieldName("n", &names);
  EXPECT_EQ(ExactTexts(result, "n"), (Strings{"none", "huge", "none", ""}));
  EXPECT_EQ(result.GetFieldType("n"), field_type::kVarWChar);
  for (int again = 0; again < 2; ++again) result.DelOneColumn("N");
  ASSERT_EQ(result.GetFieldCount(), 3);
  EXPECT_EQ(result.GetFiledName(1), "m");
  EXPECT_EQ(ExactTexts(result, "m"), (Strings{"null", "1", "null", "2"}));
  result.AddOneRow();
  const int added = result.GetRecordCount() - 1;
  for (int column = 0; column < result.GetFieldCount(); ++column) {
    EXPECT_FALSE(result.IsNull(added, column)) << column;
  }
  EXPECT_EQ(result._text(added, "m"), "0");
  EXPECT_EQ(result._text(added, "t"), result._str(added, "t"));
}

TEST(NullRows, TakeABitEach) {
  NullRows nulls;
  for (std::size_t row = 0; row < 1000; row += 7) nulls.Add(row);
  nulls.Remove(63);
  nulls.Remove(100000);
  for (std::size_t row = 0; row < 2000; ++row) {
    EXPECT_EQ(nulls.Has(row), row < 1000 && row % 7 == 0 && row != 63) << row;
  }
  nulls.Clear();
  nulls.Add(500);
  EXPECT_FALSE(nulls.Has(7) || nulls.Has(497));  // what was there before is gone
}

TEST(CellText, MeasuresWithoutFormatting) {
  const double infinity = std::numeric_limits<double>::infinity();
  std::vector<double> values = {0.0,          -0.0,      1e-320,
                                -1e-9,        1e15,      1e16,
                                1e22,         1e300,     1.7976931348623157e308,
                                infinity,     -infinity, std::nan(""),
                                -std::nan("")};
  // Numbers around every power of ten, and around those that are rounded up to it.
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
