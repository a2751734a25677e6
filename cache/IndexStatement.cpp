#include "IndexStatement.h"

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

int IndexStatement::Prepare(sqlite3* database, const char* sql) {
  // Compiling the first statement reads the schema.
  const Deadline deadline(database);
  sqlite3_stmt* compiled = nullptr;
  const int result =
      sqlite3_prepare_v3(database, sql, -1, SQLITE_PREPARE_PERSISTENT, &compiled, nullptr);
  handle_.reset(compiled);
  return result;
}

StatementRun::~StatementRun() {
  sqlite3_reset(handle_);
  sqlite3_clear_bindings(handle_);
}

void StatementRun::BindBytes(int parameter, const std::string& bytes) {
  Remember(sqlite3_bind_blob64(handle_, parameter, bytes.data(), bytes.size(), SQLITE_STATIC));
}

void StatementRun::BindText(int parameter, const std::string& text) {
  Remember(sqlite3_bind_text64(handle_, parameter, text.data(), text.size(), SQLITE_STATIC,
                               SQLITE_UTF8));
}

void StatementRun::BindNumber(int parameter, int number) {
  Remember(sqlite3_bind_int(handle_, parameter, number));
}

int StatementRun::Step() { return error_ != SQLITE_OK ? error_ : sqlite3_step(handle_); }

std::string StatementRun::Text(int column, std::size_t limit) const {
  const auto* const bytes = reinterpret_cast<const char*>(sqlite3_column_text(handle_, column));
  const auto length = static_cast<std::size_t>(sqlite3_column_bytes(handle_, column));
  if (bytes == nullptr || length > limit) return {};
  return {bytes, length};
}

void StatementRun::Remember(int result) {
  if (error_ == SQLITE_OK) error_ = result;
}

}  // namespace qv
