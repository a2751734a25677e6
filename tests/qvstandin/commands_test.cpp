// Tests each command's reply, and what is forbidden to clients, without a network.
#include <gmock/gmock.h>

#include <filesystem>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "CommandFixture.h"
#include "fuzz/ReferenceReader.h"

namespace qv::standin {
namespace {

using Field = std::variant<std::string, std::int32_t>;

class CommandsTest : public CommandFixture {
 protected:
  void SetUp() override { ASSERT_TRUE(data_.Prepare().Ok()); }

  Reply Ask(std::uint32_t command, const std::vector<Field>& fields) {
    FieldWriter writer;
    for (const Field& field : fields) {
      if (const auto* text = std::get_if<std::string>(&field)) writer.Text(*text);
      if (const auto* number = std::get_if<std::int32_t>(&field)) writer.Integer(*number);
    }
    return CommandFixture::Ask(command, writer);
  }

  // Returns the rows of a query whose answer is inside the reply.
  ReferenceTable Rows(std::uint32_t command, const std::string& database, const std::string& sql) {
    const Reply reply = Ask(command, {database, sql});
    FieldReader fields(reply.fields.Payload());
    EXPECT_EQ(fields.Text(), "SUCCESS") << reply.outcome.text;
    const auto count = fields.Integer();
    EXPECT_EQ(fields.Text(), "MEMORY");
    ReferenceTable table;
    EXPECT_TRUE(ReadRowsetByReference(fields.Text().value_or(""), table));
    if (!table.columns.empty()) {
      EXPECT_EQ(table.columns[0].cells.size(), static_cast<std::size_t>(count.value_or(-1)));
    }
    return table;
  }

  std::int32_t Count(const std::string& sql) {
    const ReferenceTable table = Rows(200, "DESIGNDB", sql);
    return table.columns.empty() ? -1 : std::get<std::int32_t>(table.columns[0].cells.at(0));
  }

  // Returns the numbers after "FAILURE".
  static std::vector<std::int32_t> Refusal(const Reply& reply) {
    FieldReader fields(reply.fields.Payload());
    EXPECT_EQ(fields.Text(), "FAILURE");
    std::vector<std::int32_t> numbers;
    while (const auto number = fields.Integer()) numbers.push_back(*number);
    return numbers;
  }
};

using testing::ElementsAre;

TEST_F(CommandsTest, TheSettingsAreThere) {
  const std::string sql =
      "select CI_ServerSetCache,CI_ServerCompress,CI_DefaultSelectCompress,"
      "CI_DefaultDisplayCompress,CI_DefaultDisplayDomain from QvCoMis.dbo.Mxd_sys_BaseInfo";
  const auto values = [&] {
    std::vector<std::int32_t> numbers;
    for (const auto& column : Rows(200, "PLATDB", sql).columns) {
      numbers.push_back(std::get<std::int32_t>(column.cells.at(0)));
    }
    return numbers;
  };
  EXPECT_THAT(values(), ElementsAre(1, 0, 0, 0, 0));
  ASSERT_TRUE(data_.SetCompression(true).Ok());
  EXPECT_THAT(values(), ElementsAre(1, 1, 1, 0, 0));
}

TEST_F(CommandsTest, TheSampleHasEveryTypeOfColumnAndNulls) {
  std::set<int> types;
  for (const char* name : {"people", "projects", "documents", "revisions", "parts"}) {
    const std::string sql = std::string("select * from ") + name + " limit 20";
    for (const auto& column : Rows(200, "DESIGNDB", sql).columns) types.insert(column.type);
  }
  EXPECT_THAT(types, testing::IsSupersetOf({2, 3, 4, 5, 7, 11, 17, 20, 129, 135, 200, 201, 205}));
  EXPECT_EQ(Count("select count(*) from parts where weight is null"), 250);
  const auto names = Rows(200, "DESIGNDB", "select name from projects where id = 1");
  EXPECT_EQ(std::get<std::string>(names.columns.at(0).cells.at(0)), "城南地铁站2期");
}

TEST_F(CommandsTest, ALargeAnswerIsAFileAndAPackedOneIsGzip) {
  const Reply large = Ask(200, {"DESIGNDB", "select * from parts"});
  ASSERT_NE(large.file, nullptr);
  FieldReader fields(large.fields.Payload());
  EXPECT_EQ(fields.Text(), "SUCCESS");
  EXPECT_EQ(fields.Integer(), 3000);
  EXPECT_EQ(fields.Text(), "FILE");
  ReferenceTable table;
  ASSERT_TRUE(ReadRowsetByReference(BytesOf(large.file->Path()), table));
  EXPECT_EQ(table.columns.at(8).cells.size(), 3000U);

  const Reply packed = Ask(210, {"DESIGNDB", "select 1"});
  FieldReader packed_fields(packed.fields.Payload());
  EXPECT_EQ(packed_fields.Text(), "SUCCESS_COMPRESS");
  const std::string payload(packed.fields.Payload().begin(), packed.fields.Payload().end());
  EXPECT_NE(payload.find("\x1f\x8b\x08"), std::string::npos);
  services_.memory_threshold = 0xFFFFFFFF;
  EXPECT_NE(Ask(200, {"DESIGNDB", "select hex(zeroblob(400000)), hex(zeroblob(200000))"}).file,
            nullptr)
      << "more than a client's block holds";
}

TEST_F(CommandsTest, LinkAndLogAndStatementAnswerWithAStatus) {
  const auto status = [](const Reply& reply) { return FieldReader(reply.fields.Payload()).Text(); };
  EXPECT_EQ(status(Ask(3, {})), "SUCCESS");
  EXPECT_EQ(status(Ask(4, {3, "hello"})), "SUCCESS");
  EXPECT_THAT(BytesOf(folder_.At("server.log")), testing::HasSubstr(" 3 hello\n"));
  EXPECT_EQ(status(Ask(300, {"DESIGNDB", "create table t (a); insert into X.dbo.t values (1)"})),
            "SUCCESS");
  EXPECT_EQ(Count("select count(*) from t"), 1);
}

TEST_F(CommandsTest, ABatchIsDoneWholeOrNotAtAll) {
  const std::string insert = "insert into people (id, name, active) values (1000, '新', 1)";
  const auto people = [&] { return Count("select count(*) from people"); };
  EXPECT_THAT(Refusal(Ask(310, {"DESIGNDB", 3, insert, insert, "select 1"})), ElementsAre(6, 2));
  EXPECT_THAT(Refusal(Ask(310, {"DESIGNDB", 2, insert, "commit"})), ElementsAre(5, 2));
  EXPECT_THAT(Refusal(Ask(310, {"DESIGNDB", 1, insert + " ; rollback"})), ElementsAre(5, 1));
  const std::string gone = "insert or rollback into people (id, name, active) values (1, 'x', 1)";
  EXPECT_THAT(Refusal(Ask(310, {"DESIGNDB", 2, insert, gone})), ElementsAre(6, 2));
  EXPECT_THAT(Refusal(Ask(310, {"DESIGNDB", 2, insert})), ElementsAre(1, 2));
  EXPECT_THAT(Refusal(Ask(310, {"DESIGNDB", 100'000})), ElementsAre(1, 1));
  EXPECT_THAT(Refusal(Ask(310, {"DESIGNDB", 100'001})), ElementsAre(5, 0));
  EXPECT_THAT(Refusal(Ask(310, {"DESIGNDB", -1, insert})), ElementsAre(1, 0));
  EXPECT_THAT(Refusal(Ask(310, {"NOWHERE", 1, insert})), ElementsAre(4, 0));
  EXPECT_EQ(people(), 60);
  EXPECT_TRUE(Ask(310, {"DESIGNDB", 2, insert, "update people set active = 0"}).outcome.Ok());
  EXPECT_EQ(people(), 61);
}

TEST_F(CommandsTest, ProceduresTakeArgumentsAndMayWrite) {
  const auto people = Rows(900, "PLATDB", "exec people_of_department 'ST20'");
  EXPECT_EQ(people.columns.at(3).cells.size(), 20U);
  EXPECT_EQ(Rows(900, "DESIGNDB", "call parts_heavier_than(2000.5, 7)").columns.at(0).cells.size(),
            7U);
  const auto renamed = Rows(900, "DESIGNDB", "call Rename_Project('PRJ-0017', N'it''s 新')");
  EXPECT_EQ(std::get<std::string>(renamed.columns.at(2).cells.at(0)), "it's 新");
  EXPECT_EQ(Count("select count(*) from projects where name like 'it%'"), 1);
  EXPECT_EQ(Rows(900, "DESIGNDB", "select 7").columns.size(), 1U);
  EXPECT_THAT(Refusal(Ask(900, {"DESIGNDB", "call nothing(1)"})), ElementsAre(9));
  EXPECT_THAT(Refusal(Ask(900, {"DESIGNDB", "call parts_heavier_than(1)"})), ElementsAre(6));
  EXPECT_THAT(Refusal(Ask(900, {"DESIGNDB", "delete from parts"})), ElementsAre(5));
}

TEST_F(CommandsTest, AClientCannotLeaveItsDatabase) {
  const std::string out = folder_.At("out");
  const std::vector<std::string> statements{"attach '" + out + "' as o",
                                            "vacuum into '" + out + "'",
                                            "pragma journal_mode=off",
                                            "select load_extension('x')",
                                            "begin",
                                            "savepoint s",
                                            "select writefile('" + out + "', 'x')",
                                            "create virtual table v using fts5(a)",
                                            "select * from pragma_table_info('parts')"};
  for (const std::string& sql : statements) {
    for (const std::uint32_t command : {200U, 210U, 300U, 900U}) {
      EXPECT_FALSE(Ask(command, {"DESIGNDB", sql}).outcome.Ok()) << command << " " << sql;
    }
  }
  for (const char* sql :
       {"delete from parts", "select 1; delete from parts", "create temp table t (a)",
        "insert into parts (id) values (0) returning id"}) {
    EXPECT_THAT(Refusal(Ask(200, {"DESIGNDB", sql})), ElementsAre(5)) << sql;
  }
  EXPECT_FALSE(std::filesystem::exists(out));
  EXPECT_EQ(Count("select count(*) from parts"), 3000);
}

TEST_F(CommandsTest, RequestsLeaveNothingInAKeptConnection) {
  const auto run = [this](const char* sql) { return Ask(300, {"DESIGNDB", sql}).outcome.code; };
  const std::pair<const char*, ErrorCode> statements[] = {
      {"insert into people (id, name, active) values (1000, 'x', 1)", ErrorCode::kNone},
      {"BEGIN IMMEDIATE", ErrorCode::kNotPermitted},  // a statement of the server's own
      {"COMMIT", ErrorCode::kNotPermitted},
      {"create temp table t (a)", ErrorCode::kNone},
      {"insert into t values (1)", ErrorCode::kSqlFailed}};
  for (const auto& [sql, expected] : statements) {
    EXPECT_EQ(run(sql), expected) << sql;
    EXPECT_EQ(Count("select changes() + total_changes() + last_insert_rowid()"), 0) << sql;
  }
}

TEST_F(CommandsTest, AKeptFileThatIsReplacedOrRemovedIsNotUsedAnyMore) {
  const std::string file = folder_.At("db/DESIGNDB.sqlite");
  const std::string copied = folder_.At("copied");
  std::filesystem::copy_file(file, copied);
  const char* const count = "select count(*) from people";
  EXPECT_TRUE(Ask(300, {"DESIGNDB", "delete from people; select changes()"}).outcome.Ok());
  EXPECT_EQ(Count(count), 0);
  kept_.Refresh();
  std::filesystem::rename(copied, file);
  EXPECT_EQ(Count(count), 60);
  std::filesystem::remove(file);
  EXPECT_THAT(Refusal(Ask(300, {"DESIGNDB", "select 1"})), ElementsAre(4));
}

TEST_F(CommandsTest, HostileRequestsAreFailures) {
  for (const std::uint32_t command : {200U, 210U, 300U, 900U}) {
    EXPECT_THAT(Refusal(Ask(command, {})), ElementsAre(1));
    EXPECT_THAT(Refusal(Ask(command, {"DESIGNDB"})), ElementsAre(1));
    for (const char* name : {"../db/DESIGNDB", "DESIGNDB.sqlite", "designdb;", "NOWHERE"}) {
      EXPECT_THAT(Refusal(Ask(command, {name, "select 1"})), ElementsAre(4)) << name;
    }
    for (const char* sql : {" ", "-- nothing", "selekt", ";;"}) {
      EXPECT_THAT(Refusal(Ask(command, {"DESIGNDB", sql})), ElementsAre(6)) << sql;
    }
  }
  EXPECT_THAT(Refusal(Ask(4, {"text"})), ElementsAre(1));
  EXPECT_THAT(Refusal(Ask(9999, {})), ElementsAre(2));
}

TEST_F(CommandsTest, FunctionsWithBoundsAnswerAsTheOnesTheyReplace) {
  for (const char* sql :
       {"'Abc' like 'a%'", "'a%c' like 'a!%c' escape '!'", "not 'abc' like 'a!%c' escape '!'",
        "'Abc' glob 'A*'", "not 'Abc' glob 'a*'", "instr('图纸x', 'x') = 3", "instr('a', 'b') = 0",
        "instr(x'e59bbe00', x'00') = 4", "replace('aXbX', 'X', '纸') = 'a纸b纸'",
        "replace('aa', 'a', '') = ''", "replace('ab', '', 'c') = 'ab'",
        "replace(null, 'a', 'b') is null", "replace(12, 1, 3) = '32'", "trim(' a ') = 'a'"}) {
    EXPECT_EQ(Count("select cast(" + std::string(sql) + " as int)"), 1) << sql;
  }
  for (const char* sql : {"trim('a', 'a')", "json_patch('{}', '{}')", "zeroblob(1048577)",
                          "instr('a', hex(zeroblob(200)))", "'a' like hex(zeroblob(200))",
                          "replace('a', hex(zeroblob(200)), '')"}) {
    EXPECT_THAT(Refusal(Ask(200, {"DESIGNDB", std::string("select ") + sql})), ElementsAre(6))
        << sql;
  }
}

TEST_F(CommandsTest, WorkThatTakesTooLongIsCutOffAndUndone) {
  time_ = std::chrono::milliseconds(30);
  const std::string forever = "with recursive n(i) as (select 1 union all select i + 1 from n) ";
  EXPECT_THAT(Refusal(Ask(200, {"DESIGNDB", forever + "select count(*) from n"})), ElementsAre(7));
  EXPECT_THAT(Refusal(Ask(210, {"DESIGNDB", forever + "select i from n"})), ElementsAre(7));
  const std::string fill =
      forever + "insert into people (id, name, active) select i + 99, 'x', 1 from n";
  EXPECT_THAT(Refusal(Ask(300, {"DESIGNDB", fill})), ElementsAre(7));
  std::string many = "select 1;";
  for (int i = 0; i < 17; ++i) many += many;
  EXPECT_THAT(Refusal(Ask(300, {"DESIGNDB", many})), ElementsAre(7));
  // Its statement is kept from run to run.
  constexpr std::int32_t kStatements = 100'000;
  std::vector<Field> batch(kStatements + 2, "insert into people (name) select 'x' where 0");
  batch[0] = "DESIGNDB";
  batch[1] = kStatements;
  EXPECT_EQ(Refusal(Ask(310, batch)).front(), 7);
  time_ = std::chrono::seconds(30);
  EXPECT_EQ(Count("select count(*) from people"), 60);
  EXPECT_TRUE(std::filesystem::is_empty(folder_.Path() / "answers"));
  services_.answer_limit = 100'000;
  EXPECT_THAT(Refusal(Ask(200, {"DESIGNDB", "select * from parts"})), ElementsAre(10));
}

}  // namespace
}  // namespace qv::standin
