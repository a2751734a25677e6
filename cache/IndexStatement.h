// A prepared statement of the index's database, and a limit on its running time.
#pragma once

#include <sqlite3.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

namespace qv {

// During its lifetime, statements of the database that still run after two seconds end with
// SQLITE_INTERRUPT: the file may have been crafted to make them run for ever. One per database at a
// time.
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

// Lives as long as its database is open and runs many times, once at a time.
class IndexStatement {
 public:
  // Compiles `sql`. Returns an SQLite result code.
  [[nodiscard]] int Prepare(sqlite3* database, const char* sql);

 private:
  friend class StatementRun;
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  std::unique_ptr<sqlite3_stmt, Finalizer> handle_;
};

// One run of a statement, the only one of its database at that time. The destructor releases its
// locks and bindings.
class StatementRun {
 public:
  explicit StatementRun(const IndexStatement& statement)
      : handle_(statement.handle_.get()), deadline_(sqlite3_db_handle(handle_)) {}
  ~StatementRun();
  StatementRun(const StatementRun&) = delete;
  StatementRun& operator=(const StatementRun&) = delete;

  // Parameters count from 1; the bytes must outlive the run. Step() reports a failure to bind.
  void BindBytes(int parameter, const std::string& bytes);
  void BindText(int parameter, const std::string& text);
  void BindNumber(int parameter, int number);

  // Returns SQLITE_ROW, SQLITE_DONE, or an error.
  [[nodiscard]] int Step();

  // Columns count from 0. A text longer than `limit` bytes is returned as empty.
  [[nodiscard]] std::string Text(int column, std::size_t limit) const;
  [[nodiscard]] int Number(int column) const { return sqlite3_column_int(handle_, column); }

 private:
  void Remember(int result);

  sqlite3_stmt* const handle_;
  const Deadline deadline_;
  int error_ = SQLITE_OK;
};

}  // namespace qv
