// The typed columns that the peers fill, as a careful user of those parsers would write them.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "RecordsetFiles.h"
#include "Summary.h"

namespace qv {

// The columns are known beforehand, and values may only come in the columns' order: both spare the
// peers work that the library's readers do.
class PeerTable {
 public:
  PeerTable();

  void BeginRow() { next_ = 0; }
  // Appends the value of the column of that name; columns that were skipped get a neutral value. A
  // name is ignored unless its column comes after that of the last value.
  void Put(std::string_view name, std::string_view value);
  void EndRow();

  [[nodiscard]] std::uint64_t Rows() const { return rows_; }
  [[nodiscard]] Summary Sum() const;

 private:
  struct Column {
    std::string_view name;
    ColumnKind kind;
    std::vector<std::int32_t> integers;
    std::vector<double> doubles;  // dates too, in days
    std::vector<char> bytes;
    std::vector<std::size_t> ends;
    std::size_t display_length = 0;
  };

  static void Append(Column& column, std::string_view value);
  static void AddTo(Checksum& checksum, const Column& column);

  std::vector<Column> columns_;
  std::size_t next_ = 0;
  std::uint64_t rows_ = 0;
};

}  // namespace qv
