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

}  // namespace

std::string FindRoutineSql(std::string_view first, std::string_view second) {
  return fmt::format(
      "SELECT p.proname, p.prokind FROM pg_catalog.pg_proc p"
      " JOIN pg_catalog.pg_namespace n ON n.oid = p.pronamespace"
      " WHERE lower(p.proname) = lower({}) AND pg_catalog.pg_function_is_visible(p.oid)"
      " AND n.nspname NOT IN ('pg_catalog', 'information_schema')"
      " ORDER BY p.proname <> {} LIMIT 1",
      first, second);
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
  if (!is_counted_) is_counted_ = kept_sessions++ < kMostKept || (--kept_sessions, false);
  return is_counted_;
}

bool KeptPlace::IsTooOld() const {
  return std::chrono::steady_clock::now() - opened_ > kLongestAge;
}

}  // namespace qv::standin
