// A bound on the time that a database may work.
#pragma once

#include <sqlite3.h>

#include <chrono>

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

}  // namespace qv
