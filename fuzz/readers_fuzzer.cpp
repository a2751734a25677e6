// Feeds a fuzzer's bytes to both readers and to their reference, and stops at the first difference.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "ReaderComparison.h"
#include "resultset/readers/ReaderThreads.h"
#include "resultset/readers/TextWindow.h"
#include "tests/support/TempFolder.h"

namespace {

// A run would start with the files that the previous one left, so the folder for cells is emptied.
void RunOnce(const qv::ComparedDialect& dialect, const std::string& file) {
  static const qv::TempFolder folder;
  const std::string cells = (folder.Path() / "cells").string();
  std::filesystem::create_directory(cells);
  tagTEMPFILEINFO temp_files = {"", "cell", "bin"};
  std::snprintf(temp_files.path, sizeof temp_files.path, "%s", cells.c_str());

  CRvoDbRes result;
  qv::ReferenceTable reference;
  const std::string path = (folder.Path() / "reply.xml").string();
  const std::string difference = Compare(dialect, file, path, temp_files, result, reference);
  if (reference.last_binary) std::filesystem::remove_all(cells);
  if (difference.empty()) return;
  std::fprintf(stderr, "%s\n", difference.c_str());
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string file(reinterpret_cast<const char*>(bytes), size);
  // Half of the inputs are read by several threads, with a row or a few to a piece.
  qv::SetReaderThreads(size % 2 == 0 ? 3 : 1);
  qv::SetPieceBytes(1 + size % 64);
  RunOnce(qv::kRowsetDialect, file);
  RunOnce(qv::kSchemaDialect, file);
  return 0;
}
