#include "Deadline.h"

namespace qv {

namespace {

constexpr std::chrono::seconds kLife(2);
constexpr int kOperationsBetweenLooks = 1000;

}  // namespace

Deadline::Deadline(sqlite3* database)
    : database_(database), end_(std::chrono::steady_clock::now() + kLife) {
  sqlite3_progress_handler(database_, kOperationsBetweenLooks, &Deadline::HasPassed, this);
}

Deadline::~Deadline() { sqlite3_progress_handler(database_, 0, nullptr, nullptr); }

int Deadline::HasPassed(void* deadline) {
  const auto end = static_cast<const Deadline*>(deadline)->end_;
  return std::chrono::steady_clock::now() > end ? 1 : 0;
}

}  // namespace qv
