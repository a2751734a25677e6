#include "Directory.h"

#include <set>
#include <utility>

#include "StoreNames.h"
#include "base/text/Letters.h"
#include "base/text/Numbers.h"

namespace qv::standin {

namespace {

constexpr std::size_t kLongestName = 123;
// These separate names in lists, and a list's names lose the blanks around them.
constexpr std::string_view kBetweenNames = ",;/\\";
constexpr char kBlank = ' ';
constexpr std::string_view kEverything = "*";

Outcome Refused(const char* why, error::Class error_class = error::kNone) {
  return {ErrorCode::kNotPermitted, why, error_class};
}
Outcome Unknown(const char* what) { return Refused(what, error::kUnknownObject); }
Outcome Taken(const char* what) { return Refused(what, error::kConstraint); }
Outcome RefusedName() { return Refused("a name is 1 to 123 bytes without control characters"); }

bool IsName(std::string_view text) {
  return !text.empty() && text.size() <= kLongestName && !text::HasControls(text);
}

// Returns whether a list of users can contain this name.
bool IsLogin(std::string_view text) {
  return IsName(text) && text.find_first_of(kBetweenNames) == std::string_view::npos &&
         text.front() != kBlank && text.back() != kBlank;
}

std::string TextAt(sqlite3_stmt* statement, int column) {
  const unsigned char* const text = sqlite3_column_text(statement, column);
  return text != nullptr ? reinterpret_cast<const char*>(text) : "";
}

std::string AsJson(const std::set<std::int32_t>& numbers) {
  std::string list;
  for (const std::int32_t number : numbers) {
    list += (list.empty() ? '[' : ',') + std::to_string(number);
  }
  return list + ']';
}

}  // namespace

std::unique_ptr<Directory> Directory::Open(const std::string& path, WorkLimit& limit) {
  SqliteConnection connection = OpenSqlite(path);
  if (connection == nullptr) return nullptr;
  WatchLimit(connection.get(), limit);
  return std::unique_ptr<Directory>(new Directory(std::move(connection), limit));
}

Directory::Directory(SqliteConnection connection, WorkLimit& limit)
    : connection_(std::move(connection)), limit_(limit) {}

Outcome Directory::FindGroups(std::string_view pattern, std::size_t most, Entries& found) {
  if (!IsName(pattern)) return RefusedName();
  return List("SELECT id, name, display_name FROM groups ORDER BY name", {}, pattern, most, found);
}

Outcome Directory::FindUsers(std::size_t most, Entries& found) {
  return List("SELECT id, name, display_name FROM users ORDER BY name", {}, kEverything, most,
              found);
}

Outcome Directory::FindUsersOf(std::string_view group, std::size_t most, Entries& found) {
  std::int32_t id = 0;
  if (Outcome known = GroupId(group, id); !known.Ok()) return known;
  return List(
      "SELECT id, name, display_name FROM users"
      " WHERE id IN (SELECT user_id FROM members WHERE group_id = ?1) ORDER BY name",
      {id}, kEverything, most, found);
}

Outcome Directory::MakeDepartment(std::int32_t number, std::int32_t& id) {
  if (number <= 0) return Refused("a department's number is above 0");
  return Run(
      "INSERT INTO departments (number, display_name) VALUES (?1, CAST(?1 AS TEXT))"
      " ON CONFLICT (number) DO UPDATE SET number = number RETURNING id",
      {number}, id);
}

Outcome Directory::MakeGroup(std::string_view name, std::int32_t kind, std::int32_t department,
                             std::int32_t& id) {
  if (!IsName(name)) return RefusedName();
  if (department != 0) {
    Outcome looked = Run("SELECT id FROM departments WHERE id = ?1", {department}, id);
    if (!looked.Ok()) return looked;
    if (id == 0) return Unknown("there is no such department");
  }
  Outcome made =
      Run("INSERT INTO groups (name, display_name, kind, department_id)"
          " VALUES (?1, ?1, ?2, nullif(?3, 0)) ON CONFLICT DO NOTHING RETURNING id",
          {std::string(name), kind, department}, id);
  return made.Ok() && id == 0 ? Taken("a group of that name already exists") : made;
}

Outcome Directory::MakeUser(std::string_view name, std::string_view display_name, std::int32_t mode,
                            std::int32_t& id) {
  if (!IsName(name) || !IsName(display_name)) return RefusedName();
  if (!IsLogin(name)) return Refused("a login name has no , ; / or \\ and no blank at its ends");
  Outcome made =
      Run("INSERT INTO users (name, display_name, mode) VALUES (?1, ?2, ?3)"
          " ON CONFLICT DO NOTHING RETURNING id",
          {std::string(name), std::string(display_name), mode}, id);
  return made.Ok() && id == 0 ? Taken("a user of that name already exists") : made;
}

Outcome Directory::AddUsers(std::string_view group, std::span<const std::string_view> users,
                            std::int32_t& count) {
  std::int32_t group_id = 0;
  if (Outcome known = GroupId(group, group_id); !known.Ok()) return known;
  std::set<std::int32_t> ids;
  for (const std::string_view user : users) {
    // Statements as short as these end before SQLite calls the progress handler.
    if (limit_.IsOver()) return Failure();
    if (!IsName(user)) return RefusedName();
    std::int32_t id = 0;
    Outcome looked = Run("SELECT id FROM users WHERE name = ?1", {std::string(user)}, id);
    if (!looked.Ok()) return looked;
    if (id == 0) return Unknown("a user is not known");
    ids.insert(id);
  }
  if (ids.empty()) return Refused("no user is named");
  count = static_cast<std::int32_t>(ids.size());
  std::int32_t nothing = 0;
  return Run("INSERT OR IGNORE INTO members SELECT ?1, value FROM json_each(?2)",
             {group_id, AsJson(ids)}, nothing);
}

SqliteStatement Directory::Prepare(const char* sql, Arguments arguments) {
  sqlite3_stmt* prepared = nullptr;
  sqlite3_prepare_v2(connection_.get(), sql, -1, &prepared, nullptr);
  SqliteStatement statement(prepared);
  int position = 0;
  for (const Argument& argument : arguments) {
    if (statement == nullptr) break;
    if (BindArgument(prepared, ++position, argument) != SQLITE_OK) statement.reset();
  }
  return statement;
}

Outcome Directory::Run(const char* sql, Arguments arguments, std::int32_t& number) {
  number = 0;
  const SqliteStatement statement = Prepare(sql, arguments);
  if (statement == nullptr) return Failure();
  int code = sqlite3_step(statement.get());
  if (code == SQLITE_ROW) {
    number = text::SaturatedTo32Bits(sqlite3_column_int64(statement.get(), 0));
  }
  // The statement must run to its end for the change to be committed.
  while (code == SQLITE_ROW) code = sqlite3_step(statement.get());
  return code == SQLITE_DONE ? Outcome() : Failure();
}

Outcome Directory::List(const char* sql, Arguments arguments, std::string_view pattern,
                        std::size_t most, Entries& found) {
  const SqliteStatement statement = Prepare(sql, arguments);
  if (statement == nullptr) return Failure();
  int code = SQLITE_ROW;
  while ((code = sqlite3_step(statement.get())) == SQLITE_ROW) {
    std::string name = TextAt(statement.get(), 1);
    if (!MatchesPattern(name, pattern)) continue;
    if (found.size() == most) return Refused("the list does not fit into one reply");
    found.push_back({text::SaturatedTo32Bits(sqlite3_column_int64(statement.get(), 0)),
                     std::move(name), TextAt(statement.get(), 2)});
  }
  return code == SQLITE_DONE ? Outcome() : Failure();
}

Outcome Directory::GroupId(std::string_view name, std::int32_t& id) {
  if (!IsName(name)) return RefusedName();
  Outcome looked = Run("SELECT id FROM groups WHERE name = ?1", {std::string(name)}, id);
  return looked.Ok() && id == 0 ? Unknown("there is no such group") : looked;
}

Outcome Directory::Failure() {
  return SqliteFailure(connection_.get(), sqlite3_errcode(connection_.get()), limit_);
}

}  // namespace qv::standin
