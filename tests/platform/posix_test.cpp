#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "base/platform/Platform.h"
#include "tests/support/System.h"
#include "tests/support/TempFolder.h"

namespace qv::platform {
namespace {

unsigned RightsOf(const std::string& path) {
  return static_cast<unsigned>(std::filesystem::status(path).permissions());
}

TEST(Platform, ReadsAHeadingWithoutItsEnd) {
  const qv::TempFolder folder;
  const std::string file = folder.Write("open.ini", ";[a]\n[ last\n;key=off\nkey=1");
  EXPECT_EQ(ReadIniValue(file, "LAST", "KEY"), "1");
  EXPECT_EQ(ReadIniValue(file, "last", ";key"), std::nullopt);
}

// Puts a pipe that nobody reads in the place of standard error.
class UnreadStandardError {
 public:
  UnreadStandardError() : kept_(dup(STDERR_FILENO)) {
    EXPECT_EQ(pipe(ends_), 0);
    dup2(ends_[1], STDERR_FILENO);
  }
  ~UnreadStandardError() {
    dup2(kept_, STDERR_FILENO);
    for (const int end : {kept_, ends_[0], ends_[1]}) close(end);
  }

 private:
  int kept_;
  int ends_[2] = {-1, -1};
};

TEST(Platform, NeverWaitsForWhoeverReadsStandardError) {
  const std::string line(4096, 'x');
  const UnreadStandardError unread;
  int written = 0;
  while (StandardErrorHasRoom() && written < 10000) {
    ASSERT_EQ(write(STDERR_FILENO, line.data(), line.size()), 4096);
    ++written;
  }
  EXPECT_GT(written, 0);
  EXPECT_LT(written, 10000);
}

TEST(Platform, TakesOthersRightsAwayAndFollowsNoLink) {
  const qv::TempFolder folder;
  const std::string planted = folder.Write("planted", "secret");
  const std::string link = (folder.Path() / "link").string();
  const std::string pipe = (folder.Path() / "pipe").string();
  ASSERT_TRUE(MakeLink(planted, link) && MakePipe(pipe));
  EXPECT_EQ(CreatePrivateFile(link, Create::kAlways), nullptr);
  EXPECT_EQ(BytesOf(planted), "secret");
  EXPECT_EQ(CreatePrivateFile(pipe, Create::kAlways), nullptr);  // without a reader
  const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  EXPECT_EQ(CreatePrivateFile(pipe, Create::kAlways), nullptr);  // and with one
  EXPECT_EQ(errno, EEXIST);
  ::close(reader);

  std::filesystem::permissions(planted, std::filesystem::perms(0666));
  for (const std::string& path : {planted, (folder.Path() / "new").string()}) {
    std::FILE* const taken = CreatePrivateFile(path, Create::kAlways);
    ASSERT_NE(taken, nullptr);
    std::fclose(taken);
    EXPECT_EQ(RightsOf(path), 0600u);
  }
  const std::string below = (folder.Path() / "a" / "b").string();
  EXPECT_TRUE(CreatePrivateFolder(below));
  EXPECT_EQ(RightsOf(below), 0700u);
}

TEST(Platform, ConvertsTextWhateverTheLocale) {
  const std::pair<const char*, const char16_t*> both_ways[] = {
      {"", u""},
      {"plain", u"plain"},
      {"é中\U0001F600z", u"é中\U0001F600z"},
      {"\uFFFF\U0010FFFF", u"\uFFFF\U0010FFFF"}};
  for (const auto& [narrow, wide] : both_ways) {
    EXPECT_EQ(WideFromNarrow(narrow), std::u16string(wide)) << narrow;
    EXPECT_EQ(NarrowFromWide(wide), narrow);
  }
  EXPECT_EQ(WideFromNarrow(std::string_view("a\0b", 3)), std::u16string(u"a\0b", 3));
  EXPECT_EQ(WideFromNarrow("a\x80"), std::nullopt);
  const std::u16string half(1, char16_t{0xD83D});
  const std::u16string other_half(1, char16_t{0xDE00});
  EXPECT_EQ(NarrowFromWide(half + u"a"), "\uFFFDa");
  EXPECT_EQ(NarrowFromWide(u"a" + half), "a\uFFFD");
  EXPECT_EQ(NarrowFromWide(half + half + other_half), "\uFFFD\U0001F600");
  EXPECT_EQ(NarrowFromWide(other_half + half), "\uFFFD\uFFFD");
}

TEST(Platform, TakesOnlyATemporaryFolderThatItsRecordHolds) {
  const char* const before = std::getenv("TMPDIR");
  const std::string kept = before != nullptr ? before : "";
  const std::string longest = "/" + std::string(257, 't');
  const std::pair<std::string, std::string> cases[] = {
      {"/var/x", "/var/x/"},   {"/var/x/", "/var/x/"},   {"", "/tmp/"},
      {"relative/x", "/tmp/"}, {longest, longest + "/"}, {longest + "t", "/tmp/"}};
  for (const auto& [named, folder] : cases) {
    SetVariable("TMPDIR", named.c_str());
    EXPECT_EQ(platform::TempFolder(), folder) << named;
  }
  SetVariable("TMPDIR", before != nullptr ? kept.c_str() : nullptr);
}

TEST(Platform, TakesTheTimeZoneOfTheMoment) {
  const char* const before = std::getenv("TZ");
  const std::string kept = before != nullptr ? before : "";
  for (const auto& [zone, hour] : {std::pair("UTC-8", 8), std::pair("UTC+5", 19)}) {
    SetVariable("TZ", zone);
    const auto local = platform::LocalTime(0);
    EXPECT_EQ(local ? local->tm_hour : -1, hour) << zone;
  }
  SetVariable("TZ", before != nullptr ? kept.c_str() : nullptr);
  EXPECT_FALSE(platform::LocalTime(std::numeric_limits<std::time_t>::max()).has_value());
}

}  // namespace
}  // namespace qv::platform
