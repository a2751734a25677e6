#include "platform/Platform.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <regex>
#include <set>
#include <string>

#include "tests/support/TempFolder.h"

namespace qv::platform {
namespace {

TEST(Platform, ReadsIniValuesAsTheyStand) {
  const qv::TempFolder folder;
  const std::string file = folder.Write("settings.ini",
                                        "; a comment\r\n"
                                        "ServerType=outside\r\n"
                                        "no entry\r\n"
                                        "[Other]\r\nServerType=wrong\r\n"
                                        "[BASIC]\r\n"
                                        "Before = x\r\n"
                                        "  servertype = WEB_IIS \r\n"
                                        "ServerType=second\r\n"
                                        "Empty=\r\n");
  EXPECT_EQ(ReadIniValue(file, "Basic", "ServerType"), "WEB_IIS");
  EXPECT_EQ(ReadIniValue(file, "Basic", "Before"), "x");
  EXPECT_EQ(ReadIniValue(file, "Basic", "Empty"), "");
  EXPECT_EQ(ReadIniValue(file, "Basic", "Missing"), std::nullopt);
  EXPECT_EQ(ReadIniValue(file, "None", "ServerType"), std::nullopt);
  EXPECT_EQ(ReadIniValue(file + ".none", "Basic", "ServerType"), std::nullopt);
}

TEST(Platform, MakesIdentifiersInRegistryForm) {
  const std::regex form(
      "\\{[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\\}");
  std::set<std::string> seen;
  for (int i = 0; i < 100; ++i) {
    const std::string guid = NewGuid();
    EXPECT_TRUE(std::regex_match(guid, form)) << guid;
    EXPECT_TRUE(seen.insert(guid).second);
  }
}

TEST(Platform, CreatesFilesForTheirOwnerOnly) {
  const qv::TempFolder folder;
  const std::string path = (folder.Path() / "private").string();
  ASSERT_NE(folder.Write("planted", "secret"), "");
  std::filesystem::create_symlink(folder.Path() / "planted", folder.Path() / "link");

  std::FILE* const file = CreatePrivateFile(path, Create::kNew);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(std::fputs("content", file) >= 0 && FlushToDisk(file) && std::fclose(file) == 0, true);
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777u, 0600u);

  EXPECT_EQ(CreatePrivateFile(path, Create::kNew), nullptr);
  EXPECT_EQ(errno, EEXIST);
  EXPECT_EQ(CreatePrivateFile((folder.Path() / "link").string(), Create::kAlways), nullptr);
  EXPECT_EQ(BytesOf((folder.Path() / "planted").string()), "secret");
  EXPECT_EQ(CreatePrivateFile((folder.Path() / "none" / "x").string(), Create::kAlways), nullptr);

  const std::string final_name = folder.Write("final", "old");
  EXPECT_TRUE(ReplaceFile(path, final_name));
  EXPECT_EQ(BytesOf(final_name), "content");
  EXPECT_TRUE(RemoveFile(final_name));
  EXPECT_FALSE(RemoveFile(final_name));
}

TEST(Platform, MakesFoldersWithThoseAbove) {
  const qv::TempFolder folder;
  const std::string deep = (folder.Path() / "a" / "b" / "c").string();
  EXPECT_TRUE(CreatePrivateFolder(deep + "/"));
  EXPECT_TRUE(CreatePrivateFolder(deep));
  struct stat status {};
  ASSERT_EQ(::stat(deep.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777u, 0700u);
  EXPECT_FALSE(CreatePrivateFolder(folder.Write("file", "") + "/below"));
}

TEST(Platform, KnowsWhereItIs) {
  EXPECT_EQ(platform::TempFolder().back(), kSeparator);
  EXPECT_TRUE(std::filesystem::is_regular_file(ModuleFile()));
  EXPECT_TRUE(std::filesystem::path(ModuleFile()).is_absolute());
}

}  // namespace
}  // namespace qv::platform
