// The threads that read large answers: how many there are, when they end, and what happens without.
#include "resultset/readers/ReaderThreads.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <barrier>
#include <filesystem>

#include "ReadersFixture.h"
#include "resultset/readers/TextWindow.h"
#include "tests/support/Allocations.h"

namespace qv {
namespace {

std::ptrdiff_t ThreadsOfThisProcess() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return std::distance(begin(tasks), end(tasks));
}

// The system may list a thread a little longer than others can wait for its end, and a sanitizer
// has a thread of its own, which starts with the first.
bool HasThreads([[maybe_unused]] std::ptrdiff_t count) {
#if defined(__SANITIZE_THREAD__)
  return true;
#endif
  for (int tries = 0; tries < 100000; ++tries) {
    if (ThreadsOfThisProcess() == count) return true;
  }
  return false;
}

int CallsWith(int helpers) {
  std::atomic<int> calls = 0;
  RunOnReaderThreads(helpers, [&] { ++calls; });
  return calls;
}

// Returns the exit status of a forked child that calls `run`.
template <class Run>
int InChild(const Run& run) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(run() ? 0 : 1);
  int status = -1;
  ::waitpid(child, &status, 0);
  return status;
}

class ReaderThreadsTest : public ReadersTest {
 protected:
  // Reads a file in as many pieces as rows.
  bool ReadsRows() {
    const std::string rows = Repeated("<z:row a='1'/><z:row/>", 500);
    CRvoDbRes result;
    return Rowset(RowsetHead({"name='a'"}) + rows, result) && result.GetRecordCount() == 1000 &&
           RowsOf(result)[998] == "1" && result.IsNull(999, 0);
  }

  void SetUp() override {
    SetReaderThreads(4);
    SetPieceBytes(11);
  }
  void TearDown() override {
    EndReaderThreads();
    SetReaderThreads(0);
    SetPieceBytes(0);
  }
};

TEST_F(ReaderThreadsTest, StartWhenNeededAndEnd) {
  for (int times = 0; times < 2; ++times) {
    EXPECT_TRUE(HasThreads(1));
    std::barrier all_are_here(3);
    RunOnReaderThreads(2, [&] { all_are_here.arrive_and_wait(); });
    EXPECT_TRUE(HasThreads(3));
    EXPECT_TRUE(ReadsRows());
    EXPECT_TRUE(HasThreads(4));
    EndReaderThreads();
  }
  SetReaderThreads(1);
  EXPECT_TRUE(ReadsRows());
  EXPECT_TRUE(HasThreads(1));
}

TEST_F(ReaderThreadsTest, AreDoneWithoutIfTheyHaveNoMemory) {
  ASSERT_TRUE(ReadsRows());
  int failed = 0;
  for (int allocations = 0; allocations < 30; ++allocations) {
    LimitOthersTo(allocations);
    EXPECT_TRUE(ReadsRows()) << allocations;
    failed += LimitOthersTo(kUnlimited) < 0 ? 1 : 0;
  }
  EXPECT_GT(failed, 10);
}

TEST_F(ReaderThreadsTest, ServeSeveralCallers) {
  std::atomic<int> failures = 0;
  RunOnReaderThreads(3, [&] { failures += CallsWith(3) < 1 ? 1 : 0; });
  EXPECT_EQ(failures, 0);
}

#if !defined(__SANITIZE_THREAD__)  // it does not let a forked child start threads
TEST_F(ReaderThreadsTest, AForkedChildStartsItsOwn) {
  ASSERT_TRUE(ReadsRows());
  const auto read = [&] {
    const bool is_read = HasThreads(1) && ReadsRows() && HasThreads(4);
    EndReaderThreads();
    return is_read && HasThreads(1);
  };
  EXPECT_EQ(InChild(read), 0);
  EXPECT_EQ(InChild([&] { return InChild(read) == 0; }), 0);
  EXPECT_TRUE(ReadsRows());
}

TEST_F(ReaderThreadsTest, WithoutThreadsTheCallerWorksAlone) {
  const auto work_alone = [] {
    // The limit does not hold for the administrator.
    constexpr uid_t kNobody = 65534;
    constexpr rlimit kNone = {0, 0};
    if (::geteuid() == 0 && ::setuid(kNobody) != 0) return false;
    return ::setrlimit(RLIMIT_NPROC, &kNone) == 0 && CallsWith(3) == 1 && HasThreads(1);
  };
  EXPECT_EQ(InChild(work_alone), 0);
}
#endif

}  // namespace
}  // namespace qv
