#include "tools/qvcall/system/Terminal.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <iostream>

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

}  // namespace
