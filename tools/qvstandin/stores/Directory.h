// The groups, users and departments that the server keeps.
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

// One connection for one request; one thread. Every change is done whole or not at all.
//
// Names are 1 to 123 bytes without control characters, and the same in either case of ASCII. What
// a client asks wrongly is kNotPermitted, with a text that it may be shown.
class Directory {
 public:
  struct Entry {
    std::int32_t id = 0;
    std::string name;
    std::string display_name;
  };
  using Entries = std::vector<Entry>;

  // Opens an existing file; null when it is not there. `limit` outlives the object.
  [[nodiscard]] static std::unique_ptr<Directory> Open(const std::string& path, WorkLimit& limit);

  // Add to `found` what is asked for, by name; more than `most` are refused.
  Outcome FindGroups(std::string_view pattern, std::size_t most, Entries& found);
  Outcome FindUsers(std::size_t most, Entries& found);
  Outcome FindUsersOf(std::string_view group, std::size_t most, Entries& found);

  // Set `id` to that of what was made. A department is known by its number, and there may be one
  // already; a group that belongs to no department has 0 for its identifier.
  Outcome MakeDepartment(std::int32_t number, std::int32_t& id);
  Outcome MakeGroup(std::string_view name, std::int32_t kind, std::int32_t department,
                    std::int32_t& id);
  Outcome MakeUser(std::string_view name, std::string_view display_name, std::int32_t mode,
                   std::int32_t& id);

  // Puts users into a group, all of them or none; some may be there already. `count` becomes the
  // number of different users among them.
  Outcome AddUsers(std::string_view group, std::span<const std::string_view> users,
                   std::int32_t& count);

 private:
  using Argument = ProcedureCall::Argument;
  using Arguments = std::initializer_list<Argument>;

  Directory(SqliteConnection connection, WorkLimit& limit);

  [[nodiscard]] SqliteStatement Prepare(const char* sql, Arguments arguments);
  // Runs a statement; the number that it gives first, or 0 when it gives none.
  Outcome Run(const char* sql, Arguments arguments, std::int32_t& number);
  // Its rows are entries, of which those that match are added.
  Outcome List(const char* sql, Arguments arguments, std::string_view pattern, std::size_t most,
               Entries& found);
  Outcome GroupId(std::string_view name, std::int32_t& id);
  [[nodiscard]] Outcome Failure();

  SqliteConnection connection_;
  WorkLimit& limit_;
};

}  // namespace qv::standin
