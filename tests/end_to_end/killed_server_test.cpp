// A server that is killed in the middle of its work: a batch is wholly there or wholly absent, and
// its caller never hears of a success that is not there.
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

class KilledServer : public EndToEnd {
 protected:
  std::unique_ptr<ServerProcess> Start() const {
    auto server = std::make_unique<ServerProcess>(std::vector<std::string>{
        QV_STANDIN_PROGRAM, "--data", (folder_.Path() / "data").string(), "--port", "0"});
    EXPECT_NE(server->Port(), 0);
    CRvoServer::SetConinfo("127.0.0.1", server->Port());
    return server;
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
  std::mt19937 random(seed);
  std::uniform_int_distribution<Microseconds::rep> moment(0, 2 * undisturbed.count());
  std::map<int, int> results;  // of each batch
  for (int batch = 1; batch <= kBatches; ++batch) {
    std::thread killer([&server, at = Clock::now() + Microseconds(moment(random))] {
      while (Clock::now() < at) std::this_thread::yield();
      server->Kill();
    });
    results[batch] = Insert(batch);
    killer.join();
    server = Start();
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
  // Otherwise the moments were such that nothing was put to the test.
  EXPECT_GT(found.size(), kBatches / 20u);
  EXPECT_LT(found.size(), kBatches - kBatches / 20u);
}

}  // namespace
}  // namespace qv
