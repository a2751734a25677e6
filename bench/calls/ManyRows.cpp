#include <fmt/format.h>

#include "Groups.h"
#include "Queries.h"
#include "peers/Programs.h"

namespace qv::bench {

namespace {

std::size_t AddOurs(Group& group, const Bench& bench, const char* database) {
  return group.Add({.prepare = [&bench] { bench.host.Use(Way::kSocket); },
                    .call = [database, rows = bench.setting.many_rows](
                                std::size_t) { Select(database, kManyRows, rows); },
                    .length = Length::kLong});
}

std::size_t AddProgram(Group& group, std::vector<std::string> words) {
  return group.Add({.prepare = {},
                    .call = [words = std::move(words)](std::size_t) { RunProgram(words); },
                    .length = Length::kLong});
}

}  // namespace

void AddManyRows(Group& group, const Bench& bench) {
  const auto name = [&bench](const char* engine) {
    return fmt::format("SelectSQL, {} rows, socket, {}", bench.setting.many_rows, engine);
  };
  const std::size_t sqlite = AddProgram(
      group, {"sqlite3", "-readonly", "-csv", "-header", bench.setting.sqlite_file, kManyRows});
  const std::size_t psql = AddProgram(group, {"psql", "--no-psqlrc", "--csv", "-c", kManyRows});
  group.Compare({name("SQLite"), "sqlite3 -csv", {.ratio_at_most = 1.5}},
                AddOurs(group, bench, kSqlite), sqlite);
  group.Compare({name("PostgreSQL"), "psql --csv", {.ratio_at_most = 2}},
                AddOurs(group, bench, kPostgres), psql);
}

}  // namespace qv::bench
