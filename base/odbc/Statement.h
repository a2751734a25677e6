// A statement and its rows.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Connection.h"

namespace qv::odbc {

enum class ColumnKind {
  kBit,
  kTinyInt,
  kSmallInt,
  kInteger,
  kBigInt,
  kReal,
  kDouble,
  kDecimal,
  kChar,
  kVarChar,
  kLongVarChar,
  kWideChar,
  kWideVarChar,
  kLongWideVarChar,
  kBinary,
  kDate,
  kTimestamp,
  kOther,  // times, identifiers, intervals, unknown types: all can be read as text
};

struct Column {
  std::string name;  // may be empty
  ColumnKind kind = ColumnKind::kOther;
  std::uint64_t size = 0;  // as the driver declares it; 0 if it does not
  std::int32_t decimals = 0;
};

struct Timestamp {
  std::int32_t year = 0;
  std::int32_t month = 0;
  std::int32_t day = 0;
  std::int32_t hour = 0;
  std::int32_t minute = 0;
  std::int32_t second = 0;
  std::int32_t millisecond = 0;
};

using Argument = std::optional<std::string>;

enum class Step { kNext, kEnd, kFailed };
enum class CellState {
  kValue,
  kNull,
  kMisfit,  // the value does not fit this type
  kFailed,
};

// Must not outlive its connection. Statements run one after another, or several at a time if the
// driver supports it. Use it on the connection's thread, except Cancel. Read cells from left to
// right, each once, or again as text after a misfit. Cells are copied into the caller's memory,
// which grows by what is actually there, whatever lengths the driver announces.
class Statement {
 public:
  explicit Statement(Connection& connection);
  ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  // Runs a text and moves to its first result. The rows of the previous text are discarded.
  [[nodiscard]] bool Execute(std::string_view sql, Diagnostics& diagnostics);
  // The same with texts or nulls for its question marks; the engine converts the texts to the types
  // that it needs.
  [[nodiscard]] bool Execute(std::string_view sql, std::span<const Argument> arguments,
                             Diagnostics& diagnostics);
  // Moves to the next result, for texts that have several.
  [[nodiscard]] Step NextResult(Diagnostics& diagnostics);

  // The columns of this result; empty if it has no rows.
  [[nodiscard]] const std::vector<Column>& Columns() const { return columns_; }

  // Moves to the next row.
  [[nodiscard]] Step Next(Diagnostics& diagnostics);

  // Read cells of the row; columns count from 0. A date that the driver's types cannot hold is null
  // where the driver's text shows that it is one. The value is set or replaced only for kValue. On
  // kMisfit and kFailed, `diagnostics` contains the reason.
  [[nodiscard]] CellState ReadBoolean(std::size_t column, bool& value, Diagnostics& diagnostics);
  [[nodiscard]] CellState ReadInteger(std::size_t column, std::int64_t& value,
                                      Diagnostics& diagnostics);
  [[nodiscard]] CellState ReadDouble(std::size_t column, double& value, Diagnostics& diagnostics);
  [[nodiscard]] CellState ReadTimestamp(std::size_t column, Timestamp& value,
                                        Diagnostics& diagnostics);
  [[nodiscard]] CellState ReadText(std::size_t column, std::string& text, Diagnostics& diagnostics);
  [[nodiscard]] CellState ReadBytes(std::size_t column, std::vector<unsigned char>& bytes,
                                    Diagnostics& diagnostics);

  // Cells of more than `bytes`, as the driver delivers them, are kFailed; 1 GiB at first.
  void LimitCells(std::size_t bytes) { cell_bytes_ = std::min(cell_bytes_, bytes); }

  // Finds out whether the cell is null, without reading it: the result is kValue or kNull.
  [[nodiscard]] CellState ReadNothing(std::size_t column, Diagnostics& diagnostics);

  // May be called from any thread while the statement exists. Makes the running execution or fetch
  // end with a failure, as far as the driver can, and every later call to the database fail.
  // Drivers ignore it while they only prepare: if the call goes on, try again after a while.
  void Cancel();

 private:
  [[nodiscard]] bool Describe(Diagnostics& diagnostics);

  // Calls the driver manager; Cancel may interrupt the call.
  template <class Call>
  [[nodiscard]] std::int16_t Run(Call call);
  template <class Unit>
  struct Piece;
  template <class Value>
  [[nodiscard]] CellState ReadFixed(std::size_t column, std::int16_t type, Value& value,
                                    Diagnostics& diagnostics);
  [[nodiscard]] CellState ReadDateText(std::size_t column, Timestamp& value,
                                       Diagnostics& diagnostics);
  template <class Unit, class Whole>
  [[nodiscard]] CellState ReadPieces(std::size_t column, Whole& whole, Diagnostics& diagnostics);
  [[nodiscard]] CellState CellFailed(Diagnostics& diagnostics) const;
  bool Failed(Diagnostics& diagnostics) const;

  const Connection& connection_;
  void* statement_ = nullptr;  // a handle of the driver manager
  std::size_t cell_bytes_ = std::size_t{1} << 30;
  std::vector<Column> columns_;
  bool reads_dates_as_text_ = false;
  // A cancelled statement loses its diagnostics in the driver manager, so Cancel waits while they
  // are read.
  std::mutex cancel_mutex_;
  bool is_running_ = false;
  std::atomic<bool> is_cancelled_ = false;
  std::vector<char16_t> memory_;  // receives the pieces of cells
  std::u16string wide_;
  std::string date_;
};

}  // namespace qv::odbc
