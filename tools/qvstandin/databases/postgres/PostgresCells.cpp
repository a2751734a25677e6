#include "PostgresCells.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#include "base/text/Letters.h"
#include "base/text/Utf8.h"

namespace qv::standin {

namespace {

constexpr unsigned int kBool = 16;
constexpr unsigned int kInterval = 1186;
constexpr unsigned int kUuid = 2950;
constexpr int kNoModifier = -1;
// Longer texts are long texts.
constexpr std::uint32_t kLongestShort = 255;

struct Type {
  unsigned int number;
  ColumnKind kind;
  std::uint32_t length = 0;
};

constexpr std::array kTypes{
    Type{kBool, ColumnKind::kBoolean},
    Type{17, ColumnKind::kBinary},                // bytea
    Type{18, ColumnKind::kFixedText, 1},          // "char"
    Type{19, ColumnKind::kText, 63},              // name
    Type{20, ColumnKind::kInt64},                 // int8
    Type{21, ColumnKind::kInt16},                 // int2
    Type{23, ColumnKind::kInt32},                 // int4
    Type{25, ColumnKind::kLongText},              // text
    Type{26, ColumnKind::kInt32},                 // oid
    Type{28, ColumnKind::kInt32},                 // xid
    Type{114, ColumnKind::kText, kLongestShort},  // json
    Type{142, ColumnKind::kLongText},             // xml
    Type{650, ColumnKind::kText, 50},             // cidr
    Type{700, ColumnKind::kSingle},               // float4
    Type{701, ColumnKind::kDouble},               // float8
    Type{829, ColumnKind::kText, 17},             // macaddr
    Type{869, ColumnKind::kText, 50},             // inet
    Type{1042, ColumnKind::kFixedText},           // bpchar
    Type{1043, ColumnKind::kText},                // varchar
    Type{1082, ColumnKind::kDate},                // date
    Type{1083, ColumnKind::kText, 8},             // time
    Type{1114, ColumnKind::kDateTime},            // timestamp
    Type{1184, ColumnKind::kDateTime},            // timestamptz
    Type{kInterval, ColumnKind::kText, 32},
    Type{1266, ColumnKind::kText, kLongestShort},  // timetz
    Type{1560, ColumnKind::kText, kLongestShort},  // bit
    Type{1700, ColumnKind::kDecimal},              // numeric
    Type{kUuid, ColumnKind::kText, 37},
    Type{3802, ColumnKind::kText, kLongestShort},  // jsonb
};

// Texts of a declared length have it in their modifier.
Column WithLength(Column column, int modifier) {
  constexpr int kHeader = 4;
  const bool is_declared = modifier > kHeader;
  column.length = is_declared ? static_cast<std::uint32_t>(modifier - kHeader) : kLongestShort;
  if (column.length <= kLongestShort) return column;
  return {column.name, ColumnKind::kLongText, 0};
}

std::optional<Column> ColumnOf(const PGresult* result, int number) {
  const auto* const type = std::ranges::find(kTypes, PQftype(result, number), &Type::number);
  if (type == kTypes.end()) return std::nullopt;
  const int modifier = PQfmod(result, number);
  // The driver has types of its own for intervals of certain parts.
  if (type->number == kInterval && modifier != kNoModifier) return std::nullopt;
  Column column{PQfname(result, number), type->kind, type->length};
  const bool is_text = type->kind == ColumnKind::kText || type->kind == ColumnKind::kFixedText;
  return is_text && type->length == 0 ? WithLength(std::move(column), modifier) : column;
}

template <class Number>
Cell NumberOf(std::string_view text) {
  Number number{};
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

// Returns how many bytes a text takes as the driver counts them, in UTF-16.
std::size_t WideSize(std::string_view text) {
  constexpr unsigned char kFirstOfPairs = 0xF0;
  std::size_t units = 0;
  for (const char ch : text) {
    if (text::ContinuesCharacter(ch)) continue;
    units += static_cast<unsigned char>(ch) >= kFirstOfPairs ? 2 : 1;
  }
  return units * sizeof(char16_t);
}

void Unescape(std::string_view text, std::string& bytes) {
  struct Free {
    void operator()(unsigned char* memory) const { PQfreemem(memory); }
  };
  std::size_t length = 0;
  const auto* const escaped = reinterpret_cast<const unsigned char*>(text.data());
  const std::unique_ptr<unsigned char, Free> plain(PQunescapeBytea(escaped, &length));
  if (plain == nullptr) throw std::bad_alloc();
  bytes.assign(reinterpret_cast<const char*>(plain.get()), length);
}

}  // namespace

std::optional<PostgresCells> PostgresCells::Of(const PGresult* result, std::size_t cell_limit) {
  PostgresCells cells;
  cells.cell_limit_ = cell_limit;
  for (int i = 0; i < PQnfields(result); ++i) {
    std::optional<Column> column = ColumnOf(result, i);
    if (!column) return std::nullopt;
    cells.columns_.push_back(std::move(*column));
    cells.types_.push_back(PQftype(result, i));
  }
  cells.texts_.resize(cells.columns_.size());
  cells.cells_.resize(cells.columns_.size());
  return cells;
}

bool PostgresCells::Read(const PGresult* row, odbc::Diagnostics& said) {
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    const int number = static_cast<int>(i);
    if (PQgetisnull(row, 0, number) != 0) {
      cells_[i] = std::monostate();
      continue;
    }
    const auto length = static_cast<std::size_t>(PQgetlength(row, 0, number));
    const std::string_view text(PQgetvalue(row, 0, number), length);  // with a NUL behind it
    if (ReadCell(i, text)) continue;
    said.push_back({odbc::kCellTooLong, 0,
                    fmt::format("a cell takes more than the limit of {} bytes", cell_limit_)});
    return false;
  }
  return true;
}

bool PostgresCells::ReadCell(std::size_t column, std::string_view text) {
  Cell& cell = cells_[column];
  switch (columns_[column].kind) {
    case ColumnKind::kBoolean:
      cell = std::int64_t{text == "t"};
      return true;
    case ColumnKind::kInt16:
    case ColumnKind::kInt32:
    case ColumnKind::kInt64:
      cell = NumberOf<std::int64_t>(text);
      return true;
    case ColumnKind::kDouble:
    case ColumnKind::kSingle:
      cell = NumberOf<double>(text);
      return true;
    case ColumnKind::kBinary:
      Unescape(text, texts_[column]);
      cell = Binary{texts_[column]};
      return texts_[column].size() <= cell_limit_;
    default:
      cell = TextOf(column, text);
      return text.size() <= cell_limit_ / sizeof(char16_t) || WideSize(text) <= cell_limit_;
  }
}

std::string_view PostgresCells::TextOf(std::size_t column, std::string_view text) {
  if (types_[column] != kUuid) return text;
  std::string& own = texts_[column];
  own = text;
  for (char& ch : own) ch = text::ToUpper(ch);
  return own;
}

}  // namespace qv::standin
