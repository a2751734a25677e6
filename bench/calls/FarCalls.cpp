#include <fmt/format.h>

#include "Groups.h"
#include "Queries.h"
#include "peers/Postgres.h"
#include "peers/Relay.h"

namespace qv::bench {

namespace {

constexpr std::chrono::milliseconds kOneWay{10};

// Independent calls, whose answers are not needed for one another.
std::size_t AddOurs(Group& group, const Bench& bench, int calls) {
  const auto relay = std::make_shared<Relay>(bench.setting.port, kOneWay);
  return group.Add(
      {.prepare = [relay] { Host::UsePort(relay->Port()); },
       .call = [relay, calls](std::size_t) { SelectMany(kSqlite, kTwoRows, 2, calls); },
       .length = Length::kLong});
}

std::size_t AddPeer(Group& group, const Bench& bench, int calls) {
  const auto relay = std::make_shared<Relay>(bench.setting.postgres_port, kOneWay);
  const auto postgres = std::make_shared<Postgres>(relay->Port());
  return group.Add({.prepare = {},
                    .call = [relay, postgres,
                             calls](std::size_t) { postgres->RunInPipeline(kTwoRows, 2, calls); },
                    .length = Length::kLong});
}

}  // namespace

void AddFarCalls(Group& group, const Bench& bench) {
  const int calls = bench.quick ? 10 : 100;
  group.Compare({fmt::format("{} selects, 20 ms there and back", calls),
                 fmt::format("{} selects of libpq in a pipeline", calls),
                 {.ratio_at_most = 1.1}},
                AddOurs(group, bench, calls), AddPeer(group, bench, calls));
}

}  // namespace qv::bench
