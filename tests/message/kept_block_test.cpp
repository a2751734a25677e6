#include "message/KeptBlock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <list>
#include <new>
#include <thread>

namespace qv {
namespace {

bool IsZero(const ZeroBlock& block) {
  return std::all_of(block.data, block.data + block.size, [](auto byte) { return byte == 0; });
}

TEST(KeptBlock, IsZeroWhateverItsUserWroteAndSaid) {
  const std::uint32_t sizes[] = {1, 270, 16384, 16385, 512000, KeptBlock::kLargest};
  for (int round = 0; round < 3; ++round) {
    for (const std::uint32_t size : sizes) {
      for (const std::uint32_t said : {0u, 269u, size / 2, size, 0xFFFFFFFFu}) {
        std::list<KeptBlock> at_once;  // more than a thread keeps
        for (int i = 0; i < 6; ++i) {
          at_once.emplace_back(size);
          ASSERT_TRUE(IsZero(at_once.back().Zeros())) << size << " " << said;
          std::fill_n(at_once.back().Zeros().data, size, static_cast<unsigned char>('#'));
          at_once.back().NoteUsed(said);
        }
      }
    }
  }
  EXPECT_THROW(KeptBlock(KeptBlock::kLargest + 1), std::bad_alloc);
}

// Returns the pages that the program has mapped, or 0 where the system does not say.
std::size_t MappedPages() {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages;
}

TEST(KeptBlock, IsFreedWithItsThread) {
  const auto use = [] {
    for (int i = 0; i < 3; ++i) std::fill_n(KeptBlock(1024).Zeros().data, 1024, '#');
  };
  std::thread(use).join();
  const std::size_t before = MappedPages();
  for (int i = 0; i < 200; ++i) std::thread(use).join();
  // As many blocks would be over 51,200 pages.
  EXPECT_LT(MappedPages(), before + 25'000);
}

}  // namespace
}  // namespace qv
