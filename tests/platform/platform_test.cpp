#include "platform/Platform.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <set>
#include <string>

#include "tests/support/TempFolder.h"

namespace qv::platform {
namespace {

unsigned RightsOf(const std::string& path) {
  return static_cast<unsigned>(std::filesystem::status(path).permissions());
}

TEST(Platform, ReadsIniValuesAsTheyStand) {
  const qv::TempFolder folder;
  const std::string long_value(5000, 'v');
  const std::string file = folder.Write("settings.ini",
                                        "; a comment\r\n"
                                        "ServerType=outside\r\n"
                                        "no entry\r\n"
                                        "[Other]\r\nServerType=wrong\r\n"
                                        "[BASIC]\r\n"
                                        "Before = x\r\n"
                                        "  servertype = WEB_IIS \r\n"
                                        "ServerType=second\r\n"
                                        "Empty=\r\n"
                                        ";Off=1\r\n"
                                        "Rest=a:b = c ;d # e\r\n"
                                        "Colon:x=1\r\n"
                                        "Quoted=\" a \"\r\n"
                                        "Single=''b''\r\n"
                                        "Half=\"c'\r\n"
                                        "Long=" +
                                            long_value +
                                            "Tail=1\n"
                                            "[ last\nkey=no newline");
  const struct {
    const char* section;
    const char* key;
    std::optional<std::string> value;
  } cases[] = {{"Basic", "ServerType", "WEB_IIS"},
               {"Basic", "Before", "x"},
               {"Basic", "Empty", ""},
               {"Basic", "Off", std::nullopt},
               {"Basic", ";Off", std::nullopt},
               {"Basic", "Rest", "a:b = c ;d # e"},
               {"Basic", "Colon", std::nullopt},
               {"Basic", "Quoted", " a "},
               {"Basic", "Single", "'b'"},
               {"Basic", "Half", "\"c'"},
               {"Basic", "Long", long_value + "Tail=1"},
               {"Basic", "Missing", std::nullopt},
               {"None", "ServerType", std::nullopt},
               {"LAST", "KEY", "no newline"}};
  for (const auto& c : cases) EXPECT_EQ(ReadIniValue(file, c.section, c.key), c.value) << c.key;
  EXPECT_EQ(ReadIniValue(file + ".none", "Basic", "ServerType"), std::nullopt);

  const std::string marked = folder.Write("marked.ini", "\xEF\xBB\xBF[A]\nk=1\n");
  EXPECT_EQ(ReadIniValue(marked, "a", "k"), "1");
}

TEST(Platform, MakesIdentifiersInRegistryForm) {
  const char* const form =
      "\\{[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\\}";
  std::set<std::string> seen;
  for (int i = 0; i < 100; ++i) {
    const std::string guid = NewGuid();
    EXPECT_THAT(guid, testing::MatchesRegex(form));
    EXPECT_TRUE(seen.insert(guid).second);
  }
}

TEST(Platform, CreatesFilesForTheirOwnerOnly) {
  const qv::TempFolder folder;
  const std::string path = (folder.Path() / "private").string();
  const std::string planted = folder.Write("planted", "secret");
  const std::string link = (folder.Path() / "link").string();
  const std::string pipe = (folder.Path() / "pipe").string();
  std::filesystem::create_symlink(planted, link);
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0666), 0);

  std::FILE* const file = CreatePrivateFile(path, Create::kNew);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(std::fputs("content", file) >= 0 && FlushToDisk(file) && std::fclose(file) == 0, true);
  EXPECT_EQ(RightsOf(path), 0600u);

  EXPECT_EQ(CreatePrivateFile(path, Create::kNew), nullptr);
  EXPECT_EQ(errno, EEXIST);
  EXPECT_EQ(CreatePrivateFile(link, Create::kAlways), nullptr);
  EXPECT_EQ(BytesOf(planted), "secret");
  EXPECT_EQ(CreatePrivateFile(pipe, Create::kAlways), nullptr);  // without a reader
  const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
  EXPECT_EQ(CreatePrivateFile(pipe, Create::kAlways), nullptr);  // and with one
  EXPECT_EQ(errno, EEXIST);
  ::close(reader);
  EXPECT_EQ(CreatePrivateFile((folder.Path() / "none" / "x").string(), Create::kAlways), nullptr);

  std::filesystem::permissions(planted, std::filesystem::perms(0666));
  std::FILE* const taken = CreatePrivateFile(planted, Create::kAlways);
  ASSERT_NE(taken, nullptr);
  std::fclose(taken);
  EXPECT_EQ(RightsOf(planted), 0600u);
  EXPECT_EQ(BytesOf(planted), "");

  const std::string final_name = folder.Write("final", "old");
  EXPECT_TRUE(ReplaceByRename(path, final_name));
  EXPECT_EQ(BytesOf(final_name), "content");
  EXPECT_TRUE(RemoveFile(final_name));
  EXPECT_FALSE(RemoveFile(final_name));
}

TEST(Platform, MakesFoldersWithThoseAbove) {
  const qv::TempFolder folder;
  const std::string deep = (folder.Path() / "a" / "b" / "c").string();
  EXPECT_TRUE(CreatePrivateFolder(deep + "/"));
  EXPECT_TRUE(CreatePrivateFolder(deep));
  EXPECT_EQ(RightsOf(deep), 0700u);
  EXPECT_FALSE(CreatePrivateFolder(folder.Write("file", "") + "/below"));
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
  for (const char* const bad : {"\xFF", "a\x80", "\xE4\xB8", "\xC0\xAF", "\xED\xA0\x80",
                                "\xF4\x90\x80\x80", "\xF0\x9F\x98"}) {
    EXPECT_EQ(WideFromNarrow(bad), std::nullopt) << bad;
  }
  const std::u16string half(1, char16_t{0xD83D});
  const std::u16string other_half(1, char16_t{0xDE00});
  EXPECT_EQ(NarrowFromWide(half + u"a"), "\uFFFDa");
  EXPECT_EQ(NarrowFromWide(u"a" + half), "a\uFFFD");
  EXPECT_EQ(NarrowFromWide(half + half + other_half), "\uFFFD\U0001F600");
  EXPECT_EQ(NarrowFromWide(other_half + half), "\uFFFD\uFFFD");
}

TEST(Platform, KnowsWhereItIs) {
  EXPECT_TRUE(std::filesystem::is_regular_file(ModuleFile()));
  EXPECT_TRUE(std::filesystem::path(ModuleFile()).is_absolute());
  // The library under test is part of this program.
  EXPECT_EQ(ProgramFolder(), std::filesystem::canonical(ModuleFile()).parent_path().string() + "/");
}

TEST(Platform, TakesOnlyATemporaryFolderThatItsRecordHolds) {
  const char* const before = std::getenv("TMPDIR");
  const std::string kept = before != nullptr ? before : "";
  const std::string longest = "/" + std::string(257, 't');
  const std::pair<std::string, std::string> cases[] = {
      {"/var/x", "/var/x/"},   {"/var/x/", "/var/x/"},   {"", "/tmp/"},
      {"relative/x", "/tmp/"}, {longest, longest + "/"}, {longest + "t", "/tmp/"}};
  for (const auto& [named, folder] : cases) {
    ::setenv("TMPDIR", named.c_str(), 1);
    EXPECT_EQ(platform::TempFolder(), folder) << named;
  }
  before != nullptr ? ::setenv("TMPDIR", kept.c_str(), 1) : ::unsetenv("TMPDIR");
}

}  // namespace
}  // namespace qv::platform
