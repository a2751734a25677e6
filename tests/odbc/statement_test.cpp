#include "odbc/Statement.h"

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <string>
#include <thread>

#include "tests/support/TempFolder.h"

namespace qv::odbc {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Statements : public testing::Test {
 protected:
  // The folder's name is not ASCII: it must reach the driver as it stands.
  std::string ConnectionText() const {
    return "Driver=SQLite3;Database=" + (folder_.Path() / "图纸.db").string();
  }
  std::unique_ptr<Connection> Connect() { return Connection::Open(ConnectionText(), {}, said_); }
  void Run(Connection& connection, const std::string& sql) {
    EXPECT_TRUE(Statement(connection).Execute(sql, said_)) << TextOf(said_);
  }
  std::int64_t Count(Connection& connection, const std::string& table) {
    Statement statement(connection);
    std::int64_t count = -1;
    EXPECT_TRUE(statement.Execute("select count(*) from " + table, said_)) << TextOf(said_);
    EXPECT_EQ(statement.Next(said_), Step::kNext);
    EXPECT_EQ(statement.ReadInteger(0, count, said_), CellState::kValue);
    return count;
  }

  TempFolder folder_;
  Diagnostics said_;
};

TEST_F(Statements, ReadCellsOfEveryKind) {
  const auto connection = Connect();
  ASSERT_NE(connection, nullptr) << TextOf(said_);
  EXPECT_TRUE(std::filesystem::exists(folder_.Path() / "图纸.db"));
  // Pieces end within characters of two, three and four bytes, wherever they are cut.
  std::string long_text;
  while (long_text.size() < 400000) long_text += "é中\U0001F600x";
  Run(*connection,
      "create table T (N bigint, D double, S text, L text, B blob, W timestamp, \"列\" int)");
  Run(*connection, "insert into T values (9007199254740993, 2.5, '中\U0001F600', '" + long_text +
                       "', zeroblob(200001), '2024-02-29 13:14:15', null)");
  Run(*connection, "insert into T values (null, null, '', null, x'00FF', null, 7)");

  Statement statement(*connection);
  ASSERT_TRUE(statement.Execute("select N, D, S, L, B, W, \"列\" from T", said_));
  ASSERT_EQ(statement.Columns().size(), 7u);
  EXPECT_EQ(statement.Columns()[0].kind, ColumnKind::kBigInt);
  EXPECT_EQ(statement.Columns()[1].kind, ColumnKind::kDouble);
  EXPECT_EQ(statement.Columns()[4].kind, ColumnKind::kBinary);
  EXPECT_EQ(statement.Columns()[5].kind, ColumnKind::kTimestamp);
  EXPECT_EQ(statement.Columns()[6].name, "列");

  std::int64_t number = 0;
  double real = 0;
  std::string text = "before";
  std::vector<unsigned char> bytes;
  Timestamp time;
  ASSERT_EQ(statement.Next(said_), Step::kNext);
  EXPECT_EQ(statement.ReadInteger(0, number, said_), CellState::kValue);
  EXPECT_EQ(number, 9007199254740993);
  EXPECT_EQ(statement.ReadDouble(1, real, said_), CellState::kValue);
  EXPECT_EQ(real, 2.5);
  EXPECT_EQ(statement.ReadText(2, text, said_), CellState::kValue);
  EXPECT_EQ(text, "中\U0001F600");
  EXPECT_EQ(statement.ReadText(3, text, said_), CellState::kValue);
  EXPECT_TRUE(text == long_text);
  EXPECT_EQ(statement.ReadBytes(4, bytes, said_), CellState::kValue);
  EXPECT_TRUE(bytes == std::vector<unsigned char>(200001, 0));
  EXPECT_EQ(statement.ReadTimestamp(5, time, said_), CellState::kValue);
  EXPECT_EQ(time.day * 10000 + time.hour * 100 + time.second, 291315);
  EXPECT_EQ(statement.ReadInteger(6, number, said_), CellState::kNull);

  ASSERT_EQ(statement.Next(said_), Step::kNext);
  EXPECT_EQ(statement.ReadInteger(0, number, said_), CellState::kNull);
  EXPECT_EQ(statement.ReadDouble(1, real, said_), CellState::kNull);
  EXPECT_EQ(statement.ReadText(2, text, said_), CellState::kValue);
  EXPECT_EQ(text, "");
  EXPECT_EQ(statement.ReadText(3, text, said_), CellState::kNull);
  EXPECT_EQ(statement.ReadBytes(4, bytes, said_), CellState::kValue);
  EXPECT_THAT(bytes, testing::ElementsAre(0x00, 0xFF));
  EXPECT_EQ(statement.ReadTimestamp(5, time, said_), CellState::kNull);
  EXPECT_EQ(statement.Next(said_), Step::kEnd);
  EXPECT_EQ(statement.NextResult(said_), Step::kEnd);
}

TEST_F(Statements, StopAtTheLongestCellThatIsAllowed) {
  Limits limits;
  limits.cell_bytes = 100000;
  const auto connection = Connection::Open(ConnectionText(), limits, said_);
  ASSERT_NE(connection, nullptr) << TextOf(said_);
  Statement statement(*connection);
  ASSERT_TRUE(statement.Execute("select zeroblob(1000000)", said_)) << TextOf(said_);
  ASSERT_EQ(statement.Next(said_), Step::kNext);
  std::string text;
  std::vector<unsigned char> bytes;
  EXPECT_EQ(statement.ReadBytes(0, bytes, said_), CellState::kFailed);
  EXPECT_LE(bytes.size(), 200000u);
  EXPECT_EQ(said_.back().state, kCellTooLong);
}

TEST_F(Statements, AreCommittedOneByOneOrTogether) {
  const auto connection = Connect();
  ASSERT_NE(connection, nullptr) << TextOf(said_);
  Run(*connection, "create table T (N int)");
  {
    const auto other = Connect();
    ASSERT_TRUE(other->Begin(said_)) << TextOf(said_);
    Run(*other, "insert into T values (1)");
    ASSERT_TRUE(other->Rollback(said_)) << TextOf(said_);
    Run(*other, "insert into T values (2)");
    EXPECT_EQ(Count(*connection, "T"), 1);
    ASSERT_TRUE(other->Begin(said_)) << TextOf(said_);
    Run(*other, "insert into T values (3)");
    Run(*other, "insert into T values (4)");
    ASSERT_TRUE(other->Commit(said_)) << TextOf(said_);
    ASSERT_TRUE(other->Begin(said_)) << TextOf(said_);
    Run(*other, "delete from T");
  }
  EXPECT_EQ(Count(*connection, "T"), 3);
  Statement statement(*connection);
  ASSERT_TRUE(statement.Execute("update T set N = 0 where N > 2", said_));
  EXPECT_THAT(statement.Columns(), IsEmpty());
  EXPECT_EQ(statement.RowsChanged(), 2);
  EXPECT_TRUE(statement.Execute("delete from T where N = 99", said_)) << TextOf(said_);
}

TEST_F(Statements, SayWhyTheyFail) {
  const auto connection = Connect();
  ASSERT_NE(connection, nullptr) << TextOf(said_);
  Statement statement(*connection);
  EXPECT_FALSE(statement.Execute("select * from 图层", said_));
  EXPECT_THAT(TextOf(said_), HasSubstr("图层"));
  for (const std::string& bad : {std::string("select '\xFF'"), std::string("select 1\0", 9)}) {
    said_.clear();
    EXPECT_FALSE(statement.Execute(bad, said_));
    ASSERT_EQ(said_.size(), 1u);
    EXPECT_EQ(said_.front().state, kNotText);
  }
  EXPECT_TRUE(statement.Execute("select 1", said_));  // and can be used again

  const std::string long_text = "Driver=SQLite3;Database=" + std::string(100000, 'x');
  const std::string long_driver = "DRIVER = {;}}" + std::string(2000, 'x');
  for (const std::string& text :
       {std::string("Driver=None there"), std::string(), long_text, long_driver,
        std::string("Driver=SQLite3;Database=/不存在/x.db")}) {
    said_.clear();
    EXPECT_EQ(Connection::Open(text, {}, said_), nullptr);
    EXPECT_THAT(said_, Not(IsEmpty()));
    EXPECT_EQ(said_.front().state.size(), 5u);
  }
}

TEST_F(Statements, AreCancelledFromOtherThreads) {
  const auto connection = Connect();
  ASSERT_NE(connection, nullptr) << TextOf(said_);
  Statement statement(*connection);
  std::promise<void> done;
  std::thread canceller([&, ended = done.get_future()] {
    while (ended.wait_for(std::chrono::milliseconds(20)) == std::future_status::timeout) {
      statement.Cancel();
    }
  });
  const bool ran = statement.Execute(
      "with recursive N(x) as (select 1 union all select x + 1 from N) select count(*) from N",
      said_);
  const Step step = ran ? statement.Next(said_) : Step::kFailed;
  done.set_value();
  canceller.join();
  EXPECT_EQ(step, Step::kFailed);
  ASSERT_THAT(said_, Not(IsEmpty()));
  EXPECT_EQ(said_.front().state, kCancelled);
  EXPECT_FALSE(statement.Execute("select 1", said_));
  EXPECT_TRUE(Statement(*connection).Execute("select 1", said_));
}

TEST_F(Statements, TakeTextsAndNullsForQuestionMarks) {
  const auto connection = Connect();
  ASSERT_NE(connection, nullptr) << TextOf(said_);
  EXPECT_THAT(connection->Product(), HasSubstr("SQLite"));
  const std::string long_text(70000, 'x');
  const std::vector<Argument> arguments{"'中\U0001F600?", std::nullopt, "", long_text};
  Statement statement(*connection);
  const std::string sql = "select ? || 'y', ? is null, ?, length(?)";
  ASSERT_TRUE(statement.Execute(sql, arguments, said_)) << TextOf(said_);
  ASSERT_EQ(statement.Next(said_), Step::kNext);
  std::size_t column = 0;
  for (const char* const expected : {"'中\U0001F600?y", "1", "", "70000"}) {
    std::string text;
    EXPECT_EQ(statement.ReadText(column++, text, said_), CellState::kValue);
    EXPECT_EQ(text, expected);
  }
  EXPECT_FALSE(statement.Execute("select ?", std::vector<Argument>{"\xff"}, said_));
}

}  // namespace
}  // namespace qv::odbc
