#include "Sqlite.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "base/text/Utf8.h"

namespace qv::standin {

namespace {

constexpr int kLongestPattern = 256;
constexpr int kLongestGlob = 64;  // matching sets of characters takes longer

using Function = void (*)(sqlite3_context*, int, sqlite3_value**);

std::string_view TextOf(sqlite3_value* value) {
  const auto* const text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  if (text == nullptr) return {};
  return {text, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

// Returns whether the function may run. Otherwise its result is set: an error, or null if an
// argument is null.
bool MayWork(sqlite3_context* context, int count, sqlite3_value** values, int pattern,
             int longest = kLongestPattern) {
  for (int i = 0; i < count; ++i) {
    if (sqlite3_value_type(values[i]) == SQLITE_NULL) return false;
  }
  if ((*static_cast<WorkLimit**>(sqlite3_user_data(context)))->IsOver()) {
    sqlite3_result_error_code(context, SQLITE_INTERRUPT);
    return false;
  }
  if (sqlite3_value_bytes(values[pattern]) > longest) {
    sqlite3_result_error(context, "pattern too long", -1);
    return false;
  }
  return true;
}

// Returns the character of a text that has exactly one.
std::optional<unsigned int> OnlyCharacter(std::string_view text) {
  if (text.empty()) return std::nullopt;
  const text::DecodedChar first = text::DecodeUtf8(text);
  if (!first.valid || first.bytes != text.size()) return std::nullopt;
  return first.value;
}

void Like(sqlite3_context* context, int count, sqlite3_value** values) {
  if (!MayWork(context, count, values, 0)) return;
  const auto escape = count == 3 ? OnlyCharacter(TextOf(values[2])) : 0;
  if (!escape) return sqlite3_result_error(context, "ESCAPE takes a single character", -1);
  const std::string_view pattern = TextOf(values[0]);
  const std::string_view text = TextOf(values[1]);
  if (pattern.data() == nullptr || text.data() == nullptr) return;
  sqlite3_result_int(context, sqlite3_strlike(pattern.data(), text.data(), *escape) == 0 ? 1 : 0);
}

void Glob(sqlite3_context* context, int count, sqlite3_value** values) {
  if (!MayWork(context, count, values, 0, kLongestGlob)) return;
  const std::string_view pattern = TextOf(values[0]);
  const std::string_view text = TextOf(values[1]);
  if (pattern.data() == nullptr || text.data() == nullptr) return;
  sqlite3_result_int(context, sqlite3_strglob(pattern.data(), text.data()) == 0 ? 1 : 0);
}

// Returns the 1-based position in characters, or in bytes if both arguments are blobs.
void Instr(sqlite3_context* context, int count, sqlite3_value** values) {
  if (!MayWork(context, count, values, 1)) return;
  const bool in_bytes =
      sqlite3_value_type(values[0]) == SQLITE_BLOB && sqlite3_value_type(values[1]) == SQLITE_BLOB;
  const std::string_view text = TextOf(values[0]);
  const std::size_t found = text.find(TextOf(values[1]));
  if (found == std::string_view::npos) return sqlite3_result_int(context, 0);
  std::int64_t position = 1;
  for (const char ch : text.substr(0, found)) {
    if (in_bytes || !text::ContinuesCharacter(ch)) ++position;
  }
  sqlite3_result_int64(context, position);
}

void Append(sqlite3_str* result, std::string_view text) {
  sqlite3_str_append(result, text.data(), static_cast<int>(text.size()));
}

// SQLite's own string builder respects the limit on cells and throws no exceptions through SQLite.
void Finish(sqlite3_context* context, sqlite3_str* result) {
  const int code = sqlite3_str_errcode(result);
  const int length = sqlite3_str_length(result);
  char* const text = sqlite3_str_finish(result);
  if (code != SQLITE_OK) {
    sqlite3_result_error_code(context, code);
    sqlite3_free(text);
  } else if (text == nullptr) {
    sqlite3_result_text(context, "", 0, SQLITE_STATIC);
  } else {
    sqlite3_result_text(context, text, length, sqlite3_free);
  }
}

void Replace(sqlite3_context* context, int count, sqlite3_value** values) {
  if (!MayWork(context, count, values, 1)) return;
  const std::string_view text = TextOf(values[0]);
  const std::string_view pattern = TextOf(values[1]);
  const std::string_view replacement = TextOf(values[2]);
  sqlite3_str* const result = sqlite3_str_new(sqlite3_context_db_handle(context));
  std::size_t at = 0;
  while (!pattern.empty() && sqlite3_str_errcode(result) == SQLITE_OK) {
    const std::size_t found = text.find(pattern, at);
    if (found == std::string_view::npos) break;
    Append(result, text.substr(at, found - at));
    Append(result, replacement);
    at = found + pattern.size();
  }
  Append(result, text.substr(at));
  Finish(context, result);
}

void Refuse(sqlite3_context* context, int, sqlite3_value**) {
  sqlite3_result_error(context, "no such function here", -1);
}

struct Bounded {
  const char* name;
  int arguments;
  Function function;
};

constexpr Bounded kBounded[] = {
    {"like", 2, Like},    {"like", 3, Like},       {"glob", 2, Glob},
    {"instr", 2, Instr},  {"replace", 3, Replace}, {"trim", 2, Refuse},
    {"ltrim", 2, Refuse}, {"rtrim", 2, Refuse},    {"json_patch", 2, Refuse},
};

}  // namespace

int BoundFunctions(sqlite3* connection, WorkLimit*& limit) {
  constexpr int kKind = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  for (const Bounded& bounded : kBounded) {
    const int code = sqlite3_create_function(connection, bounded.name, bounded.arguments, kKind,
                                             &limit, bounded.function, nullptr, nullptr);
    if (code != SQLITE_OK) return code;
  }
  return SQLITE_OK;
}

}  // namespace qv::standin
