// For test programs that run, like hosts, in a code page other than UTF-8.
#include <gtest/gtest.h>
#include <windows.h>

#include <clocale>
#include <filesystem>

namespace qv {
namespace {

class InCodePage : public testing::Environment {
 public:
  // Files go into a folder whose name is in no other code page, and has bytes that equal a
  // separator.
  void SetUp() override {
    ASSERT_EQ(::GetACP(), UINT{QV_CODE_PAGE});
    // The tests' own conversion of paths follows the locale; the library must not need one.
    ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr);
    const auto folder = std::filesystem::temp_directory_path() / u8"運图運";
    std::filesystem::create_directories(folder);
    ASSERT_NE(::SetEnvironmentVariableW(L"TMP", folder.c_str()), FALSE);
  }
};

[[maybe_unused]] const auto* const kEnvironment = testing::AddGlobalTestEnvironment(new InCodePage);

}  // namespace
}  // namespace qv
