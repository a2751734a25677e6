// Tests that a database in PostgreSQL is the same without its driver as through it.
#include "tools/qvstandin/databases/postgres/Postgres.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

#include "PostgresFixture.h"
#include "ServerFixture.h"
#include "base/odbc/Statement.h"
#include "tests/support/TempFolder.h"
#include "tools/qvstandin/databases/OdbcDatabase.h"

namespace qv::standin {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// Opens the database in both ways.
std::unique_ptr<Database> Open(bool by_driver, const EngineAccess& access) {
  if (by_driver) return std::make_unique<OdbcDatabase>(access);
  return OpenPostgres(access);
}

// What a client gets.
struct Answer {
  ErrorCode code;
  error::Class error_class;
  std::string text;
  std::int32_t failed = 0;
  std::string bytes;  // of the recordset

  bool operator==(const Answer&) const = default;
  friend std::ostream& operator<<(std::ostream& out, const Answer& answer) {
    return out << static_cast<int>(answer.code) << ' ' << answer.error_class << " at "
               << answer.failed << ": " << answer.text << '\n'
               << answer.bytes;
  }
};

using Work = std::function<Outcome(Database&, RowSink&, std::int32_t& failed)>;

class PostgresWaysTest : public testing::Test {
 protected:
  void SetUp() override { EmptyPostgres(); }

  Answer Ask(bool by_driver, const Work& work) {
    WorkLimit limit(time_, [] { return false; });
    const auto database =
        Open(by_driver, {PostgresServer::Shared().ConnectionText(), limit, cell_limit_, &kept_});
    WrittenSink sink;
    RowsetWriter writer(sink);
    std::int32_t failed = 0;
    const Outcome outcome = work(*database, writer, failed);
    const bool is_whole = outcome.Ok() && writer.Finish();
    return {outcome.code, ClassOf(outcome), TextForClients(outcome), failed,
            is_whole ? std::string(sink.Bytes()) : std::string()};
  }
  // Expects both ways to give the same, and returns it.
  Answer AskBoth(const Work& work, const std::string& what) {
    Answer without = Ask(false, work);
    EXPECT_EQ(without, Ask(true, work)) << what;
    return without;
  }
  Answer QueryBoth(const std::string& sql) {
    return AskBoth(
        [&](Database& database, RowSink& sink, std::int32_t&) { return database.Query(sql, sink); },
        sql);
  }

  milliseconds time_{30'000};
  std::size_t cell_limit_ = kLongestEngineCell;
  KeptDatabases kept_;
};

TEST_F(PostgresWaysTest, GivesTheSameColumnsAndCells) {
  for (const char* const values :
       {"true a, false b, null::boolean c", "32767::int2 a, -2147483648 b, 9223372036854775807 c",
        "4294967295::oid a, '7'::xid b, 'c'::\"char\" c, 'name'::name d",
        "0.1::float4 a, -1e-300::float8 b, 'NaN'::float8 c, '-Infinity'::float8 d, 1e22::float8 e",
        "12.50 a, 12.5::numeric(10,2) b, 12::numeric(30) c, 'NaN'::numeric d, 1e-20::numeric e",
        "'x'::varchar(1) a, 'x'::varchar(255) b, 'x'::varchar(256) c, 'x'::varchar d, ''::text e",
        "'x'::char(1) a, 'x'::char(255) b, 'x'::char(256) c, 'x'::bpchar d, 'x' e, null f",
        "'图 <&\"''> \U0001F600' \"列\", 1 \"a b\", 2 \"a b\", E'a\\nb\\tc' c, repeat('图', 70000) "
        "d",
        "'\\x00ff'::bytea a, ''::bytea b, null::bytea c",
        "'2024-02-29'::date a, '0001-01-01'::date b, '9999-12-31'::date c",
        "'2024-02-29 10:11:12.123456'::timestamp a, '2024-02-29 10:11:12'::timestamp(0) b",
        "'2024-02-29 10:11:12.5+02'::timestamptz a",
        "'10:11:12.5'::time a, '10:11:12.5'::time(0) b, '10:11:12+02'::timetz c",
        "'1 day 02:03:04.5'::interval a, '-1 year'::interval b, '101'::bit(3) c",
        "'a0eebc99-9c0b-4ef8-bb6d-6bb9bd380a11'::uuid a, '{\"a\":1}'::json b, '[2]'::jsonb c",
        "'<a/>'::xml a, '10.0.0.1'::inet b, '10.0.0.0/8'::cidr c, '08:00:2b:01:02:03'::macaddr d",
        // What only the driver can do.
        "array[1,2] a, row(1,'x') b, 12.5::money c, 'now'::regproc d, '101'::varbit(5) e",
        "'1 day'::interval day to second a", "{d '2020-01-01'} a, {fn ucase('x')} b"}) {
    const std::string sql = std::string("select ") + values;
    EXPECT_EQ(QueryBoth(sql).code, ErrorCode::kNone) << sql;
    EXPECT_EQ(QueryBoth("select * from (" + sql + ") t limit 0").code, ErrorCode::kNone) << sql;
  }
}

TEST_F(PostgresWaysTest, GivesDatesThatNoClientHoldsAsTheirText) {
  for (const char* const date :
       {"infinity", "-infinity", "20000-01-01", "0044-03-15 BC", "20000-01-01 10:11:12"}) {
    for (const char* const type : {"date", "timestamp"}) {
      const std::string sql = fmt::format("select '{}'::{} a", date, type);
      const Answer answer = Ask(false, [&](Database& database, RowSink& sink, std::int32_t&) {
        return database.Query(sql, sink);
      });
      EXPECT_THAT(answer.bytes, HasSubstr("<z:row a='" + std::string(date).substr(0, 10))) << sql;
      EXPECT_THAT(answer.bytes, HasSubstr("dt:type='string'")) << sql;
    }
  }
}

// As direct access reads them.
TEST(PostgresDates, AreNullIfTheDriverHasAnotherForThem) {
  odbc::Diagnostics said;
  const auto connection =
      odbc::Connection::Open(PostgresServer::Shared().ConnectionText(), {}, said);
  ASSERT_NE(connection, nullptr) << odbc::TextOf(said);
  const std::pair<const char*, const char*> cases[] = {
      {"'2024-02-29'::date", "2024-2-29 0:0:0.0"},
      {"'2024-02-29 10:11:12.125999'::timestamp", "2024-2-29 10:11:12.125"},
      {"'2024-02-29 10:11:12.5'::timestamptz", "2024-2-29 10:11:12.500"},
      {"null::timestamp", "null"},
      {"'infinity'::date", "null"},
      {"'-infinity'::date", "null"},
      {"'20000-01-01'::date", "null"},
      {"'-infinity'::timestamp", "null"},
      {"'20000-01-01'::timestamp", "null"},
      {"'0044-03-15 BC'::timestamp", "null"}};
  for (const auto& [sql, expected] : cases) {
    odbc::Statement statement(*connection);
    ASSERT_TRUE(statement.Execute(std::string("select ") + sql, said)) << odbc::TextOf(said);
    ASSERT_EQ(statement.Next(said), odbc::Step::kNext);
    odbc::Timestamp time;
    const bool is_value = statement.ReadTimestamp(0, time, said) == odbc::CellState::kValue;
    EXPECT_EQ(is_value ? fmt::format("{}-{}-{} {}:{}:{}.{}", time.year, time.month, time.day,
                                     time.hour, time.minute, time.second, time.millisecond)
                       : "null",
              expected)
        << sql;
  }
}

TEST_F(PostgresWaysTest, TellsNoRowsOfTablesInItsReasons) {
  const std::string_view batch[] = {"create table t (i integer, x text, y text not null)",
                                    "insert into t values (1, 'hunter2', null)"};
  const Answer refused =
      AskBoth([&](Database& database, RowSink&,
                  std::int32_t& failed) { return database.Execute(batch, failed); },
              "not null");
  EXPECT_EQ(refused.error_class, error::kConstraint);
  EXPECT_THAT(refused.text, testing::EndsWith("violates not-null constraint"));
}

TEST_F(PostgresWaysTest, FailsInTheSameWords) {
  // The driver opens cursors, so that it adds to the first text and cannot run the second.
  const auto ask = [this](bool by_driver, const char* sql) {
    return Ask(by_driver, [sql](Database& database, RowSink& sink, std::int32_t&) {
      return database.Query(sql, sink);
    });
  };
  EXPECT_EQ(ask(false, "select from").error_class, ask(true, "select from").error_class);
  const char* const writing = "with n as (delete from pg_class returning oid) select * from n";
  EXPECT_EQ(ask(false, writing).code, ErrorCode::kNotPermitted);
  EXPECT_EQ(ask(true, writing).code, ErrorCode::kSqlFailed);
  for (const char* const sql :
       {"select 1/0", "select id from nowhere", "select absent(1)", "select $1", "select 'a' || ?",
        "select from pg_class", "delete from pg_class", "selec 1", "insert into nowhere values (1)",
        "select 1; select 2", "select '\xff'", "select \"",
        "select 1/(i - 3) from generate_series(1, 900) i", "select * into t from pg_class",
        "select set_config('statement_timeout', 'x', false)", "select '1'::int2::boolean"}) {
    EXPECT_NE(QueryBoth(sql).code, ErrorCode::kNone) << sql;
  }
  QueryBoth(std::string("select 'a\0b'", 12));
  cell_limit_ = 10;
  EXPECT_EQ(QueryBoth("select '图' a, 'abcde'::text b, ''::bytea c").code, ErrorCode::kNone);
  EXPECT_EQ(QueryBoth("select 'abcdef'::text").error_class, error::kTooLarge);
  EXPECT_EQ(QueryBoth("select decode(repeat('ab', 11), 'hex')").error_class, error::kTooLarge);
  cell_limit_ = 100'000;
  EXPECT_EQ(QueryBoth("select repeat('x', 70000)").error_class, error::kTooLarge);
  EXPECT_EQ(QueryBoth("select decode(repeat('ab', 200000), 'hex')").error_class, error::kTooLarge);
  EXPECT_EQ(QueryBoth("select repeat('\U0001F600', 20000), repeat('ab', 20000)::bytea").code,
            ErrorCode::kNone);
}

// Runs a batch, and then reads what is left of it.
TEST_F(PostgresWaysTest, ChangesTheSame) {
  const std::string long_text(20'000, 'x');
  const std::string long_insert = "insert into t values (9, '" + long_text + "')";
  using Batch = std::vector<std::string_view>;
  for (const Batch& batch :
       {Batch{"insert into t values (1, 'a')", "update t set x = 'b' returning i"},
        Batch{"insert into t values (1, 'a')", "insert into t values (1, 'b')"},
        Batch{"insert into t values (1, 'a'); insert into t values (2, null)", "select 1"},
        Batch{"select 1", "insert into t values (1, '\\'), (2, '{?}')"},
        Batch{"insert into t values (1, {fn ucase('a')})", "update t set x = x || '!'"},
        Batch{"insert into t values (1, 'a')", long_insert, "insert into t values (2, 'c')"},
        Batch{"insert into t values (1, 'a')", long_insert, "insert into t values ('c')"},
        Batch{"insert into u values (1)", "insert into u values (1)"},
        Batch{"create temp table v (i integer)", "insert into v values (1)", "select i from v"},
        Batch{"with n as (insert into t values (1, 'a') returning i) select * from n"},
        Batch{"create table w (i integer)", "drop table t"}, Batch{"select 1", "begin"},
        Batch{"select 1", ""}, Batch{"select i from generate_series(1, 100000) i"}}) {
    const auto run = [&](bool by_driver) {
      EmptyPostgres();
      EXPECT_TRUE(PostgresServer::Shared().Run(
          {"-c", "create table t (i integer primary key, x text not null)", "-c",
           "create table u (i integer primary key deferrable initially deferred)"}));
      const Answer answer = Ask(by_driver, [&](Database& database, RowSink&, std::int32_t& failed) {
        return database.Execute(batch, failed);
      });
      const Answer left = Ask(by_driver, [](Database& database, RowSink& sink, std::int32_t&) {
        return database.Query("select * from t order by i", sink);
      });
      return std::tuple(answer, left);
    };
    EXPECT_EQ(run(false), run(true)) << batch.back().substr(0, 100);
  }
}

TEST_F(PostgresWaysTest, CallsTheSame) {
  ASSERT_TRUE(PostgresServer::Shared().Run(
      {"-f", Source("DESIGNDB.sql"), "-c",
       "create procedure add_one(inout i integer) language plpgsql as $$ begin i := i + 1; end $$",
       "-c",
       "create function \"Mixed\"(x text) returns integer[] language sql as $$"
       " select array[length(x)] $$",
       "-c",
       "create function fails(x text) returns void language plpgsql as $$"
       " begin raise exception 'line 1' using detail = x, hint = 'none'; end $$"}));
  for (const char* const text :
       {"exec dbo.Documents_Of_Project 'PRJ-0017'", "call parts_heavier_than(2000.5, 7)",
        "call add_one(41)", "call ADD_ONE(null)", "call mixed('图')", "exec Mixed N'it''s {?}'",
        "call fails('why')", "call nothing(1)", "call pg_sleep(1)", "call add_one('x')",
        "call add_one(1, 2)", "call fails"}) {
    const auto call = ParseProcedureCall(text);
    ASSERT_TRUE(call) << text;
    AskBoth([&](Database& database, RowSink& sink,
                std::int32_t&) { return database.Call(*call, sink); },
            text);
  }
}

TEST_F(PostgresWaysTest, LeavesToTheDriverWhatTheTextSaysToIt) {
  const std::string text = PostgresServer::Shared().ConnectionText();
  WorkLimit limit(milliseconds(1000), [] { return false; });
  const std::pair<std::string, bool> cases[] = {
      {text, true},
      {text + ";SSLmode=Prefer", true},
      {text + ";BoolsAsChar=1", false},
      {text + ";Port=5432", false},
      {PostgresServer::Shared().ConnectionText("PostgreSQL ANSI"), false},
      {"DSN=x;" + text, false},
      {"Driver=PostgreSQL Unicode;Server=a;Database=b;Uid=c;Pwd=a b", true},
      {"Driver=PostgreSQL Unicode;Server=a;Database=b;Uid=c;Pwd=a%20b", false},
      {"Driver=PostgreSQL Unicode;Server=a;Database=b;Uid=c;Pwd=a+b", false},
      {"Driver=PostgreSQL Unicode;Server=a;Database=b;Uid=c;Pwd={a%+b}", true},
      {"Driver=PostgreSQL Unicode;Server=a;Database=b", false},
      {"Driver=SQLite3;Server=a;Database=b;Uid=c", false}};
  for (const auto& [given, expected] : cases) {
    EXPECT_EQ(OpenPostgres({given, limit}) != nullptr, expected) << given;
  }
}

TEST(PostgresWays, SayWhyTheyCannotConnectWithoutTheText) {
  std::string text = PostgresServer::Shared().ConnectionText();
  text.replace(text.find(PostgresServer::kPassword), std::string(PostgresServer::kPassword).size(),
               "wrong word");
  WorkLimit limit(milliseconds(30'000), [] { return false; });
  const std::string nowhere =
      "Driver=PostgreSQL Unicode;Server=127.0.0.1;Port=1;Database=x;Uid=tester;Pwd=wrong word";
  const std::tuple<std::string, bool, const char*> cases[] = {
      {text, true, "password authentication failed"},
      {text, false, "password authentication failed"},
      {nowhere, true, "refused"},
      {nowhere, false, "refused"},
      {"Driver=No such driver;Uid=tester;Pwd=wrong word", true, "lib"}};
  for (const auto& [wrong, by_driver, reason] : cases) {
    std::int32_t failed = -1;
    const std::string_view statement = "select 1";
    const Outcome outcome = Open(by_driver, {wrong, limit})->Execute({&statement, 1}, failed);
    EXPECT_EQ(outcome.code, ErrorCode::kNoDatabase);
    EXPECT_EQ(ClassOf(outcome), error::kInternal);
    EXPECT_THAT(TextForClients(outcome), HasSubstr("cannot be reached"));
    EXPECT_EQ(failed, 0);
    EXPECT_THAT(outcome.text,
                testing::AllOf(HasSubstr(reason), Not(HasSubstr("127.0.0.1")),
                               Not(HasSubstr("tester")), Not(HasSubstr("wrong word"))));
  }
}

class StandInOverPostgres : public ServerTest {};

TEST_F(StandInOverPostgres, ServesADatabaseOfAnotherEngine) {
  EmptyPostgres();
  const PostgresServer& postgres = PostgresServer::Shared();
  ASSERT_TRUE(postgres.Run({"-f", Source("DESIGNDB.sql")}));
  const nlohmann::json settings{
      {"DESIGNDB",
       {{"odbc", postgres.ConnectionText()}, {"connection_text", "Driver=for clients"}}}};
  std::filesystem::permissions(folder_.Write("databases.json", settings.dump()),
                               std::filesystem::perms(0600));
  Start();
  RawClient client(server_->Port());
  const auto ask = [&](std::uint32_t command, const std::vector<std::string>& fields) {
    EXPECT_TRUE(client.Send(FrameOf(command, fields)));
    return client.Fields();
  };
  EXPECT_THAT(ask(300, {"DESIGNDB", "update X.dbo.Projects set name = '滨江桥' where id = 1"}),
              ElementsAre("SUCCESS"));
  EXPECT_THAT(ask(710, {"DESIGNDB"}), ElementsAre("1", "Driver=for clients"));
  EXPECT_EQ(ask(300, {"DESIGNDB", "select 1/0"}).at(0), "FAILURE");
  EXPECT_EQ(server_->Served().back().outcome, "[22012] ERROR: division by zero");
  WorkLimit limit(milliseconds(30'000), [] { return false; });
  Kept kept;
  EXPECT_TRUE(OdbcDatabase({postgres.ConnectionText(), limit})
                  .Query("select code, name from projects where id = 1", kept)
                  .Ok());
  EXPECT_THAT(kept.rows, ElementsAre(ElementsAre("PRJ-0017", "滨江桥")));
}

}  // namespace
}  // namespace qv::standin
