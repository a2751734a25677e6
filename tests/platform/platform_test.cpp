#include "base/platform/Platform.h"
#include "base/platform/PlainText.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>

#include "base/platform/Folder.h"
#include "base/platform/PlainText.h"
#include "base/platform/ThreadSlot.h"
#include "tests/support/Shape.h"
#include "tests/support/TempFolder.h"

namespace qv::platform {
namespace {

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
                                            "[last]\nkey=no newline");
  const struct {
    const char* section;
    const char* key;
    std::optional<std::string> value;
  } cases[] = {{"Basic", "ServerType", "WEB_IIS"},
               {"Basic", "Before", "x"},
               {"Basic", "Empty", ""},
               {"Basic", "Off", std::nullopt},
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
  std::set<std::string> seen;
  for (int i = 0; i < 100; ++i) {
    const std::string guid = NewGuid();
    EXPECT_EQ(guid.size(), 38u);
    EXPECT_THAT(guid, EndsInShape(kGuidShape));
    EXPECT_TRUE(IsGuid(guid));
    EXPECT_TRUE(seen.insert(guid).second);
  }
  const std::string guid = "{01234567-89AB-CDEF-0123-456789ABCDEF}";
  EXPECT_TRUE(IsGuid(guid));
  std::string lower = guid;
  lower[11] = 'b';
  std::string shifted = guid;
  std::swap(shifted[9], shifted[10]);
  for (const std::string& other :
       {std::string(), guid.substr(1), guid + "0", lower, shifted, std::string(38, '0')}) {
    EXPECT_FALSE(IsGuid(other)) << other;
  }
}

TEST(Platform, CreatesFilesForTheirOwnerOnly) {
  const qv::TempFolder folder;
  const std::string path = folder.At("private");
  std::FILE* const file = CreatePrivateFile(path, Create::kNew);
  ASSERT_NE(file, nullptr);
  EXPECT_TRUE(IsPrivate(file));
  EXPECT_EQ(std::fputs("content", file) >= 0 && FlushToDisk(file) && std::fclose(file) == 0, true);

  EXPECT_EQ(CreatePrivateFile(path, Create::kNew), nullptr);
  EXPECT_EQ(errno, EEXIST);
  EXPECT_EQ(CreatePrivateFile(folder.At("none/x"), Create::kAlways), nullptr);
  EXPECT_EQ(errno, ENOENT);

  const std::string taken = folder.Write("taken", "theirs");
  std::FILE* const again = CreatePrivateFile(taken, Create::kAlways);
  ASSERT_NE(again, nullptr);
  EXPECT_TRUE(IsPrivate(again));
  std::fclose(again);
  EXPECT_EQ(BytesOf(taken), "");

  const std::string final_name = folder.Write("final", "old");
  EXPECT_TRUE(ReplaceByRename(path, final_name));
  EXPECT_EQ(BytesOf(final_name), "content");
  EXPECT_TRUE(RemoveFile(final_name));
  EXPECT_FALSE(RemoveFile(final_name));
}

TEST(Platform, OpensFilesThatOthersCanRemove) {
  const qv::TempFolder folder;
  const std::string path = folder.Write("answer", "content");
  const FilePtr file(OpenFile(path, Opening::kRead));
  const int descriptor = OpenDescriptor(path);
  EXPECT_GE(descriptor, 0);
  EXPECT_TRUE(RemoveFile(path));
  EXPECT_EQ(std::fgetc(file.get()), 'c');
  std::string bytes(9, '.');
  EXPECT_EQ(ReadAt(descriptor, 3, bytes.data(), 3), 3);
  EXPECT_EQ(ReadAt(descriptor, 0, bytes.data() + 3, 6), 6);
  EXPECT_EQ(bytes, "tenconten");
  EXPECT_EQ(ReadAt(descriptor, 5, bytes.data(), 9), 2);
  EXPECT_EQ(ReadAt(descriptor, 70, bytes.data(), 9), 0);
  EXPECT_EQ(ReadAt(-1, 0, bytes.data(), 9), std::nullopt);
  CloseDescriptor(descriptor);
  EXPECT_EQ(OpenFile(folder.Path().string() + "none", Opening::kChange), nullptr);
  EXPECT_EQ(errno, ENOENT);
}

TEST(Platform, MakesFoldersWithThoseAbove) {
  const qv::TempFolder folder;
  const std::string deep = folder.At(u8"a/運图/c");  // half of a character is a separator's byte
  EXPECT_TRUE(CreatePrivateFolder(deep + kSeparator));
  EXPECT_TRUE(CreatePrivateFolder(deep));
  EXPECT_EQ(TypeOf(deep), std::filesystem::file_type::directory);
  EXPECT_FALSE(CreatePrivateFolder(folder.Write("file", "") + kSeparator + "below"));
}

TEST(Platform, KnowsWhereItIs) {
  EXPECT_TRUE(std::filesystem::is_regular_file(ModuleFile()));
  EXPECT_TRUE(std::filesystem::path(ModuleFile()).is_absolute());
  // The library under test is part of this program.
  EXPECT_EQ(ProgramFolder(),
            std::filesystem::canonical(ModuleFile()).parent_path().string() + kSeparator);
  EXPECT_GT(PhysicalMemory(), std::uint64_t{64} << 20);
}

struct Noted {
  ~Noted() { *ended += "."; }
  std::string* ended = nullptr;
};

TEST(Platform, MakesTextsOfOthersFitToBeShown) {
  const std::string plan = NarrowFromWide(u"\u56fe\u7eb8");
  const std::pair<std::string, std::string> cases[] = {
      {"near \"form\": syntax error", "near \"form\": syntax error"},
      {"a\r\n\tb\x1b[31m\x7f", "a   b [31m "},
      {std::string("a\0b", 3), "a b"},
      {plan, plan},
      {"a\xFF" + plan, "a?" + std::string(plan.size(), '?')}};
  for (const auto& [given, plain] : cases) EXPECT_EQ(PlainText(given, 1000), plain);
  EXPECT_EQ(PlainText(plan, plan.size() - 1), NarrowFromWide(u"\u56fe")) << "no half characters";
  EXPECT_EQ(PlainText(plan, 0), "");
  EXPECT_EQ(NarrowFromUtf8("a \xE5\x9B\xBE\xE7\xBA\xB8"), "a " + plan);
  EXPECT_EQ(NarrowFromUtf8("\xF0\x9F\x98\x80"), NarrowFromWide(u"\xD83D\xDE00"));
}

TEST(Platform, EndsWhatAThreadHasWhenTheThreadEnds) {
  std::string ended;
  for (int i = 0; i < 2; ++i) {
    std::thread([&] {
      OfThisThread<Noted>().ended = &ended;
      OfThisThread<std::string>() = std::string(1000, 'x');
      EXPECT_EQ(OfThisThread<Noted>().ended, &ended);
      EXPECT_EQ(OfThisThread<std::string>().size(), 1000U);
    }).join();
  }
  EXPECT_EQ(ended, "..");
}

}  // namespace
}  // namespace qv::platform
