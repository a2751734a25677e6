// Cells by the names of their columns: which column a name means, and what a look-up allocates.
#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text/Letters.h"
#include "qvnetcall/RvoDbRes.h"
#include "resultset/ResultTable.h"
#include "tests/support/Allocations.h"

namespace qv {
namespace {

// Appends a column with one cell.
template <class Held, class Value>
void AddColumn(CRvoDbRes& result, std::string_view name, const Value& value) {
  Held cells;
  cells.push_back(value);
  ResultTable::Of(result).AddColumn({.name = std::string(name), .cells = std::move(cells)});
}

// Finds what the table must find, in the slow and obvious way.
int FirstOf(const std::vector<std::string>& names, const std::string& wanted) {
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (text::ToLower(names[i]) == text::ToLower(wanted)) return static_cast<int>(i);
  }
  return -1;
}

// With few characters, many names are equal or nearly so. Some characters that are not letters
// differ only in the bit that distinguishes the cases of a letter.
std::string RandomName(std::mt19937& random) {
  constexpr std::string_view kCharacters = "aAzZ@`[{\xC1\xE1";
  std::string name(random() % 30, 'x');
  if (!name.empty()) {
    name.front() = kCharacters[random() % kCharacters.size()];
    name[random() % name.size()] = kCharacters[random() % kCharacters.size()];
    name.back() = kCharacters[random() % kCharacters.size()];
  }
  return name;
}

TEST(FieldNames, MeanTheFirstColumnThatHasThemAsColumnsComeAndGo) {
  std::mt19937 random(1);
  std::vector<std::string> names;
  const auto known_or_not = [&] {
    const bool is_known = !names.empty() && random() % 2 == 0;
    return CString(is_known ? text::ToLower(names[random() % names.size()]).c_str()
                            : RandomName(random).c_str());
  };
  CRvoDbRes result;
  for (int round = 0; round < 3000; ++round) {
    if (random() % 3 != 0) {
      names.push_back(RandomName(random));
      AddColumn<IntCells>(result, names.back(), 0);
    } else {
      const CString removed = known_or_not();
      const int index = FirstOf(names, removed.GetString());
      if (index >= 0) names.erase(names.begin() + index);
      result.DelOneColumn(removed);
    }
    ASSERT_EQ(result.GetFieldCount(), std::ssize(names));
    const CString wanted = known_or_not();
    ASSERT_EQ(result.GetFieldNameId(wanted), FirstOf(names, wanted.GetString())) << wanted;
  }
}

TEST(FieldNames, ChosenToCollideAreAddedAsQuickly) {
  constexpr int kMany = 200000;
  CRvoDbRes result;
  const auto name_of = [](int i) { return "the same" + std::to_string(kMany + i) + "ends of all"; };
  for (int i = 0; i < kMany; ++i) AddColumn<IntCells>(result, name_of(i), i);
  EXPECT_EQ(result._int(0, name_of(kMany - 1).c_str()), kMany - 1);
}

TEST(FieldNames, CostNoAllocationButTheReturnedText) {
  CRvoDbRes result;
  for (int i = 0; i < 20; ++i) {
    AddColumn<TextCells>(result, "CI_Description_" + std::to_string(i), "");
  }
  AddColumn<IntCells>(result, "CI_NumberOfThisRow", -123456789);
  AddColumn<DoubleCells>(result, "CI_WeightInTonnes", 123456789.5);
  AddColumn<DateCells>(result, "CI_TimeOfLastChange", DateCell::Of(COleDateTime(45000.25)));
  AddColumn<TextCells>(result, "CI_TitleOfThisDocument", std::string(100, 't'));
  for (const char* const name : {"ci_numberOfThisRow", "CI_WEIGHTINTONNES", "CI_TimeOfLastChange",
                                 "ci_titleofthisdocument", "ci_titleofthatdocument"}) {
    const CString field(name);
    const CString text = result._str(0, field);
    const std::size_t copy = AllocationsOf([&] { return CString(text); });
    EXPECT_EQ(AllocationsOf([&] { return result[name]; }), copy) << name;
    EXPECT_EQ(AllocationsOf([&] { return result._str(0, field); }), copy) << name;
    EXPECT_EQ(AllocationsOf([&] { return result._int(0, field); }), 0U) << name;
    EXPECT_EQ(AllocationsOf([&] { return result._dabl(0, field); }), 0U) << name;
    EXPECT_EQ(AllocationsOf([&] { return result._time(0, field); }), 0U) << name;
    EXPECT_EQ(AllocationsOf([&] { return result.GetFieldNameId(field); }), 0U) << name;
  }
}

}  // namespace
}  // namespace qv
