#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <sstream>
#include <string>

#include "tools/qvcall/progress/ProgressBar.h"
#include "tools/qvcall/progress/ProgressLine.h"

namespace {

using std::chrono::milliseconds;

constexpr std::uint64_t kMiB = 1ULL << 20;

TEST(ProgressLine, TellsWhatIsKnownInTheCellsThatThereAre) {
  const struct {
    qv::tool::Progress progress;
    std::size_t cells;
    std::string line;
  } cases[] = {
      {{"Sending", 0, 2 * kMiB, milliseconds(0)},
       60,
       "Sending  [---------------------]    0%  0 B of 2.0 MiB  0:00"},
      {{"Sending", kMiB, 2 * kMiB, milliseconds(4000)},
       79,
       "Sending  [#########---------]   50%  1.0 MiB of 2.0 MiB  256.0 KiB/s  0:04 left"},
      {{"Sending", kMiB, 2 * kMiB, milliseconds(999)},
       40,
       "Sending   50%  1.0 MiB of 2.0 MiB  0:00"},
      {{"Sending", kMiB, 2 * kMiB, milliseconds(4000)}, 26, "Sending   50%  0:04 left"},
      {{"Sending", kMiB, 2 * kMiB, milliseconds(4000)}, 14, "Sending"},
      {{"Sending", kMiB, 2 * kMiB, milliseconds(4000)}, 11, ""},
      {{"Sending", 3 * kMiB - 1, 3 * kMiB, milliseconds(0)},
       40,
       "Sending   99%  3.0 MiB of 3.0 MiB  0:00"},
      {{"Sending", 5, 3, milliseconds(1000)},
       60,
       "Sending  [#############]  100%  3 B of 3 B  3 B/s  0:00 left"},
      {{"Sending", 0, 0, milliseconds(0)}, 30, "Sending  100%  0:00"},
      {{"Waiting", 0, {}, milliseconds(3'725'000)}, 60, "Waiting  1:02:05"},
      {{"Loading", 1536, {}, milliseconds(500)}, 60, "Loading  1.5 KiB  0:00"},
      {{"Loading", 3072, {}, milliseconds(61'000)}, 60, "Loading  3.0 KiB  50 B/s  1:01"},
      {{"Loading", 3072, {}, milliseconds(2000), 0.25},
       60,
       "Loading  [###---------]   25%  3.0 KiB  1.5 KiB/s  0:06 left"},
      {{"Loading", ~0ULL, ~0ULL, milliseconds(0)},
       60,
       "Loading  100%  16777216.0 TiB of 16777216.0 TiB  0:00"},
      {{"阀门\x1b[2J阀门阀门阀门阀门", 1, {}, milliseconds(0)},
       30,
       "阀门\\x1b[2J阀门阀门阀...  0:00"},
      {{"x", 1, ~0ULL, milliseconds(3'600'000)},
       60,
       "x    0%  1 B of 16777216.0 TiB  0 B/s  99:59:59 left"},
  };
  for (const auto& [progress, cells, line] : cases) {
    EXPECT_EQ(qv::tool::ProgressLine(progress, cells), line) << progress.label << ' ' << cells;
  }
}

TEST(ProgressBar, LeavesAnEmptyLineAndStaysAway) {
  std::ostringstream out;
  std::atomic<int> drawn = 0;
  qv::tool::ProgressBar bar(out, [&drawn] { return ++drawn == 1 ? 40U : 20U; });
  bar.Begin("Waiting for everybody", {});
  while (drawn < 2) std::this_thread::yield();
  bar.Clear();
  const std::string shown = out.str();
  EXPECT_EQ(shown.substr(0, 28), "\rWaiting for everybody  0:00");
  // Each line overwrites the previous one; the last is blank, with the cursor at its start.
  EXPECT_EQ(shown[shown.size() - 1], '\r');
  EXPECT_EQ(shown.find_last_not_of(' ', shown.size() - 2), shown.rfind('\r', shown.size() - 2));
  EXPECT_EQ(shown.find('\n'), std::string::npos);
  bar.Begin("Again", {});
  bar.Advance(1);
  bar.Clear();
  EXPECT_EQ(out.str(), shown);
}

}  // namespace
