#include <gtest/gtest.h>

#include <string>

#include "base/platform/Platform.h"
#include "qvnetcall/RvoDatabase.h"
#include "server/ModuleState.h"

namespace {

TEST(TempFiles, AreSetUpAtLoadAndCutToTheirRecord) {
  const tagTEMPFILEINFO& files = qv::ModuleState::Get().temp_files;
  CRvoDatabase::SetFileTempInfo(std::string(300, 'p').c_str(), std::string(260, 'x').c_str(), "e");
  EXPECT_EQ(std::string(files.path), std::string(259, 'p'));
  EXPECT_EQ(std::string(files.prefix), std::string(259, 'x'));
  CRvoDatabase::SetFileTempInfo("short/");
  EXPECT_EQ(CRvoDatabase::GetTempFilePath(), "short/");
  EXPECT_EQ(std::string(files.ext), "e");
  CRvoDatabase::Ini();
  EXPECT_EQ(CRvoDatabase::GetTempFilePath(), qv::platform::TempFolder().c_str());
  EXPECT_EQ(std::string(files.prefix), "qvcd");
  EXPECT_EQ(std::string(files.ext), "tmp");
}

}  // namespace
