#include <gtest/gtest.h>

#include "base/storage/PartFile.h"
#include "tests/support/TempFolder.h"
#include "tests/support/posix/FullDisk.h"

namespace qv::storage {
namespace {

TEST(Storage, AFullDiskShowsAtTheLatestWhenTheFileIsClosed) {
  const FullDisk full(1000);
  const struct {
    std::size_t first, second;
    Flush flush;
    bool is_written;
  } cases[] = {{1000, 0, Flush::kYes, true},
               {1001, 0, Flush::kNo, false},
               {1001, 0, Flush::kYes, false},
               {100'000, 0, Flush::kNo, false},
               {100'000, 1, Flush::kNo, false}};
  for (const auto& one : cases) {
    const TempFolder folder;
    PartFile part(folder.At("part"));
    part.Write(std::string(one.first, 'x'));
    part.Write(std::string(one.second, 'y'));
    EXPECT_EQ(part.Finish(one.flush), one.is_written) << one.first << '+' << one.second;
  }
}

TEST(Storage, ResumesNoPartThatOthersReachOrThatIsALink) {
  const TempFolder folder;
  const std::string part = folder.Write("part", "12345");
  std::filesystem::permissions(part, std::filesystem::perms(0644));
  EXPECT_FALSE(PartFile::Resume(part, 5).IsOpen());
  std::filesystem::permissions(part, std::filesystem::perms(0600));
  EXPECT_TRUE(OutputFile::Append(part, 5).IsOpen());
  std::filesystem::create_symlink(part, folder.At("link"));
  EXPECT_FALSE(PartFile::Resume(folder.At("link"), 5).IsOpen());
  EXPECT_EQ(BytesOf(part), "12345");
}

}  // namespace
}  // namespace qv::storage
