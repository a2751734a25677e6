#include "cache/GzipFile.h"

#include <gtest/gtest.h>

#include <string>

#include "base/call/CancelFlag.h"
#include "tests/support/TempFolder.h"

namespace qv {
namespace {

class GzipFile : public testing::Test {
 protected:
  int Unpack(const std::string& bytes) {
    return GunzipFile(folder_.Write("source.gz", bytes), target_);
  }

  TempFolder folder_;
  const std::string target_ = folder_.At("target.xml");
};

// Longer than some chunks, and not compressed to almost nothing.
std::string LongText() {
  std::string text;
  for (int i = 0; i < 20000; ++i) text += std::to_string(i * 7919) + '\n';
  return text;
}

TEST_F(GzipFile, UnpacksWholeFilesOfOneOrMoreMembers) {
  const std::string text = LongText();
  folder_.Write("target.xml", std::string(1'000'000, '?'));
  EXPECT_EQ(Unpack(Gzipped(text)), 0);
  EXPECT_EQ(BytesOf(target_), text);
  EXPECT_EQ(Unpack(Gzipped("one,") + Gzipped("") + Gzipped("two")), 0);
  EXPECT_EQ(BytesOf(target_), "one,two");
  EXPECT_EQ(Unpack(Gzipped("") + "more"), 0) << "which begins no member";
  EXPECT_EQ(BytesOf(target_), "");
}

TEST_F(GzipFile, RefusesWhatIsNotWhole) {
  const std::string good = Gzipped(LongText());
  std::string bad_checksum = good;
  bad_checksum[good.size() - 8] ^= 1;
  std::string bad_length = good;
  bad_length[good.size() - 4] ^= 1;
  EXPECT_EQ(Unpack(bad_checksum), -1);
  EXPECT_EQ(Unpack(bad_length), -1);
  EXPECT_EQ(Unpack("<xml>not gzip</xml>"), -1);
  EXPECT_EQ(Unpack(""), -1);
  const std::size_t cuts[] = {1, 2, 9, 10, 100, good.size() / 2, good.size() - 8, good.size() - 1};
  for (const std::size_t cut : cuts) EXPECT_EQ(Unpack(good.substr(0, cut)), -1) << cut;
  EXPECT_EQ(Unpack(good + good.substr(0, 100)), -1) << "a cut second member";
}

TEST_F(GzipFile, TellsWhichFileIsToBlame) {
  const std::string good = folder_.Write("source.gz", Gzipped("text"));
  EXPECT_EQ(GunzipFile(std::string(1024, 'x'), target_), -1);
  EXPECT_EQ(GunzipFile(std::string(1023, 'x'), target_), -2);
  EXPECT_EQ(GunzipFile(good, target_, 4), 0);
  EXPECT_EQ(GunzipFile(good, target_, 3), -1) << "longer than the limit";
  EXPECT_EQ(GunzipFile(target_ + ".missing", target_), -2);
  EXPECT_EQ(GunzipFile(good, folder_.At("missing/target")), -3);
  const call::CancelFlag flag = 1;
  call::SetCancelFlag(&flag);
  EXPECT_EQ(GunzipFile(good, target_), -4);
  call::SetCancelFlag(nullptr);
}

}  // namespace
}  // namespace qv
