#include <fmt/format.h>
#include <qvnetcall/QvNetCall4.h>

#include <atomic>
#include <utility>

#include "CacheFill.h"
#include "Groups.h"
#include "Queries.h"

namespace qv::bench {

namespace {

constexpr int kQueries = 10;

// The queries take turns, so that each finds an older answer of its own.
void SelectNext(Cache cache) {
  static std::atomic<int> next = 0;
  Select(kSqlite, fmt::format("{} and id < {}", kTwoRows, 100 + next++ % kQueries), 2, cache);
}

// Opening a folder of many answers takes a while, as it is swept then.
void Open(const std::string& folder) {
  static std::string opened;
  if (folder == std::exchange(opened, folder)) return;
  CheckResult("SetCachePath", CRvoServer::SetCachePath(folder.c_str()) == 1);
}

// Returns a folder of kept answers, among them those to the queries above.
std::string MakeCache(const Bench& bench, int entries) {
  const std::string folder = fmt::format("{}/cache{}", bench.setting.disk_folder, entries);
  bench.host.Use(Way::kSocket);
  Open(folder);
  Select(kSqlite, kThousandRows + " where id < 3", 2, Cache::kYes);
  Open("");
  FillCache(folder, entries - kQueries);
  Open(folder);
  for (int i = 0; i < kQueries; ++i) SelectNext(Cache::kYes);
  Open("");
  return folder;
}

std::size_t AddCalls(Group& group, const Bench& bench, const std::string& folder, int state) {
  return group.Add({.prepare =
                        [&bench, folder, state] {
                          bench.host.Use(Way::kSocket);
                          Open(folder);
                          CRvoServer::SetCacheState(state);
                        },
                    .call = [](std::size_t) { SelectNext(Cache::kYes); }});
}

}  // namespace

void AddCachedCalls(Group& group, const Bench& bench) {
  const std::size_t plain = group.Add({.prepare = [&bench] { bench.host.Use(Way::kSocket); },
                                       .call = [](std::size_t) { SelectNext(Cache::kNo); }});
  for (const int entries : {10, bench.quick ? 1000 : 100000}) {
    const std::string folder = MakeCache(bench, entries);
    const auto name = [entries](const char* what) {
      return fmt::format("SelectSQL, 2 rows, {}, {} entries", what, entries);
    };
    group.Compare({name("kept"), "the same, not kept", {.ratio_at_most = 1.5, .more_at_most = 150}},
                  AddCalls(group, bench, folder, qv::cache_state::kOnline), plain);
    group.Compare({name("offline"), "the same, not kept", {.time_at_most = 100}},
                  AddCalls(group, bench, folder, qv::cache_state::kOfflineByChoice), plain);
  }
}

}  // namespace qv::bench
