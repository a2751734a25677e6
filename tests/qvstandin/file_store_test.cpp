// Tests what clients can and cannot reach in the stores, without a network.
#include "tools/qvstandin/stores/FileStore.h"

#include <gmock/gmock.h>

#include <atomic>
#include <filesystem>
#include <set>
#include <sstream>
#include <thread>

#include "tests/support/System.h"
#include "tests/support/TempFolder.h"
#include "tools/qvstandin/commands/Listings.h"
#include "tools/qvstandin/common/ByteSink.h"
#include "tools/qvstandin/stores/DataFolder.h"
#include "tools/qvstandin/stores/StoreNames.h"
#include "tools/qvstandin/stores/StoredFiles.h"

namespace qv::standin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

// Each name is tried as a whole path, as a folder above a file, and as a file in a folder.
constexpr char kBadNames[] =
    ";.;..;...;. .;.. ; ;a.;a ;a..;/;\\;/a;\\a;a/;a\\;a//b;a\\\\b;a/../b;a\\..\\b;../a;..\\a;./a;"
    "a/./b;a/.. "
    "/b;a/..;..\\..\\..\\etc\\passwd;../../../../etc/passwd;/etc/passwd;\\etc\\passwd;C:;"
    "C:a;C:\\a;c:/a;\\\\server\\share\\a;//server/share/"
    "a;\\\\?\\C:\\a;\\\\.\\NUL;a:b;a::$DATA;a\nb;"
    "a\rb;a\tb;\1;a\x7f;a*;a?b;\"a\";<a>;a|b;CON;con;PRN;AUX;nul;NUL.txt;Aux .x;COM1;com9.dwg;LPT0;"
    "lpt5;COM\u00B2;CONIN$;conout$;a/CON/b;link;link/inside;loop;drawings/link/x;pipe";

// The names above that exist only if the system supports links and pipes.
const std::set<std::string> kLinks{"link", "loop", "pipe"};

std::vector<std::string> BadNames() {
  std::vector<std::string> names{std::string("\0", 1), std::string("a\0b", 3)};
  std::istringstream all(kBadNames);
  for (std::string name; std::getline(all, name, ';');) names.push_back(name);
  return names;
}

class FileStoreTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(data_.Prepare().Ok());
    const fs::path outside = folder_.Path() / "outside";
    fs::create_directory(outside);
    folder_.Write("outside/inside", "secret");
    links_ = MakeLink(outside, Top() / "link") && MakeLink(outside, Top() / "drawings" / "link") &&
             MakeLink("loop", Top() / "loop") && MakePipe(Top() / "pipe");
  }

  fs::path Top() const { return folder_.Path() / "data" / "files"; }
  fs::path Incoming() const { return folder_.Path() / "data" / "incoming"; }
  ErrorCode Put(const std::string& path, const std::string& bytes = "x") {
    return data_.Files().Put(path, folder_.Write("data/incoming/new", bytes)).code;
  }
  std::vector<std::string> Names(const std::string& folder, const std::string& pattern,
                                 platform::EntryKind kind = platform::EntryKind::kFile) {
    std::vector<platform::Entry> found;
    if (!data_.Files().List(folder, kind, pattern, limit_, found).Ok()) return {"refused"};
    SortListing(found, ListingOrder::kByName, false);
    std::vector<std::string> names;
    for (const auto& entry : found) names.push_back(entry.name);
    return names;
  }

  bool links_ = false;  // whether the system supports links and pipes
  const TempFolder folder_;
  DataFolder data_{folder_.At("data")};
  WorkLimit limit_{std::chrono::seconds(30), [] { return false; }};
};

TEST_F(FileStoreTest, NothingLeadsOutOfTheStores) {
  FileStore& files = data_.Files();
  const auto everything = [&] {
    return std::distance(fs::recursive_directory_iterator(folder_.Path()), {});
  };
  std::optional<platform::OpenedFile> opened;
  platform::Entry entry;
  ASSERT_EQ(Put("drawings/a"), ErrorCode::kNone);
  const std::string upload = folder_.Write("data/incoming/new", "x");
  const auto before = everything();
  ASSERT_GE(BadNames().size(), 60U);
  for (const std::string& bad : BadNames()) {
    if (!links_ && kLinks.count(bad) != 0) continue;
    for (const std::string& path : {bad, bad + "/x", "drawings\\" + bad}) {
      // After a folder's name, these lead to nothing or to something harmless.
      if (path == "drawings\\pipe" || path == "drawings\\loop") continue;
      EXPECT_FALSE(files.Put(path, upload).Ok()) << path;
      EXPECT_FALSE(files.Open(path, opened).Ok()) << path;
      EXPECT_FALSE(files.Look(path, entry).Ok()) << path;
      EXPECT_FALSE(files.Delete(path).Ok()) << path;
      EXPECT_FALSE(files.Copy("drawings/a", path, limit_).Ok()) << path;
      EXPECT_FALSE(files.Rename("drawings/a", path).Ok()) << path;
      EXPECT_FALSE(files.Rename(path, "drawings/b").Ok()) << path;
      EXPECT_FALSE(files.MakeFolder(path).Ok()) << path;
      EXPECT_FALSE(files.DeleteFolder(path).Ok()) << path;
      EXPECT_EQ(Names(path, "*").front(), path == "." ? "readme.txt" : "refused") << path;
    }
    // The other store contains no links, and its names are not paths.
    if (kLinks.count(bad) != 0) continue;
    EXPECT_EQ(data_.Ids().Put({7, bad}, upload).code, ErrorCode::kBadName) << bad;
    EXPECT_EQ(data_.Ids().Open({7, bad}, opened).code, ErrorCode::kBadName) << bad;
  }
  EXPECT_EQ(data_.Ids().Put({-1, "x"}, upload).code, ErrorCode::kBadName);
  EXPECT_EQ(everything(), before);
  EXPECT_THAT(Names(".", "*"), ElementsAre("readme.txt"));
  EXPECT_THAT(Names(".", "l*", platform::EntryKind::kFolder), IsEmpty());
  for (const char* good : {"COM", "COM10", "console", ".profile", "a b", "图 纸.dwg", "..a"}) {
    EXPECT_EQ(Put(good), ErrorCode::kNone) << good;
  }
}

TEST_F(FileStoreTest, NamesAreAsLongAsRecordsHold) {
  for (const std::size_t length : {199U, 200U}) {
    EXPECT_EQ(Put(std::string(length, 'f')) == ErrorCode::kNone, length == 199);
  }
  for (const std::size_t length : {119U, 120U}) {
    const std::string name(length, 'd');
    EXPECT_EQ(data_.Files().MakeFolder(name).Ok(), length == 119);
    EXPECT_EQ(data_.Files().Rename("drawings", name + "/x").Ok(), length == 119);
  }
  EXPECT_EQ(data_.Files().Rename("reports", std::string(150, 'r')).code, ErrorCode::kBadName);
  EXPECT_EQ(data_.Files().Rename("readme.txt", std::string(150, 'r')).code, ErrorCode::kNone);
  std::string deep = "a";
  while (deep.size() < 129) deep += "/a";
  EXPECT_FALSE(PartsOf(deep)) << "65 of them";
  EXPECT_EQ(PartsOf(deep.substr(2)).value().size(), 64U);
}

TEST_F(FileStoreTest, RenamingNeverReplacesAndRemovingWantsEmptyFolders) {
  FileStore& files = data_.Files();
  ASSERT_EQ(Put("a", "old"), ErrorCode::kNone);
  EXPECT_EQ(files.Rename("readme.txt", "a").code, ErrorCode::kStoreFailed);
  EXPECT_EQ(files.Rename("a", "a").code, ErrorCode::kStoreFailed);
  EXPECT_EQ(files.Rename("drawings", "drawings/structural/in").code, ErrorCode::kStoreFailed);
  EXPECT_EQ(files.DeleteFolder("drawings").code, ErrorCode::kStoreFailed);
  EXPECT_EQ(Put("drawings"), ErrorCode::kStoreFailed) << "a folder";
  EXPECT_EQ(Put("nowhere/a"), ErrorCode::kNoFile);
  EXPECT_EQ(files.Delete("drawings").code, ErrorCode::kNoFile);
  EXPECT_TRUE(files.MakeFolder("empty").Ok());
  EXPECT_EQ(files.MakeFolder("empty").code, ErrorCode::kStoreFailed);
  EXPECT_NE(files.MakeFolder("readme.txt").text.find("already exists"), std::string::npos);
  EXPECT_TRUE(files.Rename("drawings/structural", "empty\\to").Ok());
  EXPECT_TRUE(files.Copy("readme.txt", "a", limit_).Ok()) << "copies replace, as uploads do";
  EXPECT_EQ(BytesOf((Top() / "a").string()), BytesOf((Top() / "readme.txt").string()));
  fs::remove(Incoming() / "new");
  EXPECT_TRUE(fs::is_empty(Incoming()));
}

TEST_F(FileStoreTest, TwoWritersLeaveOneWholeFileAndOneRenameWins) {
  const std::string a(300'000, 'a');
  const std::string b(300'000, 'b');
  std::atomic<int> renamed = 0;
  const auto write = [&](const std::string& bytes) {
    for (int i = 0; i < 20; ++i) {
      const std::string name = "data/incoming/" + bytes.substr(0, 1);
      EXPECT_TRUE(data_.Files().Put("both", folder_.Write(name, bytes)).Ok());
      const std::string own = "from" + bytes.substr(0, 1) + std::to_string(i);
      EXPECT_TRUE(data_.Files().Put(own, folder_.Write(name, "x")).Ok());
      renamed += data_.Files().Rename(own, "to" + std::to_string(i)).Ok() ? 1 : 0;
      EXPECT_TRUE(data_.Ids().Put({i, "n"}, folder_.Write(name, bytes)).Ok());
    }
  };
  std::thread other(write, a);
  write(b);
  other.join();
  const std::string left = BytesOf((Top() / "both").string());
  EXPECT_TRUE(left == a || left == b);
  EXPECT_EQ(renamed, 20);
  EXPECT_EQ(Names(".", "from*").size(), 20U);
}

TEST_F(FileStoreTest, WorkThatTakesTooLongLeavesNothing) {
  WorkLimit over(std::chrono::seconds(30), [] { return true; });
  while (!over.IsOver()) {
  }
  std::vector<platform::Entry> found;
  EXPECT_EQ(data_.Files().Copy("readme.txt", "copy", over).code, ErrorCode::kStopped);
  EXPECT_EQ(data_.Files().List(".", platform::EntryKind::kFile, "*", over, found).code,
            ErrorCode::kStopped);
  EXPECT_TRUE(fs::is_empty(Incoming()));
  EXPECT_FALSE(fs::exists(Top() / "copy"));
}

TEST_F(FileStoreTest, ADamagedPackIsRefused) {
  const std::string pack = BytesOf((Top() / "packs" / "standard parts.zip").string());
  const auto read = [&](const std::string& bytes, std::uint64_t longest) {
    folder_.Write("data/files/pack", bytes);
    std::optional<platform::OpenedFile> opened;
    EXPECT_TRUE(data_.Files().Open("pack", opened).Ok());
    Checksum sum;
    const Outcome outcome = ReadMember(std::move(*opened), "7/bolt.txt", longest, sum, limit_);
    return outcome.Ok() ? sum.Text() : std::to_string(static_cast<int>(outcome.code));
  };
  const std::string right = read(pack, 14);
  EXPECT_EQ(right.size(), 8U);
  EXPECT_EQ(read(pack, 13), "23") << "longer than it may be";
  EXPECT_EQ(read("", 14), "23");
  std::string large = pack;
  large[pack.rfind("PK\x05\x06") + 15] = '\1';
  EXPECT_EQ(read(large, 14), "23") << "a table of contents of 16 MiB";
  EXPECT_EQ(read(pack + std::string("PK\x06\x07") + pack, 14), "23") << "the long form";
  for (std::size_t i = 0; i < pack.size(); ++i) {
    std::string damaged = pack;
    damaged[i] = static_cast<char>(~damaged[i]);
    const std::string result = read(damaged, 14);
    EXPECT_TRUE(result == right || result == "23" || result == "21") << i << " " << result;
  }
}

TEST(NamePatternTest, StarsAndQuestionMarks) {
  const struct {
    const char* name;
    const char* pattern;
    bool matches;
  } cases[] = {{"a", "*.*", true},          {"a.B", "A.b", true},   {"", "*", true},
               {"abc", "a*c", true},        {"abcd", "a*c", false}, {"aXbXc", "a*X?", true},
               {"图纸.dwg", "?纸.*", true}, {"图", "??", false},    {"ab", "a", false},
               {"a", "ab", false},          {"aab", "*ab", true},   {"a[b]", "a[b]", true},
               {"abc", "**?**c**", true},   {"A1", "a?", true},     {"Ä", "ä", false}};
  for (const auto& test : cases) {
    EXPECT_EQ(MatchesPattern(test.name, test.pattern), test.matches)
        << test.name << " " << test.pattern;
  }
  std::string stars;
  for (int i = 0; i < 100; ++i) stars += "*a";
  EXPECT_FALSE(MatchesPattern(std::string(199, 'a') + "b", stars)) << "and soon";
  EXPECT_FALSE(MatchesPattern("a", std::string(256, '*')));
}

TEST(IdStoreTest, FoldersAreThoseThatClientsCompute) {
  EXPECT_EQ(IdStore::FolderOf(0), "0\\00\\00\\0\\");
  EXPECT_EQ(IdStore::FolderOf(42), "0\\00\\00\\42\\");
  EXPECT_EQ(IdStore::FolderOf(99'999), "0\\09\\99\\99999\\");
  EXPECT_EQ(IdStore::FolderOf(1'234'567), "1\\23\\45\\1234567\\");
  EXPECT_EQ(IdStore::FolderOf(2'147'483'647), "2147\\48\\36\\2147483647\\");
}

}  // namespace
}  // namespace qv::standin
