#include "tools/qvcall/output/DisplayText.h"

#include <gtest/gtest.h>

#include <string>

namespace {

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
      {"\x7f\u009b", "\\x7f\\x9b", 8},
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
