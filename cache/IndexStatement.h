// A prepared statement of the index's database, and a bound on the time that it may work.
#pragma once

#include <sqlite3.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

namespace qv {

// While it lives, the database gives up (SQLITE_INTERRUPT) what still runs after two seconds: what
// stands in the file was perhaps made to run for ever. One per database at a time.
class Deadline {
 public:
  explicit Deadline(sqlite3* database);
  ~Deadline();
  Deadline(const Deadline&) = delete;
  Deadline& operator=(const Deadline&) = delete;

 private:
  static int HasPassed(void* deadline);

  sqlite3* const database_;
  const std::chrono::steady_clock::time_point end_;
};

// Kept for as long as its database is open, and run many times; one run at a time.
class IndexStatement {
 public:
  // Compiles `sql`; an SQLite result code.
  [[nodiscard]] int Prepare(sqlite3* database, const char* sql);

 private:
  friend class StatementRun;
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  std::unique_ptr<sqlite3_stmt, Finalizer> handle_;
};

// One run of a statement, the only one of its database at that time, which lets go of its locks
// and of what was bound at its end.
class StatementRun {
 public:
  explicit StatementRun(const IndexStatement& statement)
      : handle_(statement.handle_.get()), deadline_(sqlite3_db_handle(handle_)) {}
  ~StatementRun();
  StatementRun(const StatementRun&) = delete;
  StatementRun& operator=(const StatementRun&) = delete;

  // Parameters count from 1; the bytes must outlive the run. A failure shows in Step().
  void BindBytes(int parameter, const std::string& bytes);
  void BindText(int parameter, const std::string& text);
  void BindNumber(int parameter, int number);

  // SQLITE_ROW, SQLITE_DONE, or an error.
  [[nodiscard]] int Step();

  // Columns count from 0. A text longer than `limit` bytes comes out empty.
  [[nodiscard]] std::string Text(int column, std::size_t limit) const;
  [[nodiscard]] int Number(int column) const { return sqlite3_column_int(handle_, column); }

 private:
  void Remember(int result);

  sqlite3_stmt* const handle_;
  const Deadline deadline_;
  int error_ = SQLITE_OK;
};

}  // namespace qv
