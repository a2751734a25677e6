// A logical database, whatever keeps its tables.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "ProcedureCall.h"
#include "tools/qvstandin/common/ErrorCode.h"

namespace qv::standin {

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
