#include "message/QvMemFile.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "message/AutoBuf.h"
#include "qvnetcall/framework/FileException.h"

namespace {

// Shows how the file grows.
class SeenMemFile : public CQvMemFile {
 public:
  using CQvMemFile::CQvMemFile;
  unsigned char* Alloc(std::uint32_t bytes) override {
    sizes.push_back(bytes);
    return CQvMemFile::Alloc(bytes);
  }
  std::vector<std::uint32_t> sizes;
};

// A pointer to a virtual member starts with its offset in the table, plus one.
template <class... Operations>
std::vector<std::size_t> SlotsOf(Operations... operations) {
  const auto slot = [](auto operation) {
    std::size_t offset = 0;
    std::memcpy(&offset, &operation, sizeof offset);
    return (offset - 1) / sizeof(void*);
  };
  return {slot(operations)...};
}

std::string Contents(CQvMemFile& file) {
  std::string text(file.GetLength(), '?');
  file.SeekToBegin();
  file.Read(text.data(), file.GetLength());
  return text;
}

TEST(AutoBuf, IsZeroFilledAndMayBeEmpty) {
  const CAutoBuf empty(0);
  EXPECT_EQ(empty.GetData(), nullptr);
  EXPECT_EQ(empty.GetSize(), 0u);
  const CAutoBuf block(1024);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(block.GetData()), 1024), std::string(1024, '\0'));
}

TEST(QvMemFile, KeepsItsOperationsInTheirSlots) {
  using F = CQvMemFile;
  EXPECT_EQ(SlotsOf(&F::Alloc, &F::Realloc, &F::Free, &F::GrowFile),
            (std::vector<std::size_t>{0, 1, 2, 3}));
  // The destructor has two slots with these compilers, 4 and 5.
  EXPECT_EQ(SlotsOf(&F::GetPosition, &F::Seek, &F::SeekToBegin, &F::SeekToEnd, &F::SetLength,
                    &F::GetLength, &F::Read, &F::Write, &F::WriteBytes, &F::Close),
            (std::vector<std::size_t>{6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
}

TEST(QvMemFile, GrowsInItsStepsAndInDefaultStepsAfterClose) {
  SeenMemFile file(4096);
  const std::string bytes(4097, 'x');
  file.Write(bytes.data(), 1);
  file.WriteBytes(bytes.data(), 4096);
  file.Close();
  file.Write(bytes.data(), 1025);
  EXPECT_EQ(file.sizes, (std::vector<std::uint32_t>{4096, 8192, 2048}));
}

TEST(QvMemFile, KeepsContentAndZerosWhileItGrows) {
  CQvMemFile file(4);
  file.Write("abcdef", 6);
  file.SetLength(10);
  file.SeekToEnd();
  file.Write("z", 1);
  EXPECT_EQ(Contents(file), std::string("abcdef\0\0\0\0z", 11));
  char byte = '?';
  EXPECT_EQ(file.Read(&byte, 1), 0u);  // at the end
  file.Seek(5, 1);
  EXPECT_EQ(file.Read(&byte, 1), 0u);  // beyond it
  file.SetLength(3);
  EXPECT_EQ(file.GetPosition(), 3u);
}

TEST(QvMemFile, SeeksFromThreePlacesAndRefusesOthers) {
  CQvMemFile file(16);
  file.Write("0123456789", 10);
  EXPECT_EQ(file.Seek(-3, 2), 7u);
  EXPECT_EQ(file.Seek(2, 1), 9u);
  EXPECT_EQ(file.Seek(1, 0), 1u);
  EXPECT_EQ(file.Seek(0, 3), 0xFFFFFFFFu);
  EXPECT_EQ(file.GetPosition(), 1u);
  try {
    file.Seek(-1, 0);
    FAIL() << "a seek before the start must throw";
  } catch (const CFileException& error) {
    EXPECT_EQ(error.m_cause, CFileException::badSeek);
    EXPECT_EQ(error.m_lOsError, -1);
    EXPECT_TRUE(error.m_strFileName.IsEmpty());
  }
  EXPECT_THROW(file.Seek(std::numeric_limits<std::int32_t>::max(), 1), CFileException);
  EXPECT_EQ(file.GetPosition(), 1u);
}

TEST(QvMemFile, SizesNearTheLimitFailLikeAnAllocation) {
  for (const std::uint32_t step : {0u, 1024u, 4096u}) {
    CQvMemFile file(step);
    file.SetLength(8);
    EXPECT_THROW(file.GrowFile(0xFFFFFFFFu), std::bad_alloc) << step;
    file.Seek(std::numeric_limits<std::int32_t>::max(), 0);
    EXPECT_THROW(file.Write("x", 0xFFFFFFF0u), std::bad_alloc) << step;
    EXPECT_EQ(file.GetLength(), 8u);
  }
}

}  // namespace
