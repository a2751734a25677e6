// Runs the program itself against stand-in servers and databases.
#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <optional>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/PostgresServer.h"
#include "tests/support/ServerProcess.h"
#include "tests/support/TempFolder.h"

namespace qv {
namespace {

using testing::AllOf;
using testing::AnyOf;
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

// The rows of exact_values, as each format shows them.
const std::pair<const char*, const char*> kShown[] = {{"table",
                                                       R"( i | d | n | t | w | b
-+-+-+-+-+-
9223372036854775807 | 1e-09 | 12345678901234.5678 | | 2026-02-28 23:59:59 | FILE
 NULL | NULL | NULL | NULL | NULL | NULL
 0 | 1e+300 | 0 | x | 1999-12-31 00:00:00 |
 -1 | 0.1 | -0.1 | 阀 | 2026-02-28 23:59:59 | FILE
(4 rows)
)"},
                                                      {"csv", R"(i,d,n,t,w,b
9223372036854775807,1e-09,12345678901234.5678,"",2026-02-28 23:59:59,FILE
,,,,,
0,1e+300,0,x,1999-12-31 00:00:00,""
-1,0.1,-0.1,阀,2026-02-28 23:59:59,FILE
)"},
                                                      {"json", R"([
{"i":9223372036854775807,"d":1e-09,"n":12345678901234.5678,"t":"","w":"2026-02-28 23:59:59","b":"FILE"},
{"i":null,"d":null,"n":null,"t":null,"w":null,"b":null},
{"i":0,"d":1e+300,"n":0,"t":"x","w":"1999-12-31 00:00:00","b":""},
{"i":-1,"d":0.1,"n":-0.1,"t":"阀","w":"2026-02-28 23:59:59","b":"FILE"}
]
)"}};

// Puts FILE in the place of paths, shortens padding, and lets no text be a text that a driver would
// call a number: a recordset has no type for decimals.
std::string Plain(std::string output) {
  const std::pair<const char*, const char*> changes[] = {{"/[^ \",\n]*qvcd[^ \",\n]*", "FILE"},
                                                         {" +", " "},
                                                         {"--+", "-"},
                                                         {R"-("n":"([^"]*)")-", R"("n":$1)"}};
  for (const auto& [pattern, text] : changes) {
    output = std::regex_replace(output, std::regex(pattern), text);
  }
  return output;
}

class ExactValues : public Program {
 protected:
  // Fills the database that `direct` leads to with values of each kind, and serves it.
  void Serve(const std::string& direct, const std::string& number, const std::string& bytes,
             const std::string& bytes_like) {
    ways_ = {{"--direct", direct}};
    Run("create table exact_values (id integer, i bigint, d double precision, n " + number +
        ", t varchar(20), w timestamp, b " + bytes + ")");
    Run("insert into exact_values values "
        "(1, 9223372036854775807, 1e-9, '12345678901234.5678', '', '2026-02-28 23:59:59', " +
        bytes_like +
        "), (2, null, null, null, null, null, null), "
        "(3, 0, 1e300, '0', 'x', '1999-12-31 00:00:00', ''), "
        "(4, -1, 0.1, '-0.1', '阀', '2026-02-28 23:59:59', " +
        bytes_like + ")");
    server_.emplace(Words{QV_STANDIN, "--data", Here("data"), "--port", "0", "--http-port", "0"},
                    2);
    const std::string port = std::to_string(server_->Port());
    const std::string http_port = std::to_string(server_->Port(1));
    ways_.push_back({"--port", port, "--db", "DESIGNDB"});
    ways_.push_back({"--web", "--http-port", http_port, "--db", "DESIGNDB"});
  }
  void Run(const std::string& statement) {
    const Ended ended = Query(ways_[0], "exec", statement);
    EXPECT_EQ(ended.status, 0) << ended.output;
  }
  Ended Query(Words way, const std::string& command, const std::string& text,
              const std::string& format = "") {
    way.insert(way.begin(), {command, text});
    if (!format.empty()) way.insert(way.end(), {"--format", format});
    return Call(way);
  }
  void ExpectExactValues() {
    for (const Words& way : ways_) {
      for (const auto& [format, shown] : kShown) {
        const Ended rows =
            Query(way, "query", "select i, d, n, t, w, b from exact_values order by id", format);
        EXPECT_EQ(Plain(rows.output), shown) << way[0];
        EXPECT_EQ(rows.status, 0);
      }
      EXPECT_EQ(Query(way, "query", "select sum(size_bytes) as n from documents", "csv").output,
                "n\n133844670540\n");
    }
  }

  std::vector<Words> ways_;
  std::optional<ServerProcess> server_;
};

TEST_F(ExactValues, ComeFromSqlite) {
  { const ServerProcess makes_samples({QV_STANDIN, "--data", Here("data"), "--port", "0"}); }
  Serve("Driver=SQLite3;Database=" + Here("data/db/DESIGNDB.sqlite"), "varchar(40)", "blob",
        "x'00ff'");
  ExpectExactValues();
}

TEST_F(ExactValues, ComeFromPostgreSql) {
  const PostgresServer postgres;
  ASSERT_TRUE(postgres.Run({"-f", QV_SAMPLES "/postgresql.sql", "-f", QV_SAMPLES "/DESIGNDB.sql"}));
  std::filesystem::create_directory(Here("data"));
  const std::string settings = folder_.Write(
      "data/databases.json", R"({"DESIGNDB": {"odbc": ")" + postgres.ConnectionText() + "\"}}");
  std::filesystem::permissions(settings, std::filesystem::perms::owner_read);
  Serve(postgres.ConnectionText(), "numeric", "bytea", "'\\x00ff'");
  ExpectExactValues();
}

// Takes minutes if nobody cancels it.
constexpr const char kSlow[] =
    "with recursive n (i) as (select 1 union all select i + 1 from n where i < 2000000000) "
    "select count(*) from n";

TEST_F(ExactValues, AreNotWaitedForAfterAnInterrupt) {
  { const ServerProcess makes_samples({QV_STANDIN, "--data", Here("data"), "--port", "0"}); }
  Serve("Driver=SQLite3;Database=" + Here("data/db/DESIGNDB.sqlite"), "varchar(40)", "blob",
        "x'00ff'");
  for (Words way : ways_) {
    way.insert(way.begin(), {QV_QVCALL, "query", kSlow});
    int terminal = -1;
    const pid_t pid = SpawnOnTerminal(way, terminal);
    if (pid < 0) GTEST_SKIP() << "no terminals here";
    const std::string shown = ReadUntil(terminal, "  0:01");
    EXPECT_THAT(shown, AnyOf(HasSubstr("Waiting"), HasSubstr("The server is at work")));
    const std::string interrupt = "\x03";
    ASSERT_EQ(write(terminal, interrupt.data(), 1), 1);
    const Ended ended = WaitFor(pid, terminal);
    EXPECT_THAT(ended.output, AllOf(HasSubstr("qvcall: "), HasSubstr("cancelled")));
    EXPECT_EQ(ended.status, -SIGINT);
  }
}

}  // namespace
}  // namespace qv
