// Tests the log of requests: its lines, what they must not show, and its files.
#include "tools/qvstandin/net/RequestLog.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/support/TempFolder.h"

namespace qv::standin {
namespace {

using testing::HasSubstr;
using testing::Not;

ServedCommand Failed() {
  return {.command = 200,
          .database = "DESIGNDB",
          .outcome = "near \"x\": syntax error",
          .bytes = 24,
          .time = std::chrono::milliseconds(7),
          .error_class = error::kSyntax,
          .peer = "127.0.0.1:4711",
          .statement = "selec\n'x'",
          .at = std::chrono::system_clock::time_point(std::chrono::milliseconds(1'500))};
}

TEST(LogLine, HasTheSameFieldsForEveryRequest) {
  EXPECT_EQ(LogLine(Failed(), false),
            "1970-01-01T00:00:01.500Z 127.0.0.1:4711 200 \"DESIGNDB\" rows=- bytes=24 ms=7 "
            "class=syntax reason=\"near 'x': syntax error\"");
  EXPECT_THAT(LogLine(Failed(), true), testing::EndsWith(" statement=\"selec\\u000a'x'\""));
  ServedCommand done = Failed();
  done.error_class = error::kNone;
  done.rows = 12;
  done.database.clear();
  EXPECT_THAT(LogLine(done, false), testing::EndsWith(" 200 - rows=12 bytes=24 ms=7 class=none"));
}

TEST(LogLines, ShowWhatHidesAndEscapeOnce) {
  const std::pair<const char*, const char*> cases[] = {{"a\\b", "a\\\\b"},
                                                       {"\xE2\x80\xAE"
                                                        "dwg",
                                                        "\\u202edwg"},
                                                       {"\xE2\x80\x8B", "\\u200b"},
                                                       {"\xC2\x9B"
                                                        "2J",
                                                        "\\u009b2J"},
                                                       {"\x7f", "\\u007f"},
                                                       {"\xF3\xA0\x80\x81", "\\udb40\\udc01"},
                                                       {"图 é", "图 é"}};
  for (const auto& [text, shown] : cases) {
    ServedCommand served = Failed();
    served.database = served.outcome = served.statement = text;
    const std::string field = '"' + std::string(shown) + '"';
    for (const char* name : {" 200 ", " reason=", " statement="}) {
      EXPECT_THAT(LogLine(served, true), HasSubstr(name + field));
    }
    EXPECT_THAT(JsonLine(served, true), HasSubstr("\"reason\":" + field));
    EXPECT_EQ(nlohmann::json::parse(JsonLine(served, true))["database"], text);
  }
  ServedCommand served = Failed();
  served.database = "\x1b[2J\n\xb0\"";
  EXPECT_THAT(LogLine(served, true), HasSubstr(" \"\\u001b[2J\\u000a\\xb0'\" "));
}

TEST(JsonLine, IsOneObjectWithNumbersAndNulls) {
  ServedCommand served = Failed();
  served.statement += "\xff";
  const auto line = nlohmann::json::parse(JsonLine(served, true));
  EXPECT_EQ(line["time"], "1970-01-01T00:00:01.500Z");
  EXPECT_EQ(line["command"], 200);
  EXPECT_EQ(line["database"], "DESIGNDB");
  EXPECT_TRUE(line["rows"].is_null());
  EXPECT_EQ(line["ms"], 7);
  EXPECT_EQ(line["class"], "syntax");
  EXPECT_EQ(line["reason"], "near \"x\": syntax error");
  EXPECT_EQ(line["statement"], "selec\n'x'\xEF\xBF\xBD");
  EXPECT_FALSE(nlohmann::json::parse(JsonLine(served, false)).contains("statement"));
}

TEST(WithoutPasswords, HidesTextsThatAreOrHoldOne) {
  const std::pair<const char*, const char*> cases[] = {
      {"alter role r password 'hush'", "alter role r password '***'"},
      {"alter role r PASSWORD = N'hush'", "alter role r PASSWORD = N'***'"},
      {"create user u identified by \"hush\"", "create user u identified by '***'"},
      {"select dblink('host=h Pwd=hush', 'select 1')", "select dblink('***', 'select 1')"},
      {"select 'open', x from t order by 1", "select 'open', x from t order by 1"},
      {"insert into password values (1, 'x')", "insert into password values (1, 'x')"}};
  for (const auto& [statement, shown] : cases) EXPECT_EQ(WithoutPasswords(statement), shown);
}

TEST(RequestLog, ShowsTheLinesOfAFileToo) {
  const TempFolder folder;
  for (const bool is_shown : {false, true}) {
    RequestLog log({.file = folder.At("log"), .is_shown = is_shown});
    ASSERT_TRUE(log.Open());
    testing::internal::CaptureStderr();
    log.Add(Failed());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              is_shown ? LogLine(Failed(), false) + "\n" : "");
  }
}

TEST(RequestLog, KeepsThreeOlderFilesOfTheSizeAndGoesOnAfterARestart) {
  const TempFolder folder;
  const std::string file = folder.At("log");
  const std::size_t line = LogLine(Failed(), false).size() + 1;
  for (int start = 0; start < 3; ++start) {
    RequestLog log({.file = file, .size = 2 * line});
    ASSERT_TRUE(log.Open());
    for (int i = 0; i < 5; ++i) log.Add(Failed());
  }
  EXPECT_EQ(std::filesystem::file_size(file), line);
  for (const char* older : {".1", ".2", ".3"}) {
    EXPECT_EQ(std::filesystem::file_size(file + older), 2 * line) << older;
  }
  EXPECT_FALSE(std::filesystem::exists(file + ".4"));
  EXPECT_FALSE(RequestLog({.file = (folder.Path() / "missing" / "log").string()}).Open());
}

}  // namespace
}  // namespace qv::standin
