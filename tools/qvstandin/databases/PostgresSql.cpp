#include "PostgresSql.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <atomic>

#include "base/text/Letters.h"

namespace qv::standin {

namespace {

// PostgreSQL serves a hundred connections unless its owner allows more.
constexpr int kMostKept = 32;
std::atomic<int> kept_sessions = 0;

constexpr std::chrono::minutes kLongestAge{1};

bool TakeOne() {
  if (kept_sessions++ < kMostKept) return true;
  --kept_sessions;
  return false;
}

}  // namespace

// Reading all names takes a millisecond, so the index is asked first, for the two likely ones.
std::string FindRoutineSql(const std::array<std::string_view, kRoutineParameters>& names) {
  constexpr const char* kSelect =
      "(SELECT p.proname, p.prokind FROM pg_catalog.pg_proc p"
      " WHERE pg_catalog.pg_function_is_visible(p.oid) AND"
      " p.pronamespace::pg_catalog.regnamespace::text NOT IN ('pg_catalog', 'information_schema')";
  constexpr const char* kText = "::text COLLATE \"C\"";
  return fmt::format(
      "{0} AND p.proname IN ({2}{1}, lower({3}{1})) ORDER BY p.proname <> {4}{1} LIMIT 1)"
      " UNION ALL {0} AND lower(p.proname) = lower({5}) LIMIT 1) LIMIT 1",
      kSelect, kText, names[0], names[1], names[2], names[3]);
}

std::string CallRoutineSql(std::string_view kind, const std::string& name,
                           const std::string& marks) {
  return (kind == "p" ? "CALL \"" : "SELECT * FROM \"") + name + "\"" + marks;
}

bool MarksItsSession(std::string_view sql) {
  constexpr std::array<std::string_view, 3> kMarks{"set_config", "setseed", "dblink"};
  return std::ranges::any_of(kMarks, [sql](std::string_view mark) {
    return text::FindIgnoringCase(sql, mark) != std::string_view::npos;
  });
}

KeptPlace::~KeptPlace() {
  if (is_counted_) --kept_sessions;
}

bool KeptPlace::Take() {
  if (!is_counted_) is_counted_ = TakeOne();
  return is_counted_;
}

bool KeptPlace::IsTooOld() const {
  return std::chrono::steady_clock::now() - opened_ > kLongestAge;
}

}  // namespace qv::standin
