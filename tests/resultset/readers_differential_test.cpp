// Both readers against the slow reference, on random files, well formed and damaged.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <tuple>

#include "fuzz/RandomRecordset.h"
#include "fuzz/ReaderComparison.h"
#include "resultset/readers/ReaderThreads.h"
#include "resultset/readers/TextWindow.h"
#include "tests/support/TempFolder.h"

namespace qv {
namespace {

struct Dialect {
  const char* name;
  std::string (RandomRecordset::*generate)();
  const ComparedDialect& compared;
};

void PrintTo(const Dialect& dialect, std::ostream* out) { *out << dialect.name; }

// A dialect, and how many threads read it.
class ReadersAgainstReference : public testing::TestWithParam<std::tuple<Dialect, int>> {
 protected:
  void Run(std::uint32_t seed, bool damaged) {
    const auto& [dialect, threads] = GetParam();
    seed += 10000 * static_cast<std::uint32_t>(threads);
    // Often a row to a piece, and sometimes many pieces to a row.
    SetPieceBytes(seed % 8 == 0 ? 1 : 1 + seed % 300);
    RandomRecordset random(seed);
    CRvoDbRes result;
    ReferenceTable reference;
    const std::string path = folder_.At("reply.xml");
    // Sometimes a second file is read into the same result set.
    for (int files = seed % 8 == 0 ? 2 : 1; files > 0; --files) {
      std::string file = (random.*dialect.generate)();
      if (damaged) file = random.Damaged(file);
      const std::string difference =
          Compare(dialect.compared, file, path, temp_files_, result, reference);
      ASSERT_EQ(difference, "") << "seed " << seed << "\n" << testing::PrintToString(file);
    }
    if (reference.last_binary) EmptyBinaryFolder();
  }

  void SetUp() override {
    SetReaderThreads(std::get<int>(GetParam()));
    EmptyBinaryFolder();
    std::snprintf(temp_files_.path, sizeof temp_files_.path, "%s", folder_.At("cells").c_str());
  }

  void TearDown() override {
    EndReaderThreads();
    SetReaderThreads(0);
    SetPieceBytes(0);
  }

  void EmptyBinaryFolder() const {
    std::filesystem::remove_all(binary_folder_);
    std::filesystem::create_directory(binary_folder_);
  }

  TempFolder folder_;
  const std::filesystem::path binary_folder_ = folder_.Path() / "cells";
  tagTEMPFILEINFO temp_files_ = {"", "cell", "bin"};
};

TEST_P(ReadersAgainstReference, AgreesOnWellFormedFiles) {
  for (std::uint32_t seed = 0; seed < 800; ++seed) {
    ASSERT_NO_FATAL_FAILURE(Run(seed, false));
  }
}

TEST_P(ReadersAgainstReference, AgreesOnDamagedFiles) {
  for (std::uint32_t seed = 0; seed < 1500; ++seed) {
    ASSERT_NO_FATAL_FAILURE(Run(seed, true));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Dialects, ReadersAgainstReference,
    testing::Combine(testing::Values(Dialect{"Rowset", &RandomRecordset::Rowset, kRowsetDialect},
                                     Dialect{"Schema", &RandomRecordset::Schema, kSchemaDialect}),
                     testing::Values(1, 2, 7)),
    [](const auto& info) {
      return std::get<Dialect>(info.param).name + std::to_string(std::get<int>(info.param));
    });

}  // namespace
}  // namespace qv
