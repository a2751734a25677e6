#include "Work.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <exception>
#include <utility>

namespace qv::standin {

namespace {

constexpr std::chrono::milliseconds kBetweenQuestions{20};

error::Class ClassOf(ErrorCode code) {
  switch (code) {
    case ErrorCode::kNone:
      return error::kNone;
    case ErrorCode::kMalformedRequest:
      return error::kSyntax;
    case ErrorCode::kAccessDenied:
      return error::kBadToken;
    case ErrorCode::kNoDatabase:
      return error::kUnknownDatabase;
    case ErrorCode::kUnknownCommand:
    case ErrorCode::kNotPermitted:
    case ErrorCode::kBadName:
      return error::kNotAllowed;
    case ErrorCode::kTimedOut:
      return error::kTimeLimit;
    case ErrorCode::kNoProcedure:
    case ErrorCode::kNoFile:
      return error::kUnknownObject;
    case ErrorCode::kBusy:
      return error::kBusy;
    case ErrorCode::kStoreFailed:
      return error::kConstraint;
    case ErrorCode::kSqlFailed:
    case ErrorCode::kStopped:
    case ErrorCode::kAnswerLost:
    case ErrorCode::kBadPack:
      return error::kInternal;
  }
  return error::kInternal;
}

}  // namespace

error::Class ClassOf(const Outcome& outcome) {
  const bool is_by_code = outcome.Ok() || outcome.error_class == error::kNone;
  return is_by_code ? ClassOf(outcome.code) : outcome.error_class;
}

std::string_view NameOf(error::Class error_class) {
  constexpr std::array<std::string_view, error::kInternal + 1> kNames{
      "none",       "syntax", "unknown-object", "unknown-database", "not-allowed", "constraint",
      "time-limit", "busy",   "too-large",      "bad-token",        "internal"};
  if (error_class == error::kCancelled) return "cancelled";
  return kNames[std::min(static_cast<std::size_t>(error_class), kNames.size() - 1)];
}

std::string NoSuchDatabase(std::string_view name) {
  return name.empty() ? "no such database" : fmt::format("no such database: {}", name);
}

std::string TextForClients(const Outcome& outcome, std::string_view database) {
  if (outcome.Ok()) return {};
  if (!outcome.is_private) return outcome.text;
  switch (ClassOf(outcome)) {
    case error::kUnknownDatabase:
      return NoSuchDatabase(database);
    case error::kBusy:
      return "the database has no place left";
    case error::kTooLarge:
      return "the database has no memory or no disk space left";
    default:
      return outcome.code == ErrorCode::kNoDatabase
                 ? "the database cannot be reached; the server's log says why"
                 : "the database failed; the server's log says why";
  }
}

std::string TextOf(std::chrono::milliseconds time) {
  constexpr std::int64_t kSecond = 1000;
  const std::int64_t count = time.count();
  if (count % kSecond != 0) return fmt::format("{} ms", count);
  return fmt::format("{} s", count / kSecond);
}

std::string TextOfBytes(std::uint64_t bytes) {
  constexpr std::uint64_t kStep = 1024;
  constexpr std::string_view kUnits[] = {"bytes", "KiB", "MiB", "GiB", "TiB"};
  std::size_t unit = 0;
  for (; bytes != 0 && bytes % kStep == 0 && unit + 1 < std::size(kUnits); ++unit) bytes /= kStep;
  return fmt::format("{} {}", bytes, kUnits[unit]);
}

WorkLimit::WorkLimit(std::chrono::milliseconds time, std::function<bool()> abandoned)
    : time_(time),
      deadline_(time != kNoLimit ? Clock::now() + time : Clock::time_point::max()),
      next_question_(Clock::now() + kBetweenQuestions),
      abandoned_(std::move(abandoned)) {}

bool WorkLimit::IsOver() {
  if (reason_ != ErrorCode::kNone) return true;
  const Clock::time_point now = Clock::now();
  if (now >= deadline_) {
    reason_ = ErrorCode::kTimedOut;
  } else if (now >= next_question_) {
    next_question_ = now + kBetweenQuestions;
    if (IsAbandoned()) reason_ = ErrorCode::kStopped;
  }
  return reason_ != ErrorCode::kNone;
}

// The question also tells the client that the work goes on. A client that cannot be told, because
// memory has run out, is given up.
bool WorkLimit::IsAbandoned() const noexcept {
  try {
    return abandoned_();
  } catch (const std::exception&) {
    return true;
  }
}

std::optional<std::chrono::milliseconds> WorkLimit::TimeLeft() const {
  if (time_ == kNoLimit) return std::nullopt;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline_ - Clock::now());
  return std::max(left, std::chrono::milliseconds(0));
}

Outcome WorkLimit::Failure(std::string_view what) const {
  if (reason_ != ErrorCode::kTimedOut) return {reason_, "cut off"};
  return {reason_, fmt::format("{} took longer than {}", what, TextOf(time_))};
}

}  // namespace qv::standin
