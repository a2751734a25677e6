// Every call receives replies that no honest server sends; the sanitizers find what goes wrong.
#include "CallsFixture.h"

namespace qv::test {
namespace {

TEST_F(Calls, AreNotHarmedByHostileReplies) {
  // Small enough for the smallest reply's block.
  std::vector<std::string> starts = {""};
  for (const char* const number : {"-1", "0", "1", "3", "2147483647", "4294967296", "x", "SUCCESS",
                                   "FAILURE", "1\n", "00000000000000000000000000001"}) {
    starts.push_back(Fields().Text(number).Payload());
  }
  const std::string lengths[] = {std::string("\xFF\xFF\xFF\xFF", 4), std::string("\0\0\0\x80", 4),
                                 std::string("\xFF\xFF\xFF\x7F", 4), std::string(4, '\0')};
  std::vector<std::string> ends = {"",
                                   "x",
                                   Fields().Text(std::string(300, 'r')).Payload(),
                                   Fields().Text("2147483647").Text("abc").Payload(),
                                   Fields().Text("-1").Payload(),
                                   Fields().Number(-1).Payload(),
                                   Fields().Text(std::string("a\0b", 3)).Payload()};
  std::string unterminated = Fields().Text("12").Payload();
  unterminated.back() = 'y';
  ends.push_back(unterminated);
  for (const std::string& length : lengths) ends.push_back(length + "abcdef");
  const auto calls = EveryCall();
  for (const std::string& start : starts) {
    for (const std::string& end : ends) {
      Answer(Fields().Raw(start).Raw(end));
      for (const auto& one : calls) one.call();
    }
  }
  EXPECT_EQ(transport_.requests.size(), starts.size() * ends.size() * calls.size());
}

}  // namespace
}  // namespace qv::test
