#include "base/odbc/Statement.h"

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
  void SetUp() override { ASSERT_NE(connection_, nullptr) << TextOf(said_); }
  std::string ConnectionText() const {
    return "Driver=SQLite3;Database=" + (folder_.Path() / "file.db").string();
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
  const std::unique_ptr<Connection> connection_ = Connect();
};

TEST_F(Statements, StopAtTheLongestCellThatIsAllowed) {
  Statement statement(*connection_);
  statement.LimitCells(1000);
  ASSERT_TRUE(statement.Execute("select zeroblob(1000), zeroblob(1001), zeroblob(1000000)", said_))
      << TextOf(said_);
  ASSERT_EQ(statement.Next(said_), Step::kNext);
  std::string text;
  std::vector<unsigned char> bytes;
  EXPECT_EQ(statement.ReadBytes(0, bytes, said_), CellState::kValue);
  EXPECT_EQ(statement.ReadBytes(1, bytes, said_), CellState::kFailed);
  EXPECT_EQ(statement.ReadBytes(2, bytes, said_), CellState::kFailed);
  EXPECT_LE(bytes.size(), 100000u);
  EXPECT_EQ(said_.back().state, kCellTooLong);
}

TEST_F(Statements, AreCommittedOneByOneOrTogether) {
  Run(*connection_, "create table T (N int)");
  {
    const auto other = Connect();
    ASSERT_TRUE(other->Begin(said_)) << TextOf(said_);
    Run(*other, "insert into T values (1)");
    ASSERT_TRUE(other->Rollback(said_)) << TextOf(said_);
    Run(*other, "insert into T values (2)");
    EXPECT_EQ(Count(*connection_, "T"), 1);
    ASSERT_TRUE(other->Begin(said_)) << TextOf(said_);
    Run(*other, "insert into T values (3)");
    Run(*other, "insert into T values (4)");
    ASSERT_TRUE(other->Commit(said_)) << TextOf(said_);
    ASSERT_TRUE(other->Begin(said_)) << TextOf(said_);
    Run(*other, "delete from T");
  }
  EXPECT_EQ(Count(*connection_, "T"), 3);
  Statement statement(*connection_);
  ASSERT_TRUE(statement.Execute("update T set N = 0 where N > 2", said_));
  EXPECT_THAT(statement.Columns(), IsEmpty());
  EXPECT_EQ(Count(*connection_, "T where N = 0"), 2);
  EXPECT_TRUE(statement.Execute("delete from T where N = 99", said_)) << TextOf(said_);
}

TEST_F(Statements, SayWhyTheyFail) {
  Statement statement(*connection_);
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
  Statement statement(*connection_);
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
  EXPECT_TRUE(Statement(*connection_).Execute("select 1", said_));
}

TEST_F(Statements, TakeTextsAndNullsForQuestionMarks) {
  EXPECT_THAT(connection_->Product(), HasSubstr("SQLite"));
  const std::string long_text(70000, 'x');
  const std::vector<Argument> arguments{"'中\U0001F600?", std::nullopt, "", long_text};
  Statement statement(*connection_);
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
