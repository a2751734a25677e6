#include "SqliteConnection.h"

#include <chrono>
#include <thread>

namespace qv::standin {

namespace {

constexpr int kStepsBetweenChecks = 100;
constexpr std::chrono::milliseconds kBusyPause{5};

}  // namespace

SqliteConnection OpenSqlite(const std::string& path, WorkLimit& limit) {
  sqlite3* opened = nullptr;
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW;
  const int code = sqlite3_open_v2(path.c_str(), &opened, flags, nullptr);
  SqliteConnection connection(opened);
  if (code != SQLITE_OK) return nullptr;
  const auto over = [](void* watched) {
    return static_cast<WorkLimit*>(watched)->IsOver() ? 1 : 0;
  };
  sqlite3_progress_handler(opened, kStepsBetweenChecks, over, &limit);
  const auto wait = [](void* watched, int) {
    if (static_cast<WorkLimit*>(watched)->IsOver()) return 0;
    std::this_thread::sleep_for(kBusyPause);
    return 1;
  };
  sqlite3_busy_handler(opened, wait, &limit);
  return connection;
}

Outcome SqliteFailure(sqlite3* connection, int code, const WorkLimit& limit) {
  const char* const text = sqlite3_errmsg(connection);
  if (limit.Reason() != ErrorCode::kNone) return {limit.Reason(), "cut off"};
  switch (code & 0xff) {
    case SQLITE_AUTH:
      return {ErrorCode::kNotPermitted, text};
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return {ErrorCode::kBusy, text};
    default:
      return {ErrorCode::kSqlFailed, text};
  }
}

}  // namespace qv::standin
