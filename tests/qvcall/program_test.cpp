// Runs the program itself against stand-in servers and databases.
#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/ServerProcess.h"
#include "tests/support/TempFolder.h"

namespace qv {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;
using Words = std::vector<std::string>;

class Program : public testing::Test {
 protected:
  std::string Here(const std::string& name) const { return (folder_.Path() / name).string(); }
  Ended Call(Words words) const {
    words.insert(words.begin(), QV_QVCALL);
    return RunToEnd(words, folder_.Path().string());
  }

  const TempFolder folder_;
};

TEST_F(Program, KeepsTheAnswersOfEachServerApart) {
  const auto serve = [this](const std::string& data) {
    return Words{QV_STANDIN, "--data", Here(data), "--port", "0"};
  };
  ServerProcess servers[] = {ServerProcess(serve("one")), ServerProcess(serve("two"))};
  const auto query = [&](int server, const std::string& text, const std::string& option) {
    return Call({"--port", std::to_string(servers[server].Port()), "query", text, "--db",
                 "DESIGNDB", "--format", "csv", "--cache", Here("cache"), option});
  };
  const std::string text = "select name from projects where id = 1";
  Call({"--port", std::to_string(servers[1].Port()), "exec", "update projects set name = 'two'",
        "--db", "DESIGNDB"});
  EXPECT_THAT(query(0, text, "--offline").output, HasSubstr("holds no answers of 127.0.0.1:"));
  for (const int server : {0, 1}) EXPECT_EQ(query(server, text, "--web=false").status, 0);
  for (const int server : {0, 1}) {
    servers[server].Kill();
    for (const char* option : {"--offline", "--web=false"}) {
      const Ended answered = query(server, text, option);
      EXPECT_THAT(
          answered.output,
          AllOf(StartsWith("answered from the cache: "), HasSubstr("; the answer was stored "),
                HasSubstr(server == 1 ? "\nname\ntwo\n" : "\nname\n城南地铁站2期\n")));
      EXPECT_EQ(answered.status, 0);
      const Ended unknown = query(server, "select 1", option);
      EXPECT_THAT(unknown.output, HasSubstr("the cache has no answer of 127.0.0.1:"));
      EXPECT_EQ(unknown.status, 1);
    }
  }
}

TEST_F(Program, NamesTheFileOfADatabaseThatDoesNotExist) {
  const std::string driver = "Driver=SQLite3;Database=";
  const Ended missing = Call({"--direct", driver + "none.db", "query", "select 1"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_THAT(missing.output, StartsWith("qvcall: none.db: there is no such file"));
  EXPECT_FALSE(std::filesystem::exists(Here("none.db")));
  EXPECT_EQ(Call({"--direct", driver + ":memory:", "query", "select 1"}).status, 0);
}

}  // namespace
}  // namespace qv
