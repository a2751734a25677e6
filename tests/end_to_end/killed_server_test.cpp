// A server that is killed in the middle of its work: a batch or a file is wholly there or wholly
// absent, and no caller is told of a success that did not happen.
#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <random>
#include <thread>

#include "EndToEnd.h"
#include "tests/support/ServerProcess.h"

namespace qv {
namespace {

using Microseconds = std::chrono::microseconds;
using Clock = std::chrono::steady_clock;

constexpr int kBatches = 200;
constexpr int kLines = 60;
constexpr std::size_t kFiles = 1000;
constexpr std::size_t kFilesPerKill = 50;

// Random moments at which the server is killed, counted from the start of a call. Their range
// follows the results, so that about half of the calls fail, however fast the machine is.
class Moments {
 public:
  Moments(Microseconds range, unsigned seed) : range_(range.count()), random_(seed) {}

  Microseconds Next() {
    return Microseconds(std::uniform_int_distribution<Microseconds::rep>(0, range_)(random_));
  }
  void Note(bool succeeded) {
    range_ = succeeded ? std::max<Microseconds::rep>(range_ * 4 / 5, 10) : range_ * 5 / 4 + 1;
  }

 private:
  Microseconds::rep range_;
  std::mt19937 random_;
};

class KilledServer : public EndToEnd {
 protected:
  std::unique_ptr<ServerProcess> Start() const {
    auto server = std::make_unique<ServerProcess>(
        std::vector<std::string>{QV_STANDIN_PROGRAM, "--data", folder_.At("data"), "--port", "0"});
    EXPECT_NE(server->Port(), 0);
    CRvoServer::SetConinfo("127.0.0.1", server->Port());
    return server;
  }
  // Calls `call` while another thread kills the server after `wait`, and starts the server again.
  template <class Call>
  int CallKilled(std::unique_ptr<ServerProcess>& server, Microseconds wait, Call call) const {
    std::thread killer([&server, at = Clock::now() + wait] {
      while (Clock::now() < at) std::this_thread::yield();
      server->Kill();
    });
    const int result = call();
    killer.join();
    server = Start();
    return result;
  }
  // Calls `move` for every file. The server is killed in the middle of every fiftieth call, and a
  // call that fails then is repeated. Returns how many were.
  template <class Move>
  int MoveAll(Move move) const {
    auto server = Start();
    Moments moments(Microseconds(1500), 7);
    int again = 0;
    for (std::size_t file = 0; file < kFiles; ++file) {
      if (file % kFilesPerKill != 0) {
        EXPECT_EQ(move(file), 0) << file;
        continue;
      }
      const int result = CallKilled(server, moments.Next(), [&] { return move(file); });
      moments.Note(result == 0);
      if (result == 0) continue;
      ++again;
      EXPECT_EQ(move(file), 0) << file;
    }
    return again;
  }
  static int Insert(int batch) {
    std::vector<std::string> texts;
    for (int line = 0; line < kLines; ++line) {
      texts.push_back("insert into lines values (" + std::to_string(batch) + ", " +
                      std::to_string(line) + ", '" + std::string(2000, 'x') + "')");
    }
    return ExecuteBatch(texts);
  }
};

TEST_F(KilledServer, LeavesEachBatchWhollyThereOrWhollyAbsent) {
  auto server = Start();
  ASSERT_EQ(Execute("create table lines(batch integer, line integer, text text)"), 0);
  const auto before = Clock::now();
  ASSERT_EQ(Insert(0), 0);
  const auto undisturbed = std::chrono::duration_cast<Microseconds>(Clock::now() - before);

  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  Moments moments(2 * undisturbed, seed);
  std::map<int, int> results;  // of each batch
  for (int batch = 1; batch <= kBatches; ++batch) {
    results[batch] = CallKilled(server, moments.Next(), [batch] { return Insert(batch); });
    moments.Note(results[batch] == 0);
  }

  const CString sql("select batch, count(*) as lines from lines group by batch");
  CRvoDbRes rows;
  ASSERT_EQ(CRvoDatabase::SelectSQL(&sql, &rows, "DESIGNDB", 0), 0);
  std::map<long, long> found;
  for (int row = 0; row < rows.GetRecordCount(); ++row) {
    found[rows._int(row, 0)] = rows._int(row, 1);
    EXPECT_EQ(rows._int(row, 1), kLines) << "of batch " << rows._int(row, 0);
  }
  for (const auto& [batch, result] : results) {
    EXPECT_TRUE(result == 0 || result == -1 || result == -2) << result;
    if (result == -2) continue;  // either way
    EXPECT_EQ(found.count(batch), result == 0 ? 1u : 0u) << batch << ": " << result;
  }
  // Otherwise the server was hardly ever killed in the middle of a batch.
  EXPECT_GT(found.size(), kBatches / 20u);
  EXPECT_LT(found.size(), kBatches - kBatches / 20u);
}

TEST_F(KilledServer, LosesNoFileAndLeavesNoneHalf) {
  std::vector<std::string> files;
  for (std::size_t file = 0; file < kFiles; ++file) {
    const std::size_t length = file % kFilesPerKill == 0 ? 2u << 20 : file * 37;
    files.emplace_back(length, static_cast<char>(file));
  }
  const auto server_path = [](std::size_t file) { return "drawings\\图 " + std::to_string(file); };
  const auto stored = [&](std::size_t file) {
    return folder_.Path() / "data/files/drawings" / ("图 " + std::to_string(file));
  };
  const std::string local = folder_.At("down");

  const int sent_again = MoveAll([&](std::size_t file) {
    const std::string source = folder_.Write("up", files[file]);
    const int result = CRvoFile::UpLoadFileToServer(source.c_str(), server_path(file).c_str());
    std::error_code absent;
    const auto length = std::filesystem::file_size(stored(file), absent);
    EXPECT_TRUE(absent ? result != 0 : length == files[file].size()) << file;
    return result;
  });
  const int fetched_again = MoveAll([&](std::size_t file) {
    folder_.Write("down", "the one before");
    const int result = CRvoFile::DownLoadServerFile(local.c_str(), server_path(file).c_str());
    EXPECT_TRUE(BytesOf(local) == (result == 0 ? files[file] : "the one before")) << file;
    return result;
  });
  EXPECT_GT(sent_again, 0);
  EXPECT_GT(fetched_again, 0);
  std::vector<std::string> left;
  for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
    left.push_back(entry.path().filename().string());
  }
  EXPECT_THAT(left, testing::UnorderedElementsAre("cache", "data", "down", "temp", "up"));
}

}  // namespace
}  // namespace qv
