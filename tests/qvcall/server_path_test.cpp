#include "tools/qvcall/system/ServerPath.h"

#include <gtest/gtest.h>

#include <string>

namespace {

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
