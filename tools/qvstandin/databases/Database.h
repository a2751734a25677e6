// A logical database, whatever keeps its tables.
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

// The text that calls a stored procedure: "call name(1, 'a')" or "exec name 1, 'a'".
struct ProcedureCall {
  using Argument = std::variant<std::monostate, std::int64_t, double, std::string>;

  std::string name;
  std::vector<Argument> arguments;
};

// Whether `text` begins with "call", "exec" or "execute", in any case.
[[nodiscard]] bool IsProcedureCall(std::string_view text);

// Arguments are whole and decimal numbers, null, and texts in apostrophes (an apostrophe inside is
// doubled; an N before the first one is skipped). Nothing when the text is not such a call.
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
  std::uint32_t length = 0;  // the declared number of characters or bytes; 0 when there is none
};

struct Binary {
  std::string_view bytes;
};
// Null, number, text or bytes. Texts and bytes belong to the database until the next row.
using Cell = std::variant<std::monostate, std::int64_t, double, std::string_view, Binary>;

// Takes an answer row by row. False ends the work with ErrorCode::kAnswerLost.
class RowSink {
 public:
  virtual ~RowSink() = default;
  [[nodiscard]] virtual bool Begin(const std::vector<Column>& columns) = 0;
  [[nodiscard]] virtual bool Row(const std::vector<Cell>& cells) = 0;
};

class Database {
 public:
  virtual ~Database() = default;

  // One statement that only reads.
  virtual Outcome Query(const std::string& sql, RowSink& sink) = 0;
  // All of the statements or none. `failed` becomes the 1-based position of the one that was
  // refused, or 0 when none is to blame.
  virtual Outcome Execute(std::span<const std::string_view> statements, std::int32_t& failed) = 0;
  // A stored procedure; its last statement gives the rows, the others may write.
  virtual Outcome Call(const ProcedureCall& call, RowSink& sink) = 0;
};

}  // namespace qv::standin
