// Tests what an interrupt leaves, and the progress of queues, whose runs it ends.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <iostream>
#include <sstream>
#include <thread>

#include "tools/qvcall/queues/QueueProgress.h"
#include "tools/qvcall/system/Terminal.h"

namespace {

void InterruptWhileWatched() {
  std::signal(SIGINT, SIG_DFL);  // it is ignored if the tests run in the background
  const qv::tool::InterruptWatch watch([] { std::cerr << "last words" << std::flush; });
  kill(getpid(), SIGINT);
  for (;;) pause();
}

TEST(InterruptWatch, HasItsWordsAndThenTheProgramEndsByTheSignal) {
  EXPECT_EXIT(InterruptWhileWatched(), testing::KilledBySignal(SIGINT), "^last words$");
}

TEST(InterruptWatch, LeavesEverythingAsItWas) {
  const auto watched_before = [] {
    std::signal(SIGINT, SIG_IGN);
    {
      const qv::tool::InterruptWatch watch([] { std::cerr << "last words" << std::flush; });
      kill(getpid(), SIGINT);  // stays ignored
    }
    kill(getpid(), SIGTERM);
  };
  EXPECT_EXIT(watched_before(), testing::KilledBySignal(SIGTERM), "^$");
}

QvTransferCallback listener = nullptr;
void* listening = nullptr;

void Listen(QvTransferCallback callback, void* context) {
  listener = callback;
  listening = context;
}

int Tell(std::int32_t index, std::uint64_t done, std::uint64_t total) {
  const QvTransferProgress progress = {"f", index, 3, done, total, 1};
  return listener(&progress, listening);
}

TEST(QueueProgress, CountsFilesOfWhichAllBytesWereMoved) {
  std::ostringstream err;
  qv::tool::QueueProgress progress(err, Listen);
  progress.Begin({"a", "b", "c"}, std::nullopt);
  EXPECT_EQ(Tell(0, 5, 5), 0);
  EXPECT_EQ(Tell(1, 3, 7), 0);  // the file is abandoned
  EXPECT_EQ(Tell(2, 0, 0), 0);
  EXPECT_EQ(Tell(2, 4, 4), 0);
  progress.End();
  EXPECT_EQ(progress.MovedBytes(), 9);
  EXPECT_EQ(listener, nullptr);
}

void RunUntilInterrupted() {
  std::signal(SIGINT, SIG_DFL);  // it is ignored if the tests run in the background
  qv::tool::QueueProgress progress(std::cerr, Listen);
  progress.Begin({"a"}, 10);
  kill(getpid(), SIGINT);
  while (Tell(0, 1, 10) == 0) std::this_thread::yield();
  progress.End();
  std::cerr << "in order" << std::flush;
}

TEST(QueueProgress, LetsAnInterruptedRunEndInOrder) {
  EXPECT_EXIT(RunUntilInterrupted(), testing::KilledBySignal(SIGINT), "^in order$");
}

}  // namespace
