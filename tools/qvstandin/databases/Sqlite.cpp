#include "Sqlite.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <thread>
#include <utility>

#include "base/text/Letters.h"

namespace qv::standin {

namespace {

constexpr int kStepsBetweenChecks = 100;
constexpr std::chrono::milliseconds kBusyPause{5};

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

struct KnownType {
  std::string_view name;
  ColumnKind kind;
};

constexpr std::array kKnownTypes{
    KnownType{"int", ColumnKind::kInt32},         KnownType{"integer", ColumnKind::kInt32},
    KnownType{"bigint", ColumnKind::kInt64},      KnownType{"smallint", ColumnKind::kInt16},
    KnownType{"tinyint", ColumnKind::kUint8},     KnownType{"boolean", ColumnKind::kBoolean},
    KnownType{"bit", ColumnKind::kBoolean},       KnownType{"real", ColumnKind::kDouble},
    KnownType{"double", ColumnKind::kDouble},     KnownType{"float", ColumnKind::kDouble},
    KnownType{"float4", ColumnKind::kSingle},     KnownType{"decimal", ColumnKind::kDecimal},
    KnownType{"numeric", ColumnKind::kDecimal},   KnownType{"date", ColumnKind::kDate},
    KnownType{"datetime", ColumnKind::kDateTime}, KnownType{"timestamp", ColumnKind::kDateTime},
    KnownType{"char", ColumnKind::kFixedText},    KnownType{"nchar", ColumnKind::kFixedText},
    KnownType{"varchar", ColumnKind::kText},      KnownType{"nvarchar", ColumnKind::kText},
    KnownType{"text", ColumnKind::kLongText},     KnownType{"blob", ColumnKind::kBinary},
};

// The engine has one code for all statements that it cannot compile.
struct KnownText {
  std::string_view part;
  error::Class error_class;
};

constexpr std::array kKnownTexts{
    KnownText{"no such", error::kUnknownObject},
    KnownText{"has no column", error::kUnknownObject},
    KnownText{"already exists", error::kConstraint},
    KnownText{"constraint failed", error::kConstraint},
    KnownText{"integer overflow", error::kConstraint},
    KnownText{"too long", error::kTooLarge},
    KnownText{"too big", error::kTooLarge},
    KnownText{"too many", error::kTooLarge},
    KnownText{"too large", error::kTooLarge},
    KnownText{"is locked", error::kBusy},
    KnownText{"may not be modified", error::kNotAllowed},
    KnownText{"prohibited", error::kNotAllowed},
    KnownText{"not authorized", error::kNotAllowed},
};

std::optional<error::Class> KnownClass(std::string_view text) {
  const auto says = [text](const KnownText& known) {
    return text.find(known.part) != std::string_view::npos;
  };
  const auto known = std::ranges::find_if(kKnownTexts, says);
  return known != kKnownTexts.end() ? std::optional(known->error_class) : std::nullopt;
}

// The message of the engine names no limit.
std::string TooLong(sqlite3* connection) {
  const int limit = sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, -1);
  return "a value or the statement is longer than " +
         TextOfBytes(static_cast<std::uint64_t>(limit));
}

}  // namespace

SqliteConnection OpenSqlite(const std::string& path) {
  sqlite3* opened = nullptr;
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW;
  const int code = sqlite3_open_v2(path.c_str(), &opened, flags, nullptr);
  SqliteConnection connection(opened);
  return code == SQLITE_OK ? std::move(connection) : nullptr;
}

void WatchLimit(sqlite3* connection, WorkLimit& limit) {
  const auto over = [](void* watched) {
    return static_cast<WorkLimit*>(watched)->IsOver() ? 1 : 0;
  };
  sqlite3_progress_handler(connection, kStepsBetweenChecks, over, &limit);
  const auto wait = [](void* watched, int) {
    if (static_cast<WorkLimit*>(watched)->IsOver()) return 0;
    std::this_thread::sleep_for(kBusyPause);
    return 1;
  };
  sqlite3_busy_handler(connection, wait, &limit);
}

void UnwatchLimit(sqlite3* connection) {
  sqlite3_progress_handler(connection, 0, nullptr, nullptr);
  sqlite3_busy_handler(connection, nullptr, nullptr);
}

Outcome SqliteFailure(sqlite3* connection, int code, const WorkLimit& limit) {
  const bool is_locked = (code & 0xff) == SQLITE_BUSY;
  if (is_locked && limit.Reason() == ErrorCode::kTimedOut) {
    return {ErrorCode::kBusy, "the database is locked: " + limit.Failure("the wait for it").text};
  }
  if (limit.Reason() != ErrorCode::kNone) return limit.Failure();
  const std::string text = sqlite3_errmsg(connection);
  switch (code & 0xff) {
    case SQLITE_AUTH:
    case SQLITE_READONLY:
      return {ErrorCode::kNotPermitted, text};
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return {ErrorCode::kBusy, text};
    case SQLITE_TOOBIG:
      return {ErrorCode::kSqlFailed, TooLong(connection), error::kTooLarge};
    case SQLITE_NOMEM:
      return {ErrorCode::kSqlFailed, "the statement needs more memory than the server allows",
              error::kTooLarge};
    case SQLITE_CONSTRAINT:
    case SQLITE_MISMATCH:
      return {ErrorCode::kSqlFailed, text, error::kConstraint};
    case SQLITE_ERROR:
    case SQLITE_RANGE:
      return {ErrorCode::kSqlFailed, text, ClassOfSqliteText(text)};
    default:  // also a name in a statement that nothing has
      return {ErrorCode::kSqlFailed, text, KnownClass(text).value_or(error::kInternal)};
  }
}

error::Class ClassOfSqliteText(std::string_view text) {
  return KnownClass(text).value_or(error::kSyntax);
}

std::vector<Column> ColumnsOf(sqlite3_stmt* statement, bool has_row) {
  std::vector<Column> columns;
  const int count = sqlite3_column_count(statement);
  columns.reserve(static_cast<std::size_t>(count));
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

std::optional<DeclaredType> ParseDeclaredType(std::string_view type) {
  const std::size_t bracket = type.find('(');
  const std::string_view name = type.substr(0, type.find_first_of(" ("));
  const auto known = std::ranges::find_if(kKnownTypes, [name](const KnownType& candidate) {
    return text::EqualIgnoringCase(name, candidate.name);
  });
  if (known == kKnownTypes.end()) return std::nullopt;
  std::uint32_t length = 0;
  if (bracket != std::string_view::npos) {
    std::from_chars(type.data() + bracket + 1, type.data() + type.size(), length);
  }
  return DeclaredType{known->kind, length};
}

}  // namespace qv::standin
