#include "SqliteCells.h"

#include "ColumnTypes.h"

namespace qv::standin {

namespace {

ColumnKind KindOfValue(int storage) {
  switch (storage) {
    case SQLITE_INTEGER:
      return ColumnKind::kInt64;
    case SQLITE_FLOAT:
      return ColumnKind::kDouble;
    case SQLITE_BLOB:
      return ColumnKind::kBinary;
    default:
      return ColumnKind::kText;
  }
}

Column ColumnAt(sqlite3_stmt* statement, int index, bool has_row) {
  Column column;
  if (const char* name = sqlite3_column_name(statement, index)) column.name = name;
  const char* const declared = sqlite3_column_decltype(statement, index);
  const auto type = declared != nullptr ? ParseDeclaredType(declared) : std::nullopt;
  if (type) {
    column.kind = type->kind;
    column.length = type->length;
  } else if (has_row) {
    column.kind = KindOfValue(sqlite3_column_type(statement, index));
  }
  return column;
}

std::string_view BytesAt(sqlite3_stmt* statement, int index, const void* bytes) {
  if (bytes == nullptr) return {};
  return {static_cast<const char*>(bytes),
          static_cast<std::size_t>(sqlite3_column_bytes(statement, index))};
}

Cell CellAt(sqlite3_stmt* statement, int index) {
  switch (sqlite3_column_type(statement, index)) {
    case SQLITE_INTEGER:
      return std::int64_t{sqlite3_column_int64(statement, index)};
    case SQLITE_FLOAT:
      return sqlite3_column_double(statement, index);
    case SQLITE_TEXT:
      return BytesAt(statement, index, sqlite3_column_text(statement, index));
    case SQLITE_BLOB:
      return Binary{BytesAt(statement, index, sqlite3_column_blob(statement, index))};
    default:
      return std::monostate();
  }
}

}  // namespace

std::vector<Column> ColumnsOf(sqlite3_stmt* statement, bool has_row) {
  std::vector<Column> columns;
  const int count = sqlite3_column_count(statement);
  for (int i = 0; i < count; ++i) columns.push_back(ColumnAt(statement, i, has_row));
  return columns;
}

void ReadCells(sqlite3_stmt* statement, std::vector<Cell>& cells) {
  cells.clear();
  const int count = sqlite3_data_count(statement);
  for (int i = 0; i < count; ++i) cells.push_back(CellAt(statement, i));
}

int BindArgument(sqlite3_stmt* statement, int position, const ProcedureCall::Argument& argument) {
  if (const auto* whole = std::get_if<std::int64_t>(&argument)) {
    return sqlite3_bind_int64(statement, position, *whole);
  }
  if (const auto* decimal = std::get_if<double>(&argument)) {
    return sqlite3_bind_double(statement, position, *decimal);
  }
  if (const auto* text = std::get_if<std::string>(&argument)) {
    return sqlite3_bind_text64(statement, position, text->data(), text->size(), SQLITE_TRANSIENT,
                               SQLITE_UTF8);
  }
  return sqlite3_bind_null(statement, position);
}

}  // namespace qv::standin
