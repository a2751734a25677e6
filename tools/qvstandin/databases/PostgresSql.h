// What the server itself says to PostgreSQL, and what it keeps of connections to it.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include "Database.h"

namespace qv::standin {

// With standard_conforming_strings off, a backslash could end a literal where GuardStatements saw
// no end.
inline constexpr const char* kPlainBackslashes = "SET LOCAL standard_conforming_strings = on";

// What outlasts even a transaction that is rolled back.
inline constexpr const char* kForgetStatements = "DEALLOCATE ALL";
inline constexpr const char* kForgetLocks = "SELECT pg_catalog.pg_advisory_unlock_all()";
// These two and the settings are DISCARD ALL, which would also forget what the server has set.
inline constexpr const char* kForgetTheRest =
    "SET SESSION AUTHORIZATION DEFAULT; RESET ALL; CLOSE ALL; UNLISTEN *;"
    " DISCARD SEQUENCES; DISCARD TEMP";

// Returns the statement that finds the name and the kind of a routine, in any letter case, but
// preferably as it is written. All of its parameters, which are written as `names`, are the name
// that the client gave.
inline constexpr std::size_t kRoutineParameters = 4;
[[nodiscard]] std::string FindRoutineSql(
    const std::array<std::string_view, kRoutineParameters>& names);

// Returns the statement that calls a routine of this kind. `name` consists of letters, digits and
// "_"; `marks` are its parameters in brackets.
[[nodiscard]] std::string CallRoutineSql(std::string_view kind, const std::string& name,
                                         const std::string& marks);

// Returns whether a statement may change what a session cannot be made to forget.
[[nodiscard]] bool MarksItsSession(std::string_view sql);

// Counts a session among those of all clients that are kept. One thread for each object.
class KeptPlace {
 public:
  KeptPlace() = default;
  ~KeptPlace();
  KeptPlace(const KeptPlace&) = delete;
  KeptPlace& operator=(const KeptPlace&) = delete;

  // Returns false if too many sessions are kept.
  [[nodiscard]] bool Take();
  // Returns whether the session has been open for so long that it must end: logins and rights that
  // were taken back end with it.
  [[nodiscard]] bool IsTooOld() const;

 private:
  bool is_counted_ = false;
  const std::chrono::steady_clock::time_point opened_ = std::chrono::steady_clock::now();
};

}  // namespace qv::standin
