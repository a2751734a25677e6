// Runs the program itself, with the components beside it, against servers that the tests start.
#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/ServerProcess.h"
#include "tests/support/TempFolder.h"

namespace qv {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using Words = std::vector<std::string>;

struct Place {
  const char* service;
  const char* login;
  const char* password;
  const char* base;   // of paths
  const char* label;  // of its reports
};

constexpr Place kFtp = {"ftp", "tester", "pass; word", "", "Ftp"};
constexpr Place kCloud = {"cloud", "AN-ACCESS-KEY", "a+secret/key", "bucket/", "CSC"};

class QueueCommands : public testing::TestWithParam<Place> {
 protected:
  explicit QueueCommands(Place place = GetParam()) : place_(place) {
    folder_.Write("password", std::string(place_.password) + "\nmore\n");
    fs::create_directories(folder_.Path() / "server");
    const bool is_ftp = place_.service == std::string("ftp");
    const Words ftp = {QV_PYTHON, QV_FTP_SERVER, Here("server"), Here("log")};
    const Words s3 = {QV_PYTHON, QV_S3_SERVER, place_.login, place_.password, Here("log")};
    server_.emplace(is_ftp ? ftp : s3);
    host_ = (is_ftp ? "127.0.0.1:" : "http://localhost:") + std::to_string(server_->Port());
  }

  std::string Here(const std::string& name) const { return (folder_.Path() / name).string(); }
  std::string There(const std::string& path) const { return place_.base + path; }

  Words Command(const Words& more) const {
    Words words = {QV_QVCALL, place_.service, "--host", host_, "--login", place_.login};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }
  // Returns the exit status; the output is in `output_`.
  int Run(const Words& words) { return Keep(RunToEnd(words, folder_.Path().string())); }
  int Call(Words more) {
    more.insert(more.begin(), {"--password-file", "password"});
    return Run(Command(more));
  }
  int Keep(const Ended& ended) {
    output_ = ended.output;
    EXPECT_THAT(output_, Not(HasSubstr(place_.password)));
    return ended.status;
  }

  const Place place_;
  const TempFolder folder_;
  std::optional<ServerProcess> server_;
  std::string host_;
  std::string output_;
};

TEST_P(QueueCommands, MoveFilesBothWaysAndTellWhatFails) {
  ServerProcess standin({QV_STANDIN, "--data", Here("data"), "--port", "0"});
  fs::create_directories(folder_.Path() / "src/sub");
  fs::create_directories(folder_.Path() / "out");
  folder_.Write("src/a", "bytes");
  folder_.Write("src/sub/图 1.dwg", std::string(100'000, 'x'));
  EXPECT_EQ(Call({"put", "-r", "src", "none", There("x/")}), 1);
  EXPECT_THAT(output_, AllOf(HasSubstr("none: there is no such file"),
                             HasSubstr("done (2 files, 97.7 KiB)\nqvcall: 1 failed")));
  EXPECT_EQ(Call({"cp", There("x/src/a"), There("y/")}), 0) << output_;
  EXPECT_EQ(Call({"mv", There("y/a"), There("x/c")}), 0) << output_;
  const std::string left_out = There("x/");
  const std::string missing = There("\xe2\x80\xae");  // changes the direction of writing
  const Words wanted = {There("x/src/sub/图 1.dwg"), missing, There("x/c"), left_out};
  Words get = {"--port", std::to_string(standin.Port()), "get"};
  get.insert(get.end(), wanted.begin(), wanted.end());
  get.emplace_back("out");
  EXPECT_EQ(Call(get), 1);
  EXPECT_EQ(BytesOf(Here("out/图 1.dwg")), std::string(100'000, 'x'));
  EXPECT_EQ(BytesOf(Here("out/c")), "bytes");
  const std::string header = place_.label + std::string("Down 3 Files FAIL");
  EXPECT_THAT(output_, AllOf(HasSubstr("1 of 3 failed, the first: the server has no such file"),
                             HasSubstr(header + "\n  <1> out/\\u202e(" + place_.base +
                                       "\\u202e)\ndone (2 files"),
                             HasSubstr(left_out + ": is a folder")));
  EXPECT_THAT(
      BytesOf(Here("data/server.log")),
      AllOf(HasSubstr(header), HasSubstr("(" + missing + ")"), Not(HasSubstr(place_.password))));
  EXPECT_EQ(Call({"rm", "-r", There("x/src")}), 0) << output_;
  EXPECT_EQ(Call({"rm", There("x/c"), There("x/src/a")}), 1);
  EXPECT_THAT(output_, AllOf(HasSubstr("x/src/a: the server has no such file (result 7)"),
                             Not(HasSubstr("x/c:"))));
}

INSTANTIATE_TEST_SUITE_P(Services, QueueCommands, testing::Values(kFtp, kCloud),
                         [](const auto& info) { return std::string(info.param.service); });

class QueueCommandsAtFtp : public QueueCommands {
 protected:
  QueueCommandsAtFtp() : QueueCommands(kFtp) {}
};

TEST_F(QueueCommandsAtFtp, AskForThePasswordWithoutShowingIt) {
  folder_.Write("a", "bytes");
  int terminal = -1;
  const pid_t pid = SpawnOnTerminal(Command({"put", Here("a"), "."}), terminal);
  if (pid < 0) GTEST_SKIP() << "no terminals here";
  const std::string question = "Password of tester at 127.0.0.1: ";
  ASSERT_EQ(ReadUntil(terminal, question), question);
  const std::string typed = place_.password + std::string("\n");
  ASSERT_EQ(write(terminal, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
  EXPECT_EQ(Keep(WaitFor(pid, terminal)), 0) << output_;
  EXPECT_EQ(BytesOf(Here("server/a")), "bytes");
}

TEST_F(QueueCommandsAtFtp, TellWhatKeepsThemFromBeginning) {
  EXPECT_EQ(Run(Command({"--password-file", "none", "rm", "a"})), 1);
  EXPECT_THAT(output_, HasSubstr("none: has no password"));
  folder_.Write("password", "wrong\n");
  EXPECT_EQ(Call({"rm", "a"}), 1);
  EXPECT_THAT(output_, HasSubstr("the server refused the login (result 5)"));
  fs::copy_file(QV_QVCALL, folder_.Path() / "qvcall");
  for (const auto& [service, file] :
       {std::pair{"ftp", "libQvCoFtp.so"}, {"cloud", "libQvCoCSC.so"}}) {
    EXPECT_EQ(Run({Here("qvcall"), service, "--host", "h", "--login", "u", "--password-file",
                   "password", "--timeout-ms", "9", "rm", "a"}),
              1);
    EXPECT_EQ(output_, "qvcall: h: no component (result -100)\n  " + std::string(file) +
                           " is missing beside qvcall\n");
  }
}

}  // namespace
}  // namespace qv
