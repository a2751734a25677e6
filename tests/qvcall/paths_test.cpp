#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/system/LocalFiles.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "tests/support/System.h"
#include "tests/support/TempFolder.h"
#include "tools/qvcall/queues/QueueCommands.h"
#include "tools/qvcall/session/Session.h"
#include "tools/qvcall/system/LocalPath.h"
#include "tools/qvcall/system/NarrowText.h"
#include "tools/qvcall/system/ServerPath.h"

namespace {

namespace fs = std::filesystem;

constexpr bool kOnWindows = fs::path::preferred_separator == '\\';

class LocalFiles : public testing::Test {
 protected:
  std::string Here() const { return qv::tool::ShownPath(folder_.Path()); }
  // Creates a folder with a file of the same name.
  void Fill(const fs::path& name) const {
    fs::create_directory(folder_.Path() / name);
    std::ofstream(folder_.Path() / name / name) << "x";
  }

  const qv::TempFolder folder_;
  const qv::tool::ConnectionOptions connection_{};
  const qv::tool::Session session_{connection_, ""};
  std::ostringstream err_;
  qv::tool::TransferReport report_{session_, err_};
};

TEST_F(LocalFiles, AreSentUnderTheNamesThatTheyHaveOrNotAtAll) {
  const fs::path western = u"\u00e9";  // in the Western and the Chinese code pages
  const fs::path chinese = u"\u56fe\u7eb8";
  Fill(western);
  Fill(chinese);
  const bool has_chinese = !kOnWindows || qv::tool::NarrowFromPath(chinese).has_value();
  std::set<std::string> wanted;
  for (const fs::path& name : {western, chinese}) {
    const std::string narrow = qv::tool::ShownPath(name);
    if (name == western || has_chinese) wanted.insert("to/" + narrow + '/' + narrow);
  }
  std::set<std::string> planned;
  qv::tool::QueuePut put{{qv::tool::JoinLocal(Here(), qv::tool::ShownPath(western))}, "to", true};
  if (has_chinese) put.local.push_back(qv::tool::JoinLocal(Here(), qv::tool::ShownPath(chinese)));
  for (const qv::tool::FileTransfer& file : PlanQueue(put, report_)) {
    EXPECT_TRUE(std::ifstream(file.local)) << file.local;  // as the library opens it
    EXPECT_EQ(file.bytes, 1U);
    planned.insert(file.server);
  }
  EXPECT_EQ(planned, wanted);
  const std::string narrow = qv::tool::ShownPath(western);
  EXPECT_EQ(qv::tool::Visible(narrow), narrow);
  EXPECT_EQ(qv::tool::Utf8FromNarrow(narrow), "\xc3\xa9");
  EXPECT_EQ(err_.str(), "");
  EXPECT_EQ(PlanQueue(qv::tool::QueuePut{{Here()}, "to", true}, report_).size(), wanted.size());
  EXPECT_EQ(err_.str().empty(), has_chinese) << err_.str();
}

TEST_F(LocalFiles, ComeToTheFolderUnderNamesThatAreNothingElseHere) {
  const fs::path western = u"\u00e9";
  const std::string name = qv::tool::ShownPath(western);
  fs::create_directory(folder_.Path() / western);
  const std::string folder = qv::tool::JoinLocal(Here(), name);
  EXPECT_FALSE(qv::tool::MakeLocalFolder(folder));
  const auto planned = PlanQueue(qv::tool::QueueGet{{"x/" + name, "x/b", "y/B"}, folder}, report_);
  ASSERT_EQ(planned.size(), kOnWindows ? 2U : 3U) << err_.str();
  EXPECT_EQ(qv::tool::PathFromNarrow(planned[0].local), folder_.Path() / western / western);
  EXPECT_EQ(qv::tool::LocalFolderOf(planned[0].local), folder);
  for (const char* each : {"con.txt", "a?"}) {
    EXPECT_EQ(qv::tool::IsLocalName(each), !kOnWindows) << each;
  }
  EXPECT_FALSE(qv::tool::IsLocalName(".."));
}

TEST_F(LocalFiles, AreNotReachedThroughLinksToFolders) {
  Fill("real");
  if (!qv::MakeLink(folder_.Path() / "real", folder_.Path() / "link")) GTEST_SKIP();
  EXPECT_EQ(PlanQueue(qv::tool::QueuePut{{Here()}, "to", true}, report_).size(), 1U);
  EXPECT_NE(err_.str().find("link: is a link to a folder"), std::string::npos) << err_.str();
}

TEST(ServerPath, HasOneBackslashBetweenItsParts) {
  const struct {
    const char* typed;
    const char* path;
    bool ends_as_folder;
  } cases[] = {
      {"", "", true},
      {"/", "", true},
      {".", "", true},
      {"\\\\", "", true},
      {"a", "a", false},
      {"/a/b/", "a\\b", true},
      {"a//b\\c", "a\\b\\c", false},
      {"./a/./b", "a\\b", false},
      {"../a", "..\\a", false},
      {"图/梁 1.dwg", "图\\梁 1.dwg", false},
  };
  for (const auto& [typed, path, ends_as_folder] : cases) {
    EXPECT_EQ(qv::tool::ToServerPath(typed), path) << typed;
    EXPECT_EQ(qv::tool::EndsAsFolder(typed), ends_as_folder) << typed;
  }
}

TEST(ServerPath, IsJoinedAndTakenApart) {
  EXPECT_EQ(qv::tool::JoinServerPath("", "a"), "a");
  EXPECT_EQ(qv::tool::JoinServerPath("a\\b", "c"), "a\\b\\c");
  EXPECT_EQ(qv::tool::LastPart("a\\b\\c"), "c");
  EXPECT_EQ(qv::tool::FolderOf("a\\b\\c"), "a\\b");
  EXPECT_EQ(qv::tool::LastPart("a"), "a");
  EXPECT_EQ(qv::tool::FolderOf("a"), "");
}

TEST(ServerPath, KnowsNamesThatLeadElsewhere) {
  for (const std::string name :
       {"", ".", "..", "a/b", "a\\b", "/", "..\\a", "C:a", "a:b", "a\nb", "a\x1b[2J", "\x7f"}) {
    EXPECT_FALSE(qv::tool::IsPlainName(name)) << name;
  }
  EXPECT_FALSE(qv::tool::IsPlainName(std::string_view("a\0b", 3)));
  for (const char* name : {"a", "...", "..a", " a ", ".hidden", "梁.dwg", "\xff"}) {
    EXPECT_TRUE(qv::tool::IsPlainName(name)) << name;
  }
}

}  // namespace
