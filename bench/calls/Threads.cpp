#include <fmt/format.h>

#include <array>
#include <vector>

#include "Groups.h"
#include "Queries.h"
#include "peers/Postgres.h"

namespace qv::bench {

namespace {

constexpr std::array<std::size_t, 3> kThreads{1, 2, 8};

std::size_t AddOurs(Group& group, const Bench& bench, std::size_t threads) {
  return group.Add({.prepare = [&bench] { bench.host.Use(Way::kSocket); },
                    .call = [](std::size_t) { Select(kSqlite, kTwoRows, 2); },
                    .threads = threads});
}

std::size_t AddPeer(Group& group, const Bench& bench, std::size_t threads) {
  const auto connections = std::make_shared<std::vector<Postgres>>();
  for (std::size_t i = 0; i < threads; ++i) {
    connections->emplace_back(bench.setting.postgres_port);
  }
  return group.Add(
      {.prepare = {},
       .call = [connections](std::size_t thread) { (*connections)[thread].Run(kTwoRows, 2); },
       .threads = threads});
}

}  // namespace

void AddThreads(Group& group, const Bench& bench) {
  std::size_t ours_alone = 0;
  std::size_t peer_alone = 0;
  for (const std::size_t threads : kThreads) {
    const std::size_t ours = AddOurs(group, bench, threads);
    const std::size_t peer = AddPeer(group, bench, threads);
    if (threads == 1) {
      ours_alone = ours;
      peer_alone = peer;
      continue;
    }
    const Target target{.ratio_at_least = threads == kThreads.back() ? 1.6 : 0};
    const auto name = [threads](const char* call) {
      return fmt::format("{}, {} threads: calls per s", call, threads);
    };
    group.Compare({name("SelectSQL, 2 rows"), "1 thread", target, Compared::kRates}, ours,
                  ours_alone);
    group.Compare({name("libpq select, 2 rows"), "1 thread", {}, Compared::kRates}, peer,
                  peer_alone);
  }
}

}  // namespace qv::bench
