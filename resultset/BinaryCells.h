// Binary values are stored in files; the cell holds the file's path.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qvnetcall/TempFileInfo.h"

namespace qv {

struct Column;
class ResultTable;

// Stores a binary value of one dialect in a file.
class BinaryCells {
 public:
  virtual ~BinaryCells() = default;

  // Writes the bytes that `text` encodes and returns the file's path. Returns an empty text if
  // `text` is empty or the file cannot be written.
  [[nodiscard]] virtual std::string Write(std::string_view text) = 0;

  // The length that no path exceeds.
  [[nodiscard]] std::size_t MostPathBytes() const {
    constexpr std::size_t kMostNumberBytes = 44;  // time and counter
    return base_.size() + extension_.size() + kMostNumberBytes;
  }

 protected:
  explicit BinaryCells(const tagTEMPFILEINFO& files);

  std::string base_;       // the folder, its separator, and the prefix
  std::string extension_;  // with the dot
};

// Hexadecimal text; every value has a file of its own, "prefix_time_counter.ext".
class HexCells : public BinaryCells {
 public:
  explicit HexCells(const tagTEMPFILEINFO& files) : BinaryCells(files) {}
  [[nodiscard]] std::string Write(std::string_view text) override;
  // The same for a value that is given as bytes, possibly none.
  [[nodiscard]] std::string WriteBytes(std::span<const unsigned char> bytes);
};

// Base64 text; all values go to the same file, "prefix.ext", each replacing the previous one: hosts
// read the last one there.
class Base64Cells : public BinaryCells {
 public:
  explicit Base64Cells(const tagTEMPFILEINFO& files) : BinaryCells(files) {}
  [[nodiscard]] std::string Write(std::string_view text) override;
};

// Removes the files that a table's cells name. For tables that no host will see.
void RemoveBinaryFiles(const ResultTable& table);
void RemoveBinaryFiles(const Column& column);
// Removes a table's rows, and those files.
void DropRows(ResultTable& table);

// Decodes pairs of lower-case digits; skips a pair with any other character and an odd last digit.
[[nodiscard]] std::vector<unsigned char> DecodeHex(std::string_view text);
// Skips white space; the first other character that is not a digit ends the value.
[[nodiscard]] std::vector<unsigned char> DecodeBase64(std::string_view text);

}  // namespace qv
