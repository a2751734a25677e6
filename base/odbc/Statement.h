// A statement and the rows that it gives.
#pragma once

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
  kOther,  // times, identifiers, intervals, what nobody knows: all can be read as text
};

struct Column {
  std::string name;  // may be empty
  ColumnKind kind = ColumnKind::kOther;
  std::uint64_t size = 0;  // as the driver declares it; 0 when it does not
  std::int32_t decimals = 0;
};

struct Timestamp {
  std::int32_t year = 0;
  std::int32_t month = 0;
  std::int32_t day = 0;
  std::int32_t hour = 0;
  std::int32_t minute = 0;
  std::int32_t second = 0;
};

using Argument = std::optional<std::string>;

enum class Step { kNext, kEnd, kFailed };
enum class CellState {
  kValue,
  kNull,
  kMisfit,  // there is a value, but not one of this type
  kFailed,
};

// Not to outlive its connection; one after the other, or several on the connection as far as the
// driver can. For the connection's thread, Cancel apart. Cells are read from left to right, each
// once, or again as text after a misfit. They are copied into memory of the caller's that grows
// with what is really there, whatever lengths the driver announces.
class Statement {
 public:
  explicit Statement(Connection& connection);
  ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  // Runs a text; the rows of the text before are gone. It stands at its first result.
  [[nodiscard]] bool Execute(std::string_view sql, Diagnostics& diagnostics);
  // The same with texts, or nulls, for the question marks in it; the engine makes of the texts what
  // it needs.
  [[nodiscard]] bool Execute(std::string_view sql, std::span<const Argument> arguments,
                             Diagnostics& diagnostics);
  // Goes on to the next result, of the several that some texts have.
  [[nodiscard]] Step NextResult(Diagnostics& diagnostics);

  // The columns of this result; none when it has no rows to give.
  [[nodiscard]] const std::vector<Column>& Columns() const { return columns_; }

  // Goes on to the next row.
  [[nodiscard]] Step Next(Diagnostics& diagnostics);

  // Cells of the row, by column from 0 on. The value is set, or replaced, for kValue only; on
  // kMisfit and kFailed `diagnostics` say why.
  [[nodiscard]] CellState ReadBoolean(std::size_t column, bool& value, Diagnostics& diagnostics);
  [[nodiscard]] CellState ReadInteger(std::size_t column, std::int64_t& value,
                                      Diagnostics& diagnostics);
  [[nodiscard]] CellState ReadDouble(std::size_t column, double& value, Diagnostics& diagnostics);
  [[nodiscard]] CellState ReadTimestamp(std::size_t column, Timestamp& value,
                                        Diagnostics& diagnostics);
  [[nodiscard]] CellState ReadText(std::size_t column, std::string& text, Diagnostics& diagnostics);
  [[nodiscard]] CellState ReadBytes(std::size_t column, std::vector<unsigned char>& bytes,
                                    Diagnostics& diagnostics);

  // From any thread while the statement is there: has what it executes or fetches come to an end
  // with a failure, as far as the driver can, and every later call that goes to the database fail.
  // Drivers do not hear it while they only prepare: should the call go on, try again after a while.
  void Cancel();

 private:
  [[nodiscard]] bool Describe(Diagnostics& diagnostics);

  // Makes a call to the driver manager during which it may be told to cancel.
  template <class Call>
  [[nodiscard]] std::int16_t Run(Call call);
  template <class Unit>
  struct Piece;
  template <class Value>
  [[nodiscard]] CellState ReadFixed(std::size_t column, std::int16_t type, Value& value,
                                    Diagnostics& diagnostics);
  template <class Unit, class Whole>
  [[nodiscard]] CellState ReadPieces(std::size_t column, Whole& whole, Diagnostics& diagnostics);
  [[nodiscard]] CellState CellFailed(Diagnostics& diagnostics) const;
  bool Failed(Diagnostics& diagnostics) const;

  const Connection& connection_;
  void* statement_ = nullptr;  // a handle of the driver manager
  std::vector<Column> columns_;
  // The driver manager gives up what it knows of a statement's failures when it is told to cancel:
  // not while those are read.
  std::mutex cancel_mutex_;
  bool is_running_ = false;
  std::atomic<bool> is_cancelled_ = false;
  std::vector<char16_t> memory_;  // for the pieces of cells
  std::u16string wide_;
};

}  // namespace qv::odbc
