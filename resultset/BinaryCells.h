// Binary values go to files; the cell holds the file's path.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qvnetcall/TempFileInfo.h"

namespace qv {

struct Column;
class ResultTable;

// How one dialect turns the text of a binary value into a file.
class BinaryCells {
 public:
  virtual ~BinaryCells() = default;

  // Writes the bytes that `text` stands for and returns the file's path; empty for an empty text,
  // and when the file cannot be written.
  [[nodiscard]] virtual std::string Write(std::string_view text) = 0;

 protected:
  explicit BinaryCells(const tagTEMPFILEINFO& files);

  std::string base_;       // the folder, its separator, and the prefix
  std::string extension_;  // with the dot
};

// Hexadecimal text; every value in a file of its own, "prefix_time_counter.ext".
class HexCells : public BinaryCells {
 public:
  explicit HexCells(const tagTEMPFILEINFO& files) : BinaryCells(files) {}
  [[nodiscard]] std::string Write(std::string_view text) override;
  // The same for a value that is there as bytes, none included.
  [[nodiscard]] std::string WriteBytes(std::span<const unsigned char> bytes);
};

// Base64 text; every value in the same file, "prefix.ext", each replacing the one before: hosts
// read the last one there.
class Base64Cells : public BinaryCells {
 public:
  explicit Base64Cells(const tagTEMPFILEINFO& files) : BinaryCells(files) {}
  [[nodiscard]] std::string Write(std::string_view text) override;
};

// Removes the files that a table's cells name, for a table that nobody will see.
void RemoveBinaryFiles(const ResultTable& table);
void RemoveBinaryFiles(const Column& column);

// Pairs of lower-case digits; a pair with any other character is left out, and so is an odd last
// one.
[[nodiscard]] std::vector<unsigned char> DecodeHex(std::string_view text);
// White space is skipped; the first other character that is no digit ends it.
[[nodiscard]] std::vector<unsigned char> DecodeBase64(std::string_view text);

}  // namespace qv
