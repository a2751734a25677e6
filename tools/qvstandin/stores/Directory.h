// The server's groups, users and departments.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/qvstandin/common/Work.h"
#include "tools/qvstandin/databases/Database.h"
#include "tools/qvstandin/databases/Sqlite.h"

namespace qv::standin {

// One connection for one request; one thread. Every change happens entirely or not at all.
//
// Names are 1 to 123 bytes without control characters; ASCII case is ignored. A wrong request fails
// with kNotPermitted and a text that may be shown to the client.
class Directory {
 public:
  struct Entry {
    std::int32_t id = 0;
    std::string name;
    std::string display_name;
  };
  using Entries = std::vector<Entry>;

  // Opens an existing file. Returns null if that fails. `limit` outlives the object.
  [[nodiscard]] static std::unique_ptr<Directory> Open(const std::string& path, WorkLimit& limit);

  // These add the entries to `found`, sorted by name. They fail if there are more than `most`.
  Outcome FindGroups(std::string_view pattern, std::size_t most, Entries& found);
  Outcome FindUsers(std::size_t most, Entries& found);
  Outcome FindUsersOf(std::string_view group, std::size_t most, Entries& found);

  // These set `id` to the identifier of the new object. If a department with this number exists,
  // its identifier is returned. A `department` of 0 means that the group belongs to none.
  Outcome MakeDepartment(std::int32_t number, std::int32_t& id);
  Outcome MakeGroup(std::string_view name, std::int32_t kind, std::int32_t department,
                    std::int32_t& id);
  Outcome MakeUser(std::string_view name, std::string_view display_name, std::int32_t mode,
                   std::int32_t& id);

  // Adds users to a group, all of them or none. Users who are in the group already are accepted.
  // Sets `count` to the number of different users.
  Outcome AddUsers(std::string_view group, std::span<const std::string_view> users,
                   std::int32_t& count);

 private:
  using Argument = ProcedureCall::Argument;
  using Arguments = std::initializer_list<Argument>;

  Directory(SqliteConnection connection, WorkLimit& limit);

  [[nodiscard]] SqliteStatement Prepare(const char* sql, Arguments arguments);
  // Runs a statement. Sets `number` to the first number that it returns, or to 0 if there is none.
  Outcome Run(const char* sql, Arguments arguments, std::int32_t& number);
  // Runs a statement that returns entries and adds those that match the pattern.
  Outcome List(const char* sql, Arguments arguments, std::string_view pattern, std::size_t most,
               Entries& found);
  Outcome GroupId(std::string_view name, std::int32_t& id);
  [[nodiscard]] Outcome Failure();

  SqliteConnection connection_;
  WorkLimit& limit_;
};

}  // namespace qv::standin
