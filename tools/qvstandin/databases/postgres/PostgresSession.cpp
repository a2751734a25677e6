#include "PostgresSession.h"

#include <fmt/format.h>

#include <utility>

namespace qv::standin {

namespace {

// What PostgreSQL's ODBC driver sets, so that values have the same text.
constexpr const char* kLikeTheDriver = "SET DateStyle = 'ISO'; SET extra_float_digits = 2";

std::string SettingsOf(std::chrono::milliseconds statement_limit) {
  if (statement_limit.count() == 0) return kLikeTheDriver;
  return fmt::format("{}; SET statement_timeout = {}", kLikeTheDriver, statement_limit.count());
}

}  // namespace

std::unique_ptr<PostgresSession> PostgresSession::Begin(
    std::string key, std::unique_ptr<PostgresConnection> connection,
    std::chrono::milliseconds statement_limit, odbc::Diagnostics& said) {
  std::unique_ptr<PostgresSession> session(
      new PostgresSession(std::move(key), std::move(connection), statement_limit));
  PostgresConnection& connected = session->Connected();
  const bool is_set = connected.SendText(session->settings_, said) && connected.ReadText(said);
  return is_set ? std::move(session) : nullptr;
}

PostgresSession::PostgresSession(std::string key, std::unique_ptr<PostgresConnection> connection,
                                 std::chrono::milliseconds statement_limit)
    : key_(std::move(key)),
      connection_(std::move(connection)),
      settings_(SettingsOf(statement_limit)),
      forget_(fmt::format("{}; {}; {}; {}", kForgetStatements, kForgetLocks, kForgetTheRest,
                          settings_)) {}

bool PostgresSession::SendRollBack(odbc::Diagnostics& said) {
  state_ = State::kRollsBack;
  return connection_->AskForAnswers(said) && connection_->Add(kForgetLocks, said) &&
         connection_->Add(kForgetStatements, said) && connection_->Add("ROLLBACK", said) &&
         connection_->Send(said);
}

bool PostgresSession::End() {
  if (state_ == State::kFresh) state_ = State::kUsed;
  return place_.Take();
}

// The answer of the engine is read when the next request comes, so that the client's thread does
// not wait for it.
bool PostgresSession::Refresh() {
  if (place_.IsTooOld()) return false;
  if (state_ != State::kUsed) return true;
  state_ = State::kForgets;
  odbc::Diagnostics ignored;
  return connection_->SendText(forget_, ignored);
}

bool PostgresSession::IsFresh() {
  if (!Refresh()) return false;
  odbc::Diagnostics ignored;
  const State state = std::exchange(state_, State::kFresh);
  if (state == State::kRollsBack && !connection_->ReadGroup(ignored)) return false;
  if (state == State::kForgets && !connection_->ReadText(ignored)) return false;
  return connection_->IsQuiet();
}

}  // namespace qv::standin
