#include <fmt/format.h>

#include <array>

#include "Groups.h"
#include "Queries.h"
#include "peers/PingPong.h"
#include "peers/Postgres.h"
#include "peers/Relay.h"

namespace qv::bench {

namespace {

struct WayName {
  Way way;
  const char* name;
};
constexpr std::array kWays{WayName{Way::kSocket, "socket"}, WayName{Way::kWeb, "web"},
                           WayName{Way::kDirect, "direct"}};

struct EngineName {
  const char* database;
  const char* name;
  bool is_sqlite;
};
constexpr std::array kEngines{EngineName{kSqlite, "SQLite", true},
                              EngineName{kPostgres, "PostgreSQL", false}};

// What one call of the library sends each way.
Traffic SizeOfCall(const Bench& bench) {
  const Relay relay(bench.setting.port, std::chrono::microseconds{0});
  Host::UsePort(relay.Port());
  Select(kSqlite, kTwoRows, 2);  // may say hello, and loads the settings
  const Traffic before = relay.Passed();
  Select(kSqlite, kTwoRows, 2);
  const Traffic after = relay.Passed();
  return {after.to_server - before.to_server, after.to_client - before.to_client};
}

std::size_t AddPingPong(Group& group, const Bench& bench) {
  auto ping_pong = std::make_shared<PingPong>(SizeOfCall(bench));
  return group.Add({.prepare = {}, .call = [ping_pong](std::size_t) { ping_pong->Call(); }});
}

// One kind of call, as the library makes it and as libpq does.
struct Kind {
  std::string name;
  void (*call)(const char* database, const std::string& sql, int rows);
  std::string sql;
  std::string peer_name;
  std::string peer_sql;
  int rows;
  // Our time over sockets / that of libpq; 0: none is asked for.
  double target_on_sqlite = 0;
  double target_on_postgres = 0;
};

void SelectRows(const char* database, const std::string& sql, int rows) {
  Select(database, sql, rows);
}

void Change(const char* database, const std::string& sql, int) { Execute(database, sql); }

const std::array<Kind, 4>& Kinds() {
  static const std::array<Kind, 4> kinds{{
      {"SelectSQL, 2 rows", SelectRows, kTwoRows, "libpq select, 2 rows", kTwoRows, 2, 0.9, 2.5},
      {"ExecuteSQL, no row", Change, kUpdateNone, "libpq update, no row", kUpdateNone, 0, 0.9},
      {"ExecuteSP, 2 rows", CallProcedure, kCall, "libpq function, 2 rows", kFunction, 2},
      {"SelectSQL, 1000 rows", SelectRows, kThousandRows, "libpq select, 1000 rows", kThousandRows,
       1000},
  }};
  return kinds;
}

// SQLite has no procedures; the stand-in server keeps them for it.
bool IsPossible(const Kind& kind, Way way, const EngineName& engine) {
  return kind.call != CallProcedure || way != Way::kDirect || !engine.is_sqlite;
}

Target TargetOf(const Kind& kind, Way way, const EngineName& engine) {
  if (way != Way::kSocket) return {};
  return {.ratio_at_most = engine.is_sqlite ? kind.target_on_sqlite : kind.target_on_postgres};
}

std::size_t AddCall(Group& group, const Bench& bench, const Kind& kind, Way way,
                    const EngineName& engine) {
  // Without a server, a procedure is called in the database's own words.
  const std::string& sql = way == Way::kDirect ? kind.peer_sql : kind.sql;
  return group.Add({.prepare = [&bench, way] { bench.host.Use(way); },
                    .call = [call = kind.call, database = engine.database, sql,
                             rows = kind.rows](std::size_t) { call(database, sql, rows); }});
}

std::size_t AddPeer(Group& group, const std::shared_ptr<Postgres>& postgres, const Kind& kind) {
  return group.Add({.prepare = {}, .call = [postgres, kind](std::size_t) {
                      postgres->Run(kind.peer_sql, kind.rows);
                    }});
}

struct Added {
  std::size_t fastest;  // over sockets, on SQLite
  std::size_t peer;
};

Added AddKind(Group& group, const Bench& bench, const std::shared_ptr<Postgres>& postgres,
              const Kind& kind) {
  Added added{.fastest = 0, .peer = AddPeer(group, postgres, kind)};
  for (const WayName& way : kWays) {
    for (const EngineName& engine : kEngines) {
      if (!IsPossible(kind, way.way, engine)) continue;
      const std::size_t ours = AddCall(group, bench, kind, way.way, engine);
      group.Compare({fmt::format("{}, {}, {}", kind.name, way.name, engine.name), kind.peer_name,
                     TargetOf(kind, way.way, engine)},
                    ours, added.peer);
      if (way.way == Way::kSocket && engine.is_sqlite) added.fastest = ours;
    }
  }
  return added;
}

}  // namespace

void AddSmallCalls(Group& group, const Bench& bench) {
  const std::size_t ping_pong = AddPingPong(group, bench);
  constexpr const char* kPingPong = "bare TCP, there and back";
  const auto postgres = std::make_shared<Postgres>(bench.setting.postgres_port);
  for (const Kind& kind : Kinds()) {
    const Added added = AddKind(group, bench, postgres, kind);
    if (kind.sql != kTwoRows) continue;
    group.Compare({kind.name + ", socket, SQLite", kPingPong, {.ratio_at_most = 8}}, added.fastest,
                  ping_pong);
    group.Compare({kind.peer_name, kPingPong, {}}, added.peer, ping_pong);
  }
}

}  // namespace qv::bench
