#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <set>
#include <sstream>

#include "FtpSide.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/TlsSide.h"

namespace qv::components {

namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

std::string RandomBytes(std::size_t size, unsigned seed) {
  std::independent_bits_engine<std::mt19937, 8, unsigned> engine(seed);
  std::string bytes(size, '\0');
  std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(engine()); });
  return bytes;
}

void Write(const std::string& path, const std::string& bytes) {
  fs::create_directories(fs::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

// Files of all sizes from none to some megabytes, some with names that are not plain.
std::vector<std::string> WriteMixedFiles(const std::string& folder) {
  std::vector<std::string> names;
  for (unsigned i = 0; i < 200; ++i) {
    const std::string base = std::to_string(i) + (i % 3 == 0 ? " 图纸 #%;?.dwg" : ".dat");
    names.push_back("项目 " + std::to_string(i % 7) + "/" + base);
    const std::size_t size = i % 8 == 7 ? 300'000 + 10'000 * i : (i % 8) * 997 * (i % 5);
    Write(folder + names.back(), RandomBytes(size, i));
  }
  return names;
}

const std::vector<std::string> kTenCuts{"--cut-after", "200000", "--cuts", "10", "--spare", "1"};

// Whether it is an upload, and the option of the run.
using Direction = std::pair<bool, long>;

class FtpCutsTest : public testing::TestWithParam<Direction> {};

TEST_P(FtpCutsTest, EndsCompleteAndNamesWhatWasCut) {
  const auto [is_upload, option] = GetParam();
  LoggedInFtpSide side(kTenCuts);
  const std::string from = is_upload ? side.Here("") : side.There("");
  const std::string to = is_upload ? side.There("") : side.Here("");
  std::map<std::string, std::string> firsts;  // by name
  for (const std::string& name : WriteMixedFiles(from)) {
    // With backslashes too, because hosts write server paths with them.
    std::string there = name;
    std::replace(there.begin(), there.end(), '/', '\\');
    firsts[name] = is_upload ? from + name : there;
    if (is_upload)
      side.Component()->AddUploadFile(firsts[name].c_str(), there.c_str());
    else
      side.Component()->AddDownloadFile(there.c_str(), (to + name).c_str());
  }
  std::size_t cuts = 0;
  long result = QvTransfer_Broken;
  for (int run = 0; result == QvTransfer_Broken && run < 11; ++run) {
    const long count = is_upload ? side.Ask(&IQvCoFtp::UploadFile, option)
                                 : side.Ask(&IQvCoFtp::DownloadFile, 1L, option);
    result = side.LastResult();
    const std::vector<std::string> cut = side.ReadLog().cut;
    cuts += cut.size();
    std::set<std::string> failed;
    for (const auto& [name, first] : firsts) {
      if (!side.HasSucceeded(first)) failed.insert(from + name);
    }
    EXPECT_EQ(failed.size(), option == 0 ? cut.size() : 0);
    // The log names the part of an upload, not its file.
    if (!is_upload && option == 0) {
      EXPECT_EQ(failed, std::set(cut.begin(), cut.end()));
    }
    EXPECT_EQ(count, static_cast<long>(firsts.size() - failed.size()));
  }
  EXPECT_EQ(result, 0);
  EXPECT_EQ(cuts, 10U);
  EXPECT_TRUE(FilesIn(from) == FilesIn(to));
}

INSTANTIATE_TEST_SUITE_P(Directions, FtpCutsTest,
                         testing::Values(Direction{true, 0}, Direction{true, 3},
                                         Direction{false, 0}, Direction{false, 3}));

TEST(FtpComponentTest, GoesOnWhereItStopped) {
  LoggedInFtpSide side({"--cut-after", "6000000", "--cuts", "4"});
  const std::string bytes = RandomBytes(8'000'000, 1);
  Write(side.Here("up"), bytes);
  EXPECT_EQ(side.Upload(side.Here("up"), "up", 0), QvTransfer_Broken);
  EXPECT_EQ(side.Upload(side.Here("up"), "again", 1), 0) << "in the next run, and in the same";
  EXPECT_EQ(side.ReadLog().received, 2 * bytes.size());
  EXPECT_EQ(side.Download("up", side.Here("down"), 1), 0);
  EXPECT_LT(side.ReadLog().sent, bytes.size() + 1'500'000) << "what was under way is lost";
  EXPECT_TRUE(BytesOf(side.Here("down")) == bytes);
  // A file that changes in between is transferred from its start.
  EXPECT_EQ(side.Download("again", side.Here("down"), 0), QvTransfer_Broken);
  const std::string changed = RandomBytes(8'000'001, 2);
  Write(side.There("again"), changed);
  EXPECT_EQ(side.Ask(&IQvCoFtp::DownloadFile, 1L, 0L), 1);
  EXPECT_TRUE(BytesOf(side.Here("down")) == changed);
}

TEST(FtpComponentTest, LeavesNothingOfAnEmptiedQueue) {
  LoggedInFtpSide side({"--cut-after", "300000", "--cuts", "2"});
  Write(side.Here("file"), RandomBytes(900'000, 1));
  EXPECT_EQ(side.Upload(side.Here("file"), "up"), QvTransfer_Broken);
  EXPECT_THAT(FilesIn(side.There("")), testing::SizeIs(1));
  EXPECT_EQ(side.Login(), 0);
  EXPECT_THAT(FilesIn(side.There("")), IsEmpty());
  EXPECT_EQ(side.Ask(&IQvCoFtp::UploadFile, 0L), 0);
  EXPECT_EQ(side.LastResult(), 0);
}

TEST(FtpComponentTest, TrustsOnlyWhomItShould) {
  TempFolder folder;
  const TestCertificate certificate = MakeCertificate("IP:127.0.0.1", std::chrono::hours(1));
  const std::string authority = folder.Write("ca.pem", certificate.certificate);
  const std::string both = folder.Write("both.pem", certificate.certificate + certificate.key);
  ASSERT_EQ(QvCoFtpSetParameter("ca_file", authority.c_str()), 1);
  FtpSide side({"--certificate", both, "--cut-after", "300000", "--cuts", "2"});
  ASSERT_EQ(QvCoFtpSetParameter("ca_file", ""), 1);
  EXPECT_EQ(side.Login(), QvTransfer_LoginRefused) << "without TLS";
  ASSERT_EQ(side.Login("FTPES://"), 0);
  const std::string bytes = RandomBytes(900'000, 1);
  Write(side.Here("file"), bytes);
  ASSERT_EQ(side.Component()->SetTransModel1(0), 0);
  EXPECT_EQ(side.Upload(side.Here("file"), "a/file", 2), 0);
  EXPECT_EQ(side.Download("a/file", side.Here("b/file"), 2), 0);
  EXPECT_THAT(side.ReadLog().commands, Not(Contains(StartsWith("EPRT")))) << "nothing readable";
  EXPECT_TRUE(BytesOf(side.Here("b/file")) == bytes);
  IQvCoFtp* const other = QvCoFtpCreate();
  EXPECT_EQ(ResultOf(other, &IQvCoFtp::FtpLogin, "ftpes://127.0.0.1", side.Port(), FtpSide::kUser,
                     FtpSide::kPassword),
            QvTransfer_NotTrusted);
  other->Release();
}

TEST(FtpComponentTest, SaysWhyItIsNotLoggedIn) {
  FtpSide side;
  Write(side.Here("file"), "bytes");
  EXPECT_EQ(side.Upload(side.Here("file"), "x"), QvTransfer_NotLoggedIn);
  EXPECT_EQ(side.Login("", "wrong"), QvTransfer_LoginRefused);
  EXPECT_EQ(side.Ask(&IQvCoFtp::DeleteServerFile, "x"), QvTransfer_NotLoggedIn);
  for (const char* const host : {"", "ftp://", "http://localhost", "tester@localhost"}) {
    EXPECT_EQ(side.Ask(&IQvCoFtp::FtpLogin, host, side.Port(), "", ""), QvTransfer_BadArgument)
        << host;
  }
  EXPECT_EQ(side.Ask(&IQvCoFtp::FtpLogin, "localhost", side.Port(), "tester\r\nDELE x", ""),
            QvTransfer_BadArgument);

  boost::asio::io_context context;
  boost::asio::ip::tcp::socket mute(context);
  mute.open(boost::asio::ip::tcp::v4());
  mute.bind({boost::asio::ip::address_v4::loopback(), 0});
  const auto closed = static_cast<short>(mute.local_endpoint().port());
  EXPECT_EQ(side.Ask(&IQvCoFtp::FtpLogin, "127.0.0.1", closed, "", ""), QvTransfer_CannotConnect);
  // The servers that are added are tried one after the other.
  EXPECT_EQ(side.Ask(&IQvCoFtp::AddFtpServer, "127.0.0.1", closed, "", ""), 0);
  EXPECT_EQ(side.Ask(&IQvCoFtp::AddFtpServer, "127.0.0.1", side.Port(), FtpSide::kUser,
                     FtpSide::kPassword),
            0);
  EXPECT_EQ(side.Upload(side.Here("file"), "x"), 0);
  EXPECT_EQ(side.Ask(&IQvCoFtp::FtpLogout), 0);
  EXPECT_EQ(side.Ask(&IQvCoFtp::DeleteServerFile, "x"), QvTransfer_NotLoggedIn);
}

TEST(FtpComponentTest, RemovesFoldersAndNothingElse) {
  for (const char* const missing : {"none", "MLSD"}) {
    SCOPED_TRACE(missing);
    LoggedInFtpSide side({"--without", missing});
    Write(side.There("stays/file"), "bytes");
    Write(side.There("目录 [1]/a *?.dat"), "bytes");
    Write(side.There("目录 [1]/.b/c/d"), "bytes");
    fs::create_directories(side.There("目录 [1]/empty"));
    fs::create_directory_symlink(side.There("stays"), side.There("目录 [1]/link"));
    EXPECT_EQ(side.Ask(&IQvCoFtp::DeleteServerPath, "\\目录 [1]\\"), 0);
    const auto log = side.ReadLog();
    for (const char* const path : {"/", ".", "..", "stays/..", "stays/../stays", "//"}) {
      EXPECT_EQ(side.Ask(&IQvCoFtp::DeleteServerPath, path), QvTransfer_BadArgument) << path;
    }
    EXPECT_EQ(side.Ask(&IQvCoFtp::DeleteServerPath, "missing"), QvTransfer_NotFound);
    EXPECT_THAT(FilesIn(side.There("")), ElementsAre(testing::Pair("stays/file", "bytes")));
    EXPECT_FALSE(fs::exists(side.There("目录 [1]")));
  }
}

TEST(FtpComponentTest, CopiesRenamesAndDeletesFiles) {
  LoggedInFtpSide side({"--strict"});
  Write(side.There("from"), "bytes");
  Write(side.There("there/to"), "older");
  side.Component()->AddCopyServerFile("from", "there/to");
  side.Component()->AddCopyServerFile("missing", "there/other");
  side.Component()->AddCopyServerFile("from", "");
  EXPECT_EQ(side.LastResult(), QvTransfer_BadArgument);
  EXPECT_EQ(side.Ask(&IQvCoFtp::CopyServerFile, 1L), 1);
  EXPECT_EQ(side.LastResult(), QvTransfer_NotFound);
  EXPECT_FALSE(side.HasSucceeded("from")) << "not in both places";
  EXPECT_EQ(side.Ask(&IQvCoFtp::RenameServerFile, "/from", "\\there\\new"), 0);
  EXPECT_EQ(side.Ask(&IQvCoFtp::RenameServerFile, "from", "x"), QvTransfer_NotFound);
  EXPECT_EQ(side.Ask(&IQvCoFtp::RenameServerFile, "there/new", "there/to"), QvTransfer_Refused);
  const std::map<std::string, std::string> expected{{"there/new", "bytes"}, {"there/to", "bytes"}};
  EXPECT_EQ(FilesIn(side.There("")), expected);
  EXPECT_EQ(side.Ask(&IQvCoFtp::DeleteServerFile, "there/new"), 0);
  EXPECT_EQ(side.Ask(&IQvCoFtp::DeleteServerFile, "there/new"), QvTransfer_NotFound);
  EXPECT_EQ(side.Ask(&IQvCoFtp::DeleteServerFile, "there"), QvTransfer_NotFound) << "as a file";
  EXPECT_EQ(side.Ask(&IQvCoFtp::DeleteServerFile, "x\r\nDELE there/to"), QvTransfer_BadArgument);
  EXPECT_EQ(side.Download("missing", side.Here("missing")), QvTransfer_NotFound);
  EXPECT_EQ(side.Download("there/to", side.Here("folder/")), QvTransfer_NotFound) << "the first";
  EXPECT_THAT(FilesIn(side.Here("")), IsEmpty());
}

TEST(FtpComponentTest, FollowsTheModes) {
  LoggedInFtpSide side;
  ASSERT_EQ(side.Component()->SetTransModel1(0), 0);
  ASSERT_EQ(side.Component()->SetTransModel2(0), 0);
  Write(side.Here("text"), "one\ntwo\n");
  EXPECT_EQ(side.Upload(side.Here("text"), "text"), 0);
  const ServerLog log = side.ReadLog();
  EXPECT_THAT(log.commands, Contains(StartsWith("EPRT")));
  EXPECT_THAT(log.commands, Not(Contains(StartsWith("EPSV"))));
  EXPECT_EQ(log.received, std::string("one\r\ntwo\r\n").size());
  EXPECT_EQ(side.Download("text", side.Here("back")), 0);
  EXPECT_EQ(BytesOf(side.There("text")) + BytesOf(side.Here("back")), "one\ntwo\none\ntwo\n");
}

TEST(FtpComponentTest, BelievesNoUploadOfAnotherSize) {
  LoggedInFtpSide side({"--forged-size", "4"});
  Write(side.Here("file"), "bytes");
  EXPECT_EQ(side.Upload(side.Here("file"), "file", 2), QvTransfer_Broken);
  EXPECT_EQ(side.Ask(&IQvCoFtp::FtpLogout), 0);
  EXPECT_THAT(FilesIn(side.There("")), IsEmpty());
}

TEST(FtpComponentTest, LosesNothingToServersThatDoNotKeepTheirWord) {
  LoggedInFtpSide stubborn({"--stubborn"});
  Write(stubborn.Here("file"), "bytes");
  Write(stubborn.There("file"), "older");
  EXPECT_EQ(stubborn.Upload(stubborn.Here("file"), "file"), QvTransfer_Refused);
  const std::map<std::string, std::string> expected{{"file", "older"}};
  EXPECT_EQ(FilesIn(stubborn.There("")), expected);
  LoggedInFtpSide deaf({"--deaf", "--cut-after", "300000", "--cuts", "1"});
  const std::string bytes = RandomBytes(900'000, 1);
  Write(deaf.There("file"), bytes);
  EXPECT_EQ(deaf.Download("file", deaf.Here("file"), 2), 0);
  EXPECT_TRUE(BytesOf(deaf.Here("file")) == bytes);
}

TEST(FtpComponentTest, TellsHowFarItIsAndStops) {
  LoggedInFtpSide side;
  const std::string bytes = RandomBytes(3'000'000, 1);
  std::vector<std::string> files{side.Here("a"), side.Here("b")};
  for (const std::string& file : files) Write(file, bytes);
  struct Heard {
    std::vector<std::string> lines;
    std::size_t most;
  } heard{{}, 3};
  const auto hear = [](const QvTransferProgress* progress, void* context) {
    auto& to = *static_cast<Heard*>(context);
    to.lines.push_back(
        fs::path(progress->file).filename().string() + ' ' + std::to_string(progress->file_index) +
        '/' + std::to_string(progress->file_count) + ' ' + std::to_string(progress->file_done));
    return to.lines.size() < to.most ? 0 : 1;
  };
  QvCoFtpSetProgress(hear, &heard);
  for (const std::string& file : files) {
    side.Component()->AddUploadFile(file.c_str(), fs::path(file).filename().c_str());
  }
  EXPECT_LE(side.Ask(&IQvCoFtp::UploadFile, 5L), 1);
  EXPECT_EQ(side.LastResult(), QvTransfer_Stopped);
  EXPECT_EQ(heard.lines.size(), 3U) << "not called after that";
  EXPECT_EQ(heard.lines.front(), "a 0/2 0");
  heard = {{}, 1000};
  EXPECT_EQ(side.Ask(&IQvCoFtp::UploadFile, 5L), 2);
  EXPECT_EQ(heard.lines.back(), "b 1/2 3000000");
  QvCoFtpSetProgress(nullptr, nullptr);
  EXPECT_TRUE(BytesOf(side.There("b")) == bytes);
}

// Servers that send what the table says, once or for ever, and nothing else.
TEST(FtpComponentTest, WaitsForNoServerWithoutAnEnd) {
  ASSERT_EQ(QvCoFtpSetParameter("connect_timeout_ms", "300"), 1);
  ASSERT_EQ(QvCoFtpSetParameter("io_timeout_ms", "300"), 1);
  const std::string login = "220 a\n331 b\n230 c\n257 \"/\"\n";
  struct Case {
    std::string said;
    bool goes_on;
    long login, deletion;
  };
  for (const Case& one : {Case{"", false, QvTransfer_CannotConnect, QvTransfer_NotLoggedIn},
                          Case{"220-more\n", true, QvTransfer_CannotConnect, 2},
                          Case{std::string(200'000, 'x'), true, QvTransfer_CannotConnect, 2},
                          Case{login, false, 0, QvTransfer_Broken},
                          Case{login + "421 over\n", false, 0, QvTransfer_Broken}}) {
    ScriptedServer server([&one](ServerSide& side) {
      const auto say = [&side](std::string_view text) {
        return side.Write({{reinterpret_cast<const unsigned char*>(text.data()), text.size()}});
      };
      // Sends one line for each line that it receives.
      std::istringstream answers(one.said);
      unsigned char byte = '\n';
      for (bool is_there = true; is_there;) {
        std::string answer;
        if (one.goes_on) {
          is_there = say(one.said);
        } else {
          if (byte == '\n' && std::getline(answers, answer))
            static_cast<void>(say(answer + "\r\n"));
          is_there = side.Read({&byte, 1});
        }
      }
    });
    IQvCoFtp* const component = QvCoFtpCreate();
    const auto port = static_cast<short>(server.Port());
    EXPECT_EQ(ResultOf(component, &IQvCoFtp::FtpLogin, "127.0.0.1", port, "x", "y"), one.login);
    EXPECT_EQ(ResultOf(component, &IQvCoFtp::DeleteServerFile, "x"), one.deletion);
    component->Release();
  }
  QvCoFtpSetParameter("connect_timeout_ms", "5000");
  QvCoFtpSetParameter("io_timeout_ms", "30000");
  EXPECT_EQ(QvCoFtpSetParameter("io_timeout_ms", "0"), 0);
  EXPECT_EQ(QvCoFtpSetParameter("region", "x"), 0);
}

}  // namespace

}  // namespace qv::components
