#include "tools/qvcall/options/CommandLine.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "qvnetcall/ResultCodes.h"
#include "tests/support/System.h"
#include "tests/support/TempFolder.h"
#include "tools/qvcall/output/ReturnCodes.h"

namespace {

using qv::tool::ParsedCommandLine;
using qv::tool::Route;

// Removes the environment variables of the test run; one case sets its own.
class CommandLine : public testing::Test {
 protected:
  CommandLine() { Forget(); }
  ~CommandLine() override { Forget(); }
  static void Forget() {
    for (const char* name :
         {"QVCALL_SERVER", "QVCALL_PORT", "QVCALL_HTTP_PORT", "QVCALL_TOKEN", "QVCALL_DIRECT"}) {
      qv::SetVariable(name, nullptr);
    }
  }
};

struct Parsed : ParsedCommandLine {
  std::string complaint;
};

Parsed Parse(std::vector<const char*> words) {
  words.insert(words.begin(), "qvcall");
  std::ostringstream out;
  std::ostringstream err;
  Parsed parsed{qv::tool::ParseCommandLine(static_cast<int>(words.size()), words.data(), out, err),
                err.str()};
  EXPECT_EQ(parsed.exit_status == qv::tool::kUsage, !parsed.complaint.empty());
  return parsed;
}

TEST_F(CommandLine, TakesGlobalOptionsOnEitherSideOfTheCommand) {
  for (const auto& words : std::vector<std::vector<const char*>>{
           {"--server", "h", "--port", "7", "--token", "t", "query", "SELECT 1", "--db", "D"},
           {"query", "--db", "D", "SELECT 1", "--port", "7", "--server", "h", "--token", "t"}}) {
    const qv::tool::CommandLine command = Parse(words).command;
    ASSERT_TRUE(command.query);
    EXPECT_EQ(command.connection.server, "h");
    EXPECT_EQ(command.connection.port, 7);
    EXPECT_EQ(command.connection.token, "t");
    EXPECT_EQ(command.connection.timeout_ms, std::nullopt);
    EXPECT_EQ(command.query->sql, "SELECT 1");
    EXPECT_EQ(command.query->database, "D");
    EXPECT_EQ(command.query->style.format, qv::tool::Format::kTable);
    EXPECT_FALSE(command.query->use_cache);
  }
}

TEST_F(CommandLine, TakesTheEnvironmentWhereAnOptionIsMissing) {
  qv::SetVariable("QVCALL_SERVER", "e");
  qv::SetVariable("QVCALL_PORT", "9");
  qv::SetVariable("QVCALL_TOKEN", "s");
  const qv::tool::ConnectionOptions connection =
      Parse({"ping", "--server", "h"}).command.connection;
  EXPECT_EQ(connection.server, "h");
  EXPECT_EQ(connection.port, 9);
  EXPECT_EQ(connection.token, "s");
  qv::SetVariable("QVCALL_PORT", "many");
  EXPECT_EQ(Parse({"ping"}).exit_status, qv::tool::kUsage);
}

TEST_F(CommandLine, TakesAStatementFromStandardInputAndACacheWithOrWithoutAFolder) {
  const auto query = [](std::vector<const char*> more) {
    more.insert(more.begin(), {"--port", "7", "query", "-", "--db", "D"});
    return Parse(more).command.query.value();
  };
  EXPECT_EQ(query({}).sql, "-");
  EXPECT_TRUE(query({"--cache"}).use_cache);
  EXPECT_EQ(query({"--cache"}).cache_folder, "");
  EXPECT_EQ(query({"--cache", "--format", "csv"}).style.format, qv::tool::Format::kCsv);
  EXPECT_EQ(query({"--cache", "/c"}).cache_folder, "/c");
  EXPECT_EQ(query({"--null", ""}).style.null_text, "");
  EXPECT_TRUE(query({"--offline"}).use_cache);
}

TEST_F(CommandLine, KeepsTheCommandsApart) {
  EXPECT_EQ(Parse({"--port", "7", "call", "p", "--db", "D"}).command.query.value().call,
            qv::tool::Call::kProcedure);
  const qv::tool::CommandLine exec = Parse({"--port", "7", "exec", "-", "--db", "D"}).command;
  EXPECT_TRUE(exec.exec && !exec.query && !exec.batch);
  EXPECT_EQ(Parse({"--port", "7", "batch", "f", "--db", "D"}).command.batch.value().file, "f");
}

TEST_F(CommandLine, TakesServerPathsAsTheyAreSent) {
  const auto taken = [](std::vector<const char*> words) {
    words.insert(words.begin(), {"--port", "7"});
    return Parse(words).command.store.value();
  };
  const auto put = std::get<qv::tool::PutFiles>(taken({"put", "a/b", "info", "-r", "c", "/x/y/"}));
  EXPECT_EQ(put.local, (std::vector<std::string>{"a/b", "info", "c"}));
  EXPECT_EQ(put.server_folder, "x\\y");
  EXPECT_TRUE(put.recursive);
  const auto get = std::get<qv::tool::GetFiles>(taken({"get", "-r", "/", "x/y", "./"}));
  EXPECT_EQ(get.server, (std::vector<std::string>{"", "x\\y"}));
  EXPECT_EQ(get.local_folder, "./");
  EXPECT_EQ(std::get<qv::tool::MovePath>(taken({"mv", "a/b", "c/"})).target, "c\\b");
  EXPECT_EQ(std::get<qv::tool::CopyFile>(taken({"cp", "a/b", "c"})).target, "c");
  EXPECT_EQ(std::get<qv::tool::PutById>(taken({"idput", "7", "n"})).local, "n");
  EXPECT_EQ(std::get<qv::tool::ListGroups>(taken({"groups"})).pattern, "*");
}

TEST_F(CommandLine, TakesAHostApartAndLeavesPathsElsewhereAsTheyAre) {
  const struct {
    const char* typed;
    const char* name;
    int port;
  } cases[] = {{"h", "h", 0}, {"ftpes://h:2121", "ftpes://h", 2121}};
  for (const auto& [typed, name, port] : cases) {
    const auto queue =
        Parse({"ftp", "put", "-r", "put", "/x\\y/", "--retries", "0", "--host", typed})
            .command.queue;
    ASSERT_TRUE(queue) << typed;
    EXPECT_EQ(queue->host.name, name);
    EXPECT_EQ(queue->host.port, port);
    EXPECT_EQ(queue->host.retries, 0);
    const auto& put = std::get<qv::tool::QueuePut>(queue->work);
    EXPECT_EQ(put.local, std::vector<std::string>{"put"});
    EXPECT_EQ(put.folder, "/x\\y/");
    EXPECT_TRUE(put.recursive);
  }
}

TEST_F(CommandLine, RefusesWrongUsageAndOptionsThatDoNotGoTogether) {
  const qv::TempFolder folder;
  const std::string some_file = folder.Write("some", "");
  const std::string long_name(256, 'n');
  const std::string long_folder = long_name.substr(2) + '/';
  const struct {
    std::vector<const char*> words;
    const char* complaint;  // null: no conflict
  } cases[] = {
      {{}, ""},
      {{"--port", "7"}, ""},
      {{"ping"}, ""},
      {{"--port", "0", "ping"}, ""},
      {{"--port", "65536", "ping"}, ""},
      {{"--port", "7", "--server", "", "ping"}, ""},
      {{"--port", "7", "--timeout-ms", "0", "ping"}, ""},
      {{"--port", "7", "query", "SELECT 1"}, ""},
      {{"--port", "7", "query", "--db", "D"}, ""},
      {{"--port", "7", "query", "SELECT 1", "--db", ""}, ""},
      {{"--port", "7", "query", "SELECT 1", "--db", "D", "--format", "xml"}, ""},
      {{"--port", "7", "ping", "--frob"}, ""},
      {{"--web", "--http-port", "8", "ping"}, nullptr},
      {{"--web", "--port", "7", "ping"}, nullptr},
      {{"--web", "ping"}, "--http-port or --port is required"},
      {{"--http-port", "8", "ping"}, "--port is required"},
      {{"--port", "7", "exec", "x"}, "--db is required"},
      {{"--port", "7", "query", "x", "--db", "D", "--null", "-", "--format", "json"}, "--null"},
      {{"--port", "7", "query", "x", "--db", "D", "--csv-safe"}, "--csv-safe"},
      {{"--port", "7", "batch", "f"}, "--db is required"},
      {{"--web", "--port", "7", "query", "x", "--db", "D", "--cache"}, "not support offline work"},
      {{"--web", "--port", "7", "query", "x", "--db", "D", "--offline"},
       "not support offline work"},
      {{"--port", "7", "--ca-file", some_file.c_str(), "ping"},
       "--ca-file can only be used with --web"},
      {{"--web", "--port", "7", "--ca-file", some_file.c_str(), "ping"}, "https://"},
      {{"--web", "--port", "7", "--server", "https://h", "--ca-file", some_file.c_str(), "ping"},
       nullptr},
      {{"--web", "--port", "7", "--server", "HTTPS://h", "--ca-file", some_file.c_str(), "ping"},
       nullptr},
      {{"--web", "--port", "7", "--ca-file", "/no/such", "ping"}, "does not exist"},
      {{"--web", "--port", "7", "--server", "https://h", "batch", "f", "--db", "D"}, "encrypt"},
      {{"--web", "--http-port", "8", "batch", "f", "--db", "D"}, nullptr},
      {{"--direct", "x=y", "ping"}, nullptr},
      {{"--direct", "x=y", "query", "x"}, nullptr},
      {{"--direct", "x=y", "call", "x", "--db", "D"}, nullptr},
      {{"--direct", "", "ping"}, "must not be empty"},
      {{"--direct", "x=y", "--web", "ping"}, "--web uses a server"},
      {{"--direct", "x=y", "query", "x", "--cache"}, "store answers of a server"},
      {{"--direct", "x=y", "query", "x", "--offline"}, "store answers of a server"},
      {{"--direct", "x=y", "batch", "f"}, "a batch needs a server"},
      {{"--direct", "x=y", "--timeout-ms", "9", "ping"}, "--timeout-ms"},
      {{"--direct", "x=y", "ls"}, "belong to a server"},
      {{"--web", "--port", "7", "--server", "HTTPS://h", "get", "a", "."}, "encrypt"},
      {{"--port", "7", "get", "a"}, "At least 2"},
      {{"--port", "7", "rm", "/"}, "must not be empty"},
      {{"--port", "7", "rm", long_name.c_str()}, "255"},
      {{"--port", "7", "cp", "a", long_name.c_str() + 1}, nullptr},
      {{"--port", "7", "mv", "aa", long_folder.c_str()}, "255"},
      {{"--port", "7", "idput", "-1", "a"}, "not in range"},
      {{"--port", "7", "idget", "1", "..\\a"}, "LOCAL"},
      {{"ftp", "put", "a", "b"}, "--host is required"},
      {{"ftp", "--host", "h"}, "subcommand is required"},
      {{"ftp", "--host", "h:0", "rm", "a"}, "1 to 65535"},
      {{"ftp", "--host", "h:66000", "rm", "a"}, "1 to 65535"},
      {{"ftp", "--host", "h", "get", "a"}, "At least 2"},
      {{"ftp", "--host", "h", "get", "-r", "a", "."}, "-r"},
      {{"ftp", "--host", "h", "rm", "a", "--ca-file", some_file.c_str()}, nullptr},
      {{"ftp", "--host", "h", "rm", "a", "--web", "--port", "7"}, "--web cannot be used with"},
      {{"ftp", "--host", "h", "rm", "a", "--direct", "x=y"}, "omit it"},
      {{"cloud", "--host", "h", "rm", "a"}, "--login is required"},
  };
  for (const auto& [words, complaint] : cases) {
    const Parsed parsed = Parse(words);
    EXPECT_EQ(parsed.exit_status.has_value(), complaint != nullptr) << parsed.complaint;
    EXPECT_EQ(parsed.exit_status == qv::tool::kUsage, complaint != nullptr);
    if (complaint != nullptr) {
      EXPECT_NE(parsed.complaint.find(complaint), std::string::npos) << parsed.complaint;
    }
  }
  EXPECT_EQ(Parse({"--help"}).exit_status, qv::tool::kDone);
  EXPECT_FALSE(Parse({"--port", "7", "ping"}).command.query);
}

TEST_F(CommandLine, PicksThePortThatItTalksTo) {
  qv::SetVariable("QVCALL_PORT", "7");
  qv::SetVariable("QVCALL_HTTP_PORT", "8");
  EXPECT_EQ(Parse({"ping"}).command.connection.Port(), 7);
  EXPECT_EQ(Parse({"--web", "ping"}).command.connection.Port(), 8);
  qv::SetVariable("QVCALL_DIRECT", "x=y");
  EXPECT_EQ(Parse({"ping"}).command.connection.direct, "x=y");
  EXPECT_EQ(Parse({"--web", "ping"}).exit_status, qv::tool::kUsage);
}

TEST(ReturnCodes, HaveWordsOfTheirOwnForEveryResult) {
  std::set<std::string_view> meanings;
  for (const int code : {0, 1, 2, 3, 10, -1, -2, -3, 77}) {
    const qv::tool::ReturnCode words =
        qv::tool::ExplainResult(qv::tool::Call::kQuery, Route::kSocket, code);
    EXPECT_EQ(words.code, code);
    EXPECT_EQ(words.advice.empty(), code == 0);
    EXPECT_TRUE(meanings.insert(words.meaning).second) << code;
  }
  const auto meaning = [](qv::tool::Call call, int code, Route route = Route::kSocket) {
    return qv::tool::ExplainResult(call, route, code).meaning;
  };
  EXPECT_EQ(meaning(qv::tool::Call::kBatch, 107),
            meaning(qv::tool::Call::kBatch, qv::result::kBatchRefused));
  EXPECT_EQ(meaning(qv::tool::Call::kExec, 100), meaning(qv::tool::Call::kQuery, 77));
  EXPECT_NE(meaning(qv::tool::Call::kBatch, 2), meaning(qv::tool::Call::kProcedure, 2));
  EXPECT_NE(meaning(qv::tool::Call::kBatch, -1),
            meaning(qv::tool::Call::kBatch, -1, Route::kDirect));
}

TEST(ReturnCodes, KnowWhichCallsGiveNoughtForSuccess) {
  for (auto call = qv::tool::Call::kUpload; call <= qv::tool::Call::kLog;
       call = static_cast<qv::tool::Call>(static_cast<int>(call) + 1)) {
    const int success = call <= qv::tool::Call::kRemove ? 0 : 1;
    EXPECT_EQ(qv::tool::ExplainResult(call, Route::kSocket, success).advice, "");
    const auto refused = qv::tool::ExplainResult(call, Route::kSocket, 1 - success);
    EXPECT_NE(refused.meaning, qv::tool::ExplainResult(call, Route::kSocket, 77).meaning);
    EXPECT_NE(refused.advice, "");
  }
}

TEST(Failures, SayTheReasonAndAHintWhereItHelps) {
  using qv::tool::Call;
  using namespace qv::result;
  const std::string doubt = "it may or may not have been run";
  const struct {
    Call call;
    Route route;
    int code;
    qv::tool::Reason reason;
    std::string what;
    std::string hint;  // a part of it; empty: none
  } cases[] = {
      {Call::kQuery, Route::kSocket, kQueryRefused, {qv::error::kSyntax, "a\x1b"}, "a\\x1b", ""},
      {Call::kExec, Route::kSocket, kFailed, {qv::error::kBadToken, "no"}, "no", "--token"},
      {Call::kExec, Route::kWeb, kNotDelivered, {qv::error::kBusy, "full"}, "full", "try again"},
      {Call::kQuery, Route::kWeb, kNotDelivered, {qv::error::kCannotConnect, "c"}, "c", "--http-"},
      {Call::kQuery, Route::kSocket, kOutcomeUnknown, {qv::error::kCancelled, "c"}, "c", ""},
      {Call::kBatch, Route::kSocket, kOutcomeUnknown, {qv::error::kCancelled, "c"}, "c", doubt},
      {Call::kExec, Route::kSocket, kOutcomeUnknown, {qv::error::kNoProgress, "n"}, "n", doubt},
      {Call::kQuery, Route::kSocket, kOutcomeUnknown, {qv::error::kNoProgress, "n"}, "n", "again"},
      {Call::kLook,
       Route::kSocket,
       0,
       {qv::error::kUnknownObject, "no such folder"},
       "the server has no such entry",
       ""},
      {Call::kLookInside, Route::kSocket, 0, {qv::error::kUnknownObject, "no x"}, "no x", ""},
      {Call::kExec, Route::kSocket, kFailed, {qv::error::kInternal, "i"}, "i", "the server's log"},
      {Call::kExec,
       Route::kSocket,
       kFailed,
       {qv::error::kInternal, "see the server's log"},
       "see the server's log",
       ""},
      {Call::kExec, Route::kDirect, kFailed, {}, "the database refused the statement", "check"},
  };
  for (const auto& [call, route, code, reason, what, hint] : cases) {
    const qv::tool::Failure failure = qv::tool::DescribeFailure(call, route, code, reason);
    EXPECT_EQ(failure.what, code == 0 ? what : what + " (result " + std::to_string(code) + ")");
    EXPECT_EQ(failure.hint.empty(), hint.empty()) << what << failure.hint;
    EXPECT_NE(failure.hint.find(hint), std::string::npos) << failure.hint;
  }
}

TEST(ReturnCodes, SpeakOfServersAndOfflineWorkOnlyWhereTheyAre) {
  for (const qv::tool::Call call :
       {qv::tool::Call::kQuery, qv::tool::Call::kProcedure, qv::tool::Call::kExec}) {
    for (const int code : {1, 2, 3, 10, -1, -2, -3, 77}) {
      const qv::tool::ReturnCode web = qv::tool::ExplainResult(call, Route::kWeb, code);
      for (const std::string_view words : {web.meaning, web.advice}) {
        EXPECT_EQ(words.find("offline"), std::string_view::npos) << words;
        EXPECT_EQ(words.find("--cache"), std::string_view::npos) << words;
      }
    }
    const qv::tool::ReturnCode direct = qv::tool::ExplainResult(call, Route::kDirect, 1);
    EXPECT_EQ(direct.meaning.find("server"), std::string_view::npos) << direct.meaning;
    EXPECT_EQ(direct.advice.find("server"), std::string_view::npos) << direct.advice;
  }
}

}  // namespace
