// The interface of logical databases, whichever engine stores their tables.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tools/qvstandin/common/Work.h"

namespace qv::standin {

// A call of a stored procedure: "call name(1, 'a')" or "exec name 1, 'a'".
struct ProcedureCall {
  using Argument = std::variant<std::monostate, std::int64_t, double, std::string>;

  std::string name;
  std::vector<Argument> arguments;
};

// Returns whether `text` begins with "call", "exec" or "execute", in any case.
[[nodiscard]] bool IsProcedureCall(std::string_view text);

// Returns the call in `text`, or nothing if it is not one. Arguments are whole and decimal numbers,
// null, and texts in apostrophes, in which apostrophes are doubled; an N before a text is ignored.
[[nodiscard]] std::optional<ProcedureCall> ParseProcedureCall(std::string_view text);

// The kinds of columns that an answer can declare.
enum class ColumnKind {
  kInt32,
  kInt64,
  kInt16,
  kUint8,
  kBoolean,
  kDouble,
  kSingle,
  kDecimal,  // a number whose text has all its digits
  kDate,
  kDateTime,
  kFixedText,
  kText,
  kLongText,
  kBinary,
};

struct Column {
  std::string name;
  ColumnKind kind = ColumnKind::kText;
  std::uint32_t length = 0;  // the declared number of characters or bytes; 0 if none is declared
};

struct Binary {
  std::string_view bytes;
};
// Null, a number, a text or bytes. Texts and bytes belong to the database and are valid until the
// next row.
using Cell = std::variant<std::monostate, std::int64_t, double, std::string_view, Binary>;

// Receives an answer row by row. If a call returns false, the work ends with
// ErrorCode::kAnswerLost.
class RowSink {
 public:
  virtual ~RowSink() = default;
  [[nodiscard]] virtual bool Begin(const std::vector<Column>& columns) = 0;
  [[nodiscard]] virtual bool Row(const std::vector<Cell>& cells) = 0;
};

class Database {
 public:
  virtual ~Database() = default;

  // Runs one statement that only reads.
  virtual Outcome Query(const std::string& sql, RowSink& sink) = 0;
  // Runs all of the statements or none. Sets `failed` to the 1-based position of the statement that
  // failed, or to 0 if none did.
  virtual Outcome Execute(std::span<const std::string_view> statements, std::int32_t& failed) = 0;
  // Calls a stored procedure. Its last statement returns the rows; the others may write.
  virtual Outcome Call(const ProcedureCall& call, RowSink& sink) = 0;
};

}  // namespace qv::standin
