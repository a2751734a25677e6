#include "cache/QueryCache.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "base/platform/Platform.h"
#include "tests/support/System.h"
#include "tests/support/TempFolder.h"

namespace qv {
namespace {

namespace fs = std::filesystem;

class QueryCacheTest : public testing::Test {
 protected:
  QueryCacheTest() {
    fs::create_directory(copies_);
    EXPECT_TRUE(cache_.SetPath(path_));
  }

  bool Store(const std::string& key, const std::string& text) {
    return cache_.Store(key, folder_.Write("answer", text), kCachePlain);
  }

  // Returns what the cache finds, or "-". No other file may appear in the folder for copies.
  std::string Found(const QueryCache& cache, const std::string& key) {
    const std::optional<std::string> path = cache.Find(key, copies_);
    std::string text = "-";
    if (path) {
      text = BytesOf(*path);
      EXPECT_TRUE(platform::RemoveFile(*path));
    }
    EXPECT_TRUE(fs::is_empty(copies_));
    return text;
  }
  std::string Found(const std::string& key) { return Found(cache_, key); }

  // Returns the names in the cache's folder, without the index and its log.
  std::set<std::string> Files() {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(path_))
      names.insert(entry.path().filename().string());
    std::erase_if(names, [](const auto& name) { return name.starts_with("qvdbcache.db3"); });
    return names;
  }

  void Sql(const std::string& text) {
    sqlite3* database = nullptr;
    const std::u16string file = fs::path(path_ + "/qvdbcache.db3").u16string();
    ASSERT_EQ(sqlite3_open16(file.c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, text.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << text;
    sqlite3_close(database);
  }

  TempFolder folder_;
  const std::string path_ = folder_.At("a/cache");
  const std::string copies_ = folder_.At("copies");
  QueryCache cache_;
};

TEST_F(QueryCacheTest, IsOffWithoutAFolder) {
  ASSERT_TRUE(Store("key", "text"));
  const std::string file = folder_.Write("file", "");
  for (const std::string& path : {std::string(), file + "/below", std::string(2000, 'x')}) {
    EXPECT_EQ(cache_.SetPath(path), path.empty());
    EXPECT_EQ(Found("key"), "-");
    EXPECT_FALSE(Store("key", "other"));
    EXPECT_FALSE(cache_.Clear());
  }
  EXPECT_TRUE(cache_.SetPath(path_ + platform::kSeparator));
  EXPECT_EQ(Found("key"), "text");
}

TEST_F(QueryCacheTest, KeepsTheNewestAnswerOfEachKey) {
  EXPECT_EQ(Found("key"), "-");
  EXPECT_TRUE(Store("key", "first"));
  EXPECT_TRUE(Store("other", ""));
  EXPECT_TRUE(cache_.Store("key", folder_.Write("answer", Gzipped("second")), kCacheGzip));
  EXPECT_EQ(Files().size(), 2u) << "the first answer's file goes";
  EXPECT_EQ(Found("key"), "second");
  EXPECT_EQ(Found("key"), "second") << "the copy was the caller's";
  EXPECT_EQ(Found("other"), "");
  QueryCache another_program;
  ASSERT_TRUE(another_program.SetPath(path_));
  EXPECT_EQ(Found(another_program, "key"), "second");
  EXPECT_TRUE(Store("key", "third"));
  EXPECT_EQ(Found(another_program, "key"), "third");
  EXPECT_TRUE(another_program.Clear());
  EXPECT_EQ(Found("key"), "-");
  EXPECT_EQ(Files().size(), 0u);
}

TEST_F(QueryCacheTest, KnowsWhenAnAnswerWasStored) {
  ASSERT_TRUE(Store("key", "text"));
  const std::chrono::sys_seconds long_ago{std::chrono::seconds(1'500'000'000)};
  fs::last_write_time(fs::path(path_) / *Files().begin(),
                      std::chrono::file_clock::from_sys(long_ago));
  EXPECT_EQ(cache_.StoredAt("key"), 1'500'000'000);
  EXPECT_EQ(cache_.StoredAt("other"), std::nullopt);
  Sql("update qv_tp_sqlindex set file_name = '../answer'");
  EXPECT_EQ(cache_.StoredAt("key"), std::nullopt);
  EXPECT_TRUE(cache_.SetPath(""));
  EXPECT_EQ(cache_.StoredAt("key"), std::nullopt);
}

TEST_F(QueryCacheTest, TakesKeysOfAnyBytes) {
  const std::string long_key(3'000'000, 'x');
  const std::string with_nuls[] = {std::string("a\0b", 3), std::string("a\0c", 3)};
  const std::string keys[] = {"",  with_nuls[0], with_nuls[1], "a",
                              "A", "\xFF\xFE",   "\xFF\xFD",   "\xC0\xEE' --",
                              "1", "1.0",        long_key,     long_key + "y"};
  int text = 0;
  for (const std::string& key : keys) EXPECT_TRUE(Store(key, std::to_string(text++)));
  text = 0;
  for (const std::string& key : keys) EXPECT_EQ(Found(key), std::to_string(text++));
}

TEST_F(QueryCacheTest, ForgetsADamagedAnswerOnly) {
  ASSERT_TRUE(Store("good", "text"));
  ASSERT_TRUE(cache_.Store("bad", folder_.Write("answer", "not gzip"), kCacheGzip));
  EXPECT_EQ(Found("bad"), "-");
  EXPECT_EQ(Files().size(), 1u);
  ASSERT_TRUE(cache_.Store("packed", folder_.Write("answer", Gzipped("text")), kCacheGzip));
  for (const char* const key : {"good", "packed"}) {
    EXPECT_FALSE(cache_.Find(key, copies_ + "/missing")) << "not the answer's fault";
    EXPECT_EQ(Found(key), "text");
  }
}

TEST_F(QueryCacheTest, TakesAFileFromAnyFileSystem) {
  const fs::path memory = "/dev/shm";
  const fs::path folder = fs::is_directory(memory) ? memory : folder_.Path();
  const std::string far = (folder / platform::NewGuid()).string();
  for (const std::string& file : {folder_.At("answer"), far, folder_.At("answer")}) {
    std::ofstream(file) << file;
    EXPECT_TRUE(cache_.Take("key", file, kCachePlain));
    EXPECT_EQ(Found("key"), file);
    EXPECT_EQ(Files().size(), 1u);
    fs::remove(file);
  }
  EXPECT_FALSE(cache_.Take("key", copies_ + "/missing", kCachePlain));
}

TEST_F(QueryCacheTest, GivesNoFileThatLostBytes) {
  const std::string packed = Gzipped("text");
  for (const std::string& left : {std::string(), std::string(4, '\0'), packed + "#"}) {
    for (const int flag : {kCachePlain, kCacheGzip}) {
      ASSERT_TRUE(cache_.Store("key", folder_.Write("answer", flag ? "text" : packed), flag));
      folder_.Write("a/cache/" + *Files().begin(), left);
      EXPECT_EQ(Found("key"), "-");
      EXPECT_TRUE(Files().empty());
    }
  }
  ASSERT_TRUE(Store("key", "text"));
  const std::string without_sum = "QvCache_" + platform::NewGuid() + ".dat";
  folder_.Write("a/cache/" + without_sum, "of an earlier version");
  Sql("UPDATE qv_tp_sqlindex SET file_name = '" + without_sum + "'");
  EXPECT_EQ(Found("key"), "of an earlier version");
}

TEST_F(QueryCacheTest, LosesTheNewestAnswersAtMostInAPowerCut) {
  constexpr int kAnswers = 12;
  const std::string index = "qvdbcache.db3";
  for (int i = 0; i < kAnswers; ++i) ASSERT_TRUE(Store("key " + std::to_string(i), "text"));
  const std::string log = BytesOf(path_ + "/" + index + "-wal");
  std::set<int> kept;
  for (std::size_t part = 0; part <= 16; ++part) {
    const std::string name_after = "after" + std::to_string(part);
    const std::string after = folder_.At(name_after);
    fs::create_directory(after);
    for (const std::string& name : Files()) fs::copy(path_ + "/" + name, after + "/" + name);
    fs::copy(path_ + "/" + index, after + "/" + index);
    folder_.Write(name_after + "/" + index + "-wal", log.substr(0, log.size() * part / 16));
    QueryCache cache;
    ASSERT_TRUE(cache.SetPath(after)) << part;
    int found = 0;
    while (found < kAnswers && Found(cache, "key " + std::to_string(found)) == "text") ++found;
    for (int i = found; i < kAnswers; ++i) EXPECT_EQ(Found(cache, "key " + std::to_string(i)), "-");
    kept.insert(found);
  }
  EXPECT_GE(kept.size(), 4u);
  EXPECT_EQ(*kept.rbegin(), kAnswers);
  cache_.Reset();
  EXPECT_FALSE(fs::exists(path_ + "/" + index + "-wal"));
  EXPECT_EQ(BytesOf(path_ + "/" + index)[18], 1) << "programs that expect a rollback journal";
}

TEST_F(QueryCacheTest, LeavesNoTraceOfAFailedStore) {
  ASSERT_TRUE(Store("key", "text"));
  const std::set<std::string> before = Files();
  EXPECT_FALSE(cache_.Store("key", folder_.Write("answer", "other"), 2));
  EXPECT_FALSE(cache_.Store("key", copies_ + "/missing", kCachePlain));
  EXPECT_FALSE(cache_.Store("key", copies_, kCachePlain)) << "a folder";
  EXPECT_FALSE(Store(std::string(65 << 20, 'x'), "other")) << "fails after the renaming";
  EXPECT_EQ(Files(), before);
  EXPECT_EQ(Found("key"), "text");
}

TEST_F(QueryCacheTest, TrustsNothingInTheIndex) {
  folder_.Write("a/secret", "secret");
  ASSERT_TRUE(Store("sound", "text"));
  const std::string guid = "{01234567-89AB-CDEF-0123-456789ABCDEF}";
  const std::string names[] = {"../secret",
                               folder_.At("a/secret"),
                               "qvdbcache.db3",
                               "",
                               ".",
                               "QvCache_" + guid + ".dat/../../secret",
                               "../cache/QvCache_" + guid + ".dat",
                               std::string(100'000, 'x')};
  for (const std::string& name : names) {
    Sql("INSERT INTO qv_tp_sqlindex VALUES(x'6576696C', '" + name + "', 1)");  // "evil"
    EXPECT_EQ(Found("evil"), "-") << name;
    Sql("DELETE FROM qv_tp_sqlindex WHERE query_text = x'6576696C'");
  }
  EXPECT_EQ(BytesOf(path_ + "/../secret"), "secret");
  Sql("UPDATE qv_tp_sqlindex SET compress_flag = 7");
  EXPECT_EQ(Found("sound"), "-");
}

TEST_F(QueryCacheTest, SweepsWhatACrashLeft) {
  ASSERT_TRUE(Store("kept", "text"));
  ASSERT_TRUE(Store("lost file", "text"));
  const std::set<std::string> two = Files();
  ASSERT_TRUE(Store("lost entry", "text"));
  Sql("DELETE FROM qv_tp_sqlindex WHERE query_text = CAST('lost entry' AS BLOB)");
  const std::string fresh = "QvCache_" + platform::NewGuid() + ".tmp";
  const std::string old = "a/cache/QvCache_" + platform::NewGuid() + ".tmp";
  fs::last_write_time(folder_.Write(old, ""),
                      fs::file_time_type::clock::now() - std::chrono::hours(48));
  folder_.Write("a/cache/" + fresh, "being written");
  folder_.Write("a/cache/notes.dat", "not ours");
  ASSERT_TRUE(cache_.SetPath(path_));
  std::set<std::string> expected = two;
  expected.insert({fresh, "notes.dat"});
  EXPECT_EQ(Files(), expected);

  for (const std::string& name : two) {
    if (BytesOf(path_ + "/" + name) == "text")
      fs::rename(path_ + "/" + name, folder_.Path() / name);
  }
  EXPECT_EQ(Found("lost file"), "-");
  for (const std::string& name : two) fs::rename(folder_.Path() / name, path_ + "/" + name);
  EXPECT_EQ(Found("lost file"), "-") << "forgotten when its file was not there";
  EXPECT_EQ(Found("kept"), "text");
}

TEST_F(QueryCacheTest, BeginsADamagedIndexAnew) {
  const auto is_usable = [this] {
    return cache_.SetPath(path_) && Found("key") == "-" && Store("key", "text") &&
           Found("key") == "text";
  };
  ASSERT_TRUE(Store("key", "text"));
  cache_.Reset();
  folder_.Write("a/cache/qvdbcache.db3", std::string(5000, 'x'));
  EXPECT_TRUE(is_usable());
  Sql("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 200) "
      "INSERT INTO qv_tp_sqlindex SELECT randomblob(900), 'f', 1 FROM n");
  cache_.Reset();
  std::string bytes = BytesOf(path_ + "/qvdbcache.db3");
  bytes.replace(bytes.size() / 2, 8192, 8192, '\xAA');
  folder_.Write("a/cache/qvdbcache.db3", bytes);
  EXPECT_TRUE(is_usable()) << "damaged further inside";
}

TEST_F(QueryCacheTest, LeavesTheDatabasesOfOthersAlone) {
  const std::string index = path_ + "/qvdbcache.db3";
  const auto is_left_alone = [&] {
    const std::string before = BytesOf(index);
    return !cache_.SetPath(path_) && BytesOf(index) == before && Files().empty();
  };
  const char* const planted[] = {
      "PRAGMA application_id = 0; PRAGMA journal_mode = WAL",
      "PRAGMA journal_mode = DELETE; CREATE INDEX slow ON qv_tp_sqlindex(hex(query_text))",
      ("DROP TABLE qv_tp_sqlindex; CREATE TABLE qv_tp_sqlindex(query_text BLOB NOT NULL PRIMARY "
       "KEY,"
       "file_name TEXT NOT NULL, compress_flag INTEGER NOT NULL, slow INT CHECK(hex(slow) = 0))"),
      "DROP TABLE qv_tp_sqlindex; CREATE TABLE theirs(id)"};
  for (const char* const sql : planted) {
    cache_.Reset();
    Sql(sql);
    EXPECT_TRUE(is_left_alone()) << sql;
  }
  fs::rename(index, folder_.Path() / "theirs.db3");
  if (MakeLink(folder_.Path() / "theirs.db3", index)) {
    EXPECT_TRUE(is_left_alone()) << "a link";
  }
  fs::remove(index);
  for (const char* const companion : {"", "-journal", "-wal", "-shm"}) {
    fs::create_directory(index + companion);
    EXPECT_FALSE(cache_.SetPath(path_)) << companion;
    fs::remove(index + companion);
  }
  if (MakeLink(path_, folder_.Path() / "link")) {
    EXPECT_TRUE(cache_.SetPath(folder_.At("link"))) << "a folder may be a link";
  }
}

TEST_F(QueryCacheTest, KeepsTheStateWord) {
  cache_.SetState(cache_state::kNetworkBad);
  EXPECT_TRUE(cache_.SetPath(path_));
  EXPECT_EQ(cache_.State(), 2);
  cache_.Reset();
  EXPECT_EQ(cache_.State(), 0);
  EXPECT_EQ(Found("key"), "-");
}

constexpr std::size_t kLength = 100'000;

TEST_F(QueryCacheTest, GivesWholeAnswersToManyThreadsAndPrograms) {
  QueryCache another_program;
  ASSERT_TRUE(another_program.SetPath(path_));
  std::vector<std::thread> threads;
  for (const char letter : {'a', 'b', 'c', 'd'}) {
    QueryCache& cache = letter == 'd' ? another_program : cache_;
    const std::string text(kLength, letter);
    const int flag = letter % 2 == 0 ? kCacheGzip : kCachePlain;
    const std::string source =
        folder_.Write(std::string("answer ") + letter, flag == kCacheGzip ? Gzipped(text) : text);
    threads.emplace_back([this, &cache, source, flag] {
      for (int i = 0; i < 24; ++i) {
        const std::string key = std::to_string(i % 2);
        if (i % 3 == 0) cache.Store(key, source, flag);
        const std::optional<std::string> path = cache.Find(key, copies_);
        if (!path) continue;
        const std::string found = BytesOf(*path);
        EXPECT_EQ(found.size(), kLength);
        EXPECT_EQ(found.find_first_not_of(found[0]), std::string::npos);
        EXPECT_TRUE(platform::RemoveFile(*path));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const char* const key : {"0", "1"}) EXPECT_EQ(Found(key).size(), kLength);
  EXPECT_EQ(Files().size(), 2u);
}

}  // namespace
}  // namespace qv
