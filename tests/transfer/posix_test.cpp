#include <gtest/gtest.h>

#include <utility>

#include "qvnetcall/transfer/ComError.h"
#include "transfer/posix/ComponentLibrary.h"

namespace qv::test {
namespace {

TEST(ComponentLibrary, HasAFileAndAFunction) {
  EXPECT_NE(FindFactory("libQvCoFtp.so", "QvCoFtpCreate"), nullptr);
  EXPECT_EQ(FindFactory("libQvCoFtp.so", "QvCoFtpDestroy"), nullptr);
  EXPECT_EQ(FindFactory("libQvCoNone.so", "QvCoFtpCreate"), nullptr);
}

TEST(ComError, SaysWhatFailed) {
  const std::pair<std::uint32_t, int> codes[] = {
      {0x800401FF, 0}, {0x80040205, 5}, {0x8004FFFF, 0xFDFF}, {0x80050000, 0}, {0x00040205, 0}};
  for (const auto& [error, code] : codes) {
    EXPECT_EQ(_com_error(static_cast<HRESULT>(error), nullptr, {}).WCode(), code) << error;
  }
  EXPECT_STREQ(_com_error(-1, nullptr, {}).ErrorMessage(), "Call failed: 0xFFFFFFFF");
}

}  // namespace
}  // namespace qv::test
