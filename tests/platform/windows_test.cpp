#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <set>
#include <string>
#include <thread>

#include "base/platform/Folder.h"
#include "base/platform/Platform.h"
#include "base/platform/ThreadSlot.h"
#include "tests/support/TempFolder.h"

namespace qv::platform {
namespace {

TEST(Windows, KnowsAFileThatOthersCanRead) {
  const qv::TempFolder folder;
  const std::string open = folder.Write("open", "x");
  SECURITY_DESCRIPTOR everything{};
  ASSERT_NE(::InitializeSecurityDescriptor(&everything, SECURITY_DESCRIPTOR_REVISION), FALSE);
  ASSERT_NE(::SetSecurityDescriptorDacl(&everything, TRUE, nullptr, FALSE), FALSE);
  ASSERT_NE(::SetFileSecurityA(open.c_str(), DACL_SECURITY_INFORMATION, &everything), FALSE);
  const FilePtr file(std::fopen(open.c_str(), "rb"));
  EXPECT_FALSE(IsPrivate(file.get()));
}

TEST(Windows, ConvertsTextOfTheSystemsCodePage) {
  const std::u16string wide = u"plain é中";
  const std::string narrow = NarrowFromWide(wide);
  EXPECT_EQ(NarrowFromWide(WideFromNarrow(narrow).value_or(u"none")), narrow);
  EXPECT_EQ(NarrowFromWide(std::u16string(1, char16_t{0xD83D}) + u"a").back(), 'a');
  EXPECT_EQ(WideFromNarrow(std::string_view("a\0b", 3)), std::u16string(u"a\0b", 3));
  EXPECT_EQ(WideFromNarrow("a\x81"), std::nullopt);
}

TEST(Windows, TakesNoHalfOfACharacterForASeparator) {
  const std::string folder = NarrowFromWide(u"C:\\運\\");
  EXPECT_EQ(FolderLength(folder + NarrowFromWide(u"図運.exe")), folder.size());
  EXPECT_EQ(FolderLength(NarrowFromWide(u"運")), 0u);
  EXPECT_EQ(WithSeparator(NarrowFromWide(u"図運")), NarrowFromWide(u"図運\\"));
  EXPECT_EQ(WithSeparator(folder), folder);
  EXPECT_EQ(FolderLength("C:/a"), 3u);
}

TEST(Windows, KeepsTheTransportsLoaded) {
  for (const std::string name : {"QvNetClient4.dll", "QvHttpClient.dll"}) {
    void* const library = OpenLibrary(ProgramFolder() + name);
    ASSERT_NE(library, nullptr) << name;
    CloseLibrary(library);
    EXPECT_EQ(::GetModuleHandleA(name.c_str()), library);
  }
}

struct Counted {
  Counted() { ++alive; }
  ~Counted() { --alive; }
  static inline int alive = 0;
};

void CALLBACK UseAndLeave(void* caller) {
  OfThisThread<Counted>();
  ::SwitchToFiber(caller);
}

TEST(Windows, EndsWhatAFiberHasWhileItsThreadGoesOn) {
  std::thread([] {
    void* const own = ::ConvertThreadToFiber(nullptr);
    for (int i = 0; i < 2; ++i) {
      void* const other = ::CreateFiber(0, UseAndLeave, own);
      ::SwitchToFiber(other);
      EXPECT_EQ(Counted::alive, 1 + i);
      ::DeleteFiber(other);
      OfThisThread<Counted>();
      EXPECT_EQ(Counted::alive, 1) << "the thread's own";
    }
  }).join();
  EXPECT_EQ(Counted::alive, 0);
}

TEST(Windows, TakesATemporaryFolderWithItsSeparator) {
  EXPECT_TRUE(std::filesystem::is_directory(TempFolder()));
  EXPECT_EQ(TempFolder().back(), kSeparator);
}

TEST(Windows, WorksInsideAFolderThatIsHeldOpen) {
  const qv::TempFolder temporary;
  const auto folder = Folder::Open(temporary.At());
  ASSERT_TRUE(folder && folder->MakeFolder("a") && folder->MakeFolder("b"));
  const auto a = folder->Enter("a");
  const auto b = folder->Enter("b");
  ASSERT_TRUE(a && b);
  ASSERT_TRUE(a->TakeFile(temporary.Write("new", "12345"), "x"));
  EXPECT_EQ(a->Look("X").value_or(Entry{}).size, 5u);
  ASSERT_TRUE(b->TakeFile(temporary.Write("new", "1"), "x"));
  EXPECT_TRUE(a->Move("x", *b, "x")) << "replaces";
  EXPECT_EQ(a->OpenFile("x").has_value(), false);
  EXPECT_EQ(b->OpenFile("x").value_or(OpenedFile{}).size, 5u);
  EXPECT_FALSE(folder->RemoveFolder("b")) << "not empty";
  EXPECT_FALSE(folder->RemoveFile("b"));
  EXPECT_FALSE(b->RemoveFolder("x"));
  std::set<std::string> names;
  EXPECT_TRUE(folder->ForEach([&](const Entry& entry) { return names.insert(entry.name).second; }));
  EXPECT_EQ(names, (std::set<std::string>{"a", "b"}));
  EXPECT_TRUE(b->RemoveFile("x") && folder->RemoveFolder("a"));
}

TEST(Windows, TakesNoNameThatIsMoreThanAnEntry) {
  const qv::TempFolder temporary;
  const auto folder = Folder::Open(temporary.At());
  ASSERT_TRUE(folder && folder->MakeFolder("a"));
  temporary.Write("f", "x");
  for (const char* const name : {"", "..", "a\\..", "a/b", "f:stream", "f.", "COM1.txt"}) {
    EXPECT_FALSE(folder->Look(name)) << name;
    EXPECT_FALSE(folder->OpenFile(name)) << name;
    EXPECT_FALSE(folder->MakeFolder(name)) << name;
    EXPECT_FALSE(folder->Move("f", *folder, name)) << name;
  }
  EXPECT_TRUE(folder->OpenFile("f"));
  EXPECT_TRUE(folder->MakeFolder(NarrowFromWide(u"運")));
}

TEST(Windows, KnowsWherePathsLeadFromAnyFolder) {
  const std::string here = AbsolutePath(".").value_or("");
  EXPECT_EQ(AbsolutePath("a\\..\\b"), here + "\\b");
  for (const char* const whole : {"\\\\server\\share\\c", "\\\\?\\C:\\c", "C:\\c"}) {
    EXPECT_EQ(AbsolutePath(whole), whole);
  }
  EXPECT_EQ(AbsolutePath(""), std::nullopt);
}

}  // namespace
}  // namespace qv::platform
