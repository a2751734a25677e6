#include "qvnetcall/framework/File.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/TempFolder.h"

namespace {

class File : public testing::Test {
 protected:
  std::string Content() const { return qv::BytesOf(path_); }

  const qv::TempFolder folder_;
  const std::string path_ = folder_.At("file");
};

template <typename Operation>
int CauseOf(Operation operation) {
  try {
    operation();
  } catch (const CFileException& error) {
    return error.m_cause;
  }
  return CFileException::none;
}

TEST_F(File, OpensByItsFlags) {
  CFileException error;
  CFile file;
  EXPECT_FALSE(file.Open(path_.c_str(), CFile::modeReadWrite, &error));
  EXPECT_EQ(error.m_cause, CFileException::fileNotFound);
  EXPECT_EQ(error.m_strFileName, path_.c_str());
  EXPECT_FALSE(file.IsOpen() || file.Open(nullptr, CFile::modeRead));

  CFile(path_.c_str(), CFile::modeCreate | CFile::modeWrite).Write("first", 5);
  CFile kept(path_.c_str(), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite);
  kept.SeekToEnd();
  kept.Write("+", 1);
  EXPECT_EQ(Content(), "first+");
  ASSERT_TRUE(file.Open(path_.c_str(), CFile::modeWrite));
  file.Write("F", 1);
  EXPECT_EQ(Content(), "First+");
  ASSERT_TRUE(file.Open(path_.c_str(), CFile::modeCreate | CFile::modeReadWrite));
  EXPECT_EQ(file.GetLength(), 0U);
}

TEST_F(File, TurnsBetweenReadingAndWriting) {
  CFile file(path_.c_str(), CFile::modeCreate | CFile::modeReadWrite);
  file.Write("0123456789", 10);
  file.SeekToBegin();
  char read[20] = {};
  EXPECT_EQ(file.Read(read, 2), 2U);
  file.Write("ab", 2);
  EXPECT_EQ(file.Read(read, 20), 6U);
  EXPECT_EQ(std::string(read), "456789");
  EXPECT_EQ(Content(), "01ab456789");  // nothing waits in a buffer
  EXPECT_EQ(file.Read(read, 20), 0U);
}

TEST_F(File, SeeksFarAndRefusesPlacesBeforeTheStart) {
  CFile file(path_.c_str(), CFile::modeCreate | CFile::modeReadWrite);
  file.Write("abc", 3);
  EXPECT_EQ(file.Seek(-1, CFile::end), 2U);
  EXPECT_EQ(file.GetLength(), 3U);
  EXPECT_EQ(file.GetPosition(), 2U);
  EXPECT_EQ(CauseOf([&] { file.Seek(-3, CFile::current); }), CFileException::badSeek);
  EXPECT_EQ(CauseOf([&] { file.Seek(INT64_MAX, CFile::current); }), CFileException::badSeek);
  EXPECT_EQ(CauseOf([&] { file.Seek(0, 3); }), CFileException::badSeek);
  EXPECT_EQ(file.GetPosition(), 2U);
  EXPECT_EQ(file.Seek(5LL << 30, CFile::begin), 5ULL << 30);
}

TEST_F(File, ReportsAFullDiskAtTheWrite) {
  CFile full("/dev/full", CFile::modeWrite);
  EXPECT_EQ(CauseOf([&] { full.Write("x", 1); }), CFileException::diskFull);
  EXPECT_NO_THROW(full.Close());
}

TEST_F(File, TakesOverAStreamOrNone) {
  CFile none(nullptr);
  char byte = 0;
  EXPECT_EQ(CauseOf([&] { none.Read(&byte, 1); }), CFileException::invalidFile);
  EXPECT_EQ(CauseOf([&] { none.Write(&byte, 1); }), CFileException::invalidFile);
  EXPECT_NO_THROW(none.Close());
  CFile file(std::fopen(path_.c_str(), "wb"));
  file.Write("mine", 4);
  EXPECT_EQ(Content(), "mine");
}

TEST_F(File, DoesNotReadWhatIsOpenForWritingOnly) {
  CFile file(std::fopen(path_.c_str(), "wb"));
  char byte = 0;
  EXPECT_NE(CauseOf([&] { file.Read(&byte, 1); }), CFileException::none);
}

}  // namespace
