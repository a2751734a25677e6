#include <gmock/gmock.h>

#include <optional>

#include "base/storage/Checksum.h"
#include "base/storage/FileNames.h"
#include "base/storage/PartFile.h"
#include "tests/support/Shape.h"
#include "tests/support/TempFolder.h"

namespace qv::storage {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

std::vector<std::string> NamesIn(const TempFolder& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
    names.push_back(entry.path().filename().string());
  }
  return names;
}

TEST(Storage, ChecksumsAreThoseOfZlibAndContinue) {
  const std::string text = "123456789";
  const std::span bytes(reinterpret_cast<const unsigned char*>(text.data()), text.size());
  EXPECT_EQ(Crc32(0, bytes), 0xCBF43926);
  for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
    EXPECT_EQ(Crc32(Crc32(Crc32(0, bytes.first(cut)), {}), bytes.subspan(cut)), 0xCBF43926);
  }
}

TEST(Storage, NamesPartsBesideTheirPlaces) {
  const std::string name = "~" + std::string(kGuidShape) + ".part";
  const std::string folder = std::string("a") + platform::kSeparator;
  for (const std::string& path : {folder + "file", folder, folder + std::string(300, 'x')}) {
    EXPECT_THAT(PartBeside(path), EndsInShape(folder + name));
    EXPECT_EQ(PartBeside(path).size(), folder.size() + name.size());
  }
  EXPECT_EQ(PartBeside("file").size(), name.size());
  EXPECT_NE(PartBeside("file"), PartBeside("file"));
}

TEST(Storage, KnowsTheNamesOfAnswers) {
  const std::string name = NewAnswerName();
  EXPECT_THAT(name, EndsInShape("TempClient_" + std::string(kGuidShape) + ".txt"));
  EXPECT_NE(name, NewAnswerName());
  const std::string folder = std::string("a") + platform::kSeparator;
  const std::pair<std::string, bool> cases[] = {
      {name, true},
      {folder + name, true},
      {name + platform::kSeparator + "drawing", false},
      {"x" + name, false},
      {name + ".txt", false},
      {"TempClient_.txt", false},
      {"TempClient_" + std::string(42, 'x'), false},
      {"TempClient_" + std::string(38, 'x') + ".txt", false},
      {"", false},
  };
  for (const auto& [path, is_answer] : cases) EXPECT_EQ(IsAnswerName(path), is_answer) << path;
}

TEST(Storage, AFileAppearsWholeOrNotAtAll) {
  enum class End { kMoved, kNotMoved, kNotFinished, kNoPlace };
  for (const std::optional<std::string>& before : {std::optional<std::string>("old"), {}}) {
    for (const End end : {End::kMoved, End::kNotMoved, End::kNotFinished, End::kNoPlace}) {
      const TempFolder folder;
      const std::string place = folder.At("place");
      if (before) folder.Write("place", *before);
      {
        PartFile part(PartBeside(place));
        ASSERT_TRUE(part.IsOpen());
        EXPECT_TRUE(part.Write("new, ") && part.Write(std::string(100'000, 'n')));
        EXPECT_EQ(BytesOf(place), before.value_or(""));
        if (end != End::kNotFinished) {
          EXPECT_TRUE(part.Finish(Flush::kYes));
          EXPECT_FALSE(part.Write("more") || part.Finish(Flush::kNo)) << "it is closed";
        }
        if (end == End::kMoved) {
          EXPECT_TRUE(part.MoveTo(place));
          EXPECT_FALSE(part.MoveTo(place)) << "it is there already";
        }
        if (end == End::kNoPlace) {
          EXPECT_FALSE(part.MoveTo(folder.At("missing") + platform::kSeparator + "x"));
        }
      }
      const std::string bytes = "new, " + std::string(100'000, 'n');
      EXPECT_EQ(BytesOf(place), end == End::kMoved ? bytes : before.value_or(""));
      EXPECT_EQ(NamesIn(folder).size(), end == End::kMoved || before ? 1U : 0U);
    }
  }
}

TEST(Storage, APartThatWasKeptIsResumed) {
  const TempFolder folder;
  const std::string path = folder.At("part");
  {
    PartFile part(path);
    part.Write("begun, ");
    ASSERT_TRUE(part.Finish(Flush::kNo));
    part.Keep();
  }
  for (const std::uint64_t wrong_size : {0U, 6U, 8U}) {
    EXPECT_FALSE(PartFile::Resume(path, wrong_size).IsOpen());
  }
  EXPECT_FALSE(PartFile::Resume(folder.At("missing"), 0).IsOpen());
  EXPECT_FALSE(PartFile::Resume(folder.At(), 0).IsOpen()) << "a folder";
  std::optional<PartFile> part(PartFile::Resume(path, 7));
  ASSERT_TRUE(part->IsOpen());
  part = PartFile(folder.At("other"));  // which removes the part that it replaces
  EXPECT_THAT(NamesIn(folder), ElementsAre("other"));
  PartFile moved(std::move(*part));
  part.reset();
  EXPECT_TRUE(moved.IsOpen() && moved.Write("whole"));
  EXPECT_EQ(moved.Path(), folder.At("other"));
  EXPECT_TRUE(moved.Finish(Flush::kNo) && moved.MoveTo(folder.At("place")));
  EXPECT_EQ(BytesOf(folder.At("place")), "whole");
}

TEST(Storage, LeavesFilesOfOthersAlone) {
  const TempFolder folder;
  const std::string taken = folder.Write("taken", "theirs");
  {
    PartFile part(taken);
    EXPECT_FALSE(part.IsOpen() || part.Write("") || part.Finish(Flush::kNo));
    EXPECT_FALSE(part.MoveTo(folder.At("place")));
  }
  EXPECT_EQ(BytesOf(taken), "theirs");
  { const PartFile part(taken, platform::Create::kAlways); }
  EXPECT_THAT(NamesIn(folder), UnorderedElementsAre()) << "which asked for it";
}

}  // namespace
}  // namespace qv::storage
