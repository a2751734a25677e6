// Why a command was not done, as the number that follows the status word "FAILURE".
// How long one request may keep the server working.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

namespace qv::standin {

enum class ErrorCode : std::int32_t {
  kNone = 0,
  kMalformedRequest = 1,  // a field is missing or of the wrong kind
  kUnknownCommand = 2,
  kAccessDenied = 3,  // the access token is missing or wrong
  kNoDatabase = 4,
  kNotPermitted = 5,  // what a client may not do: write in a query, attach files, ...
  kSqlFailed = 6,
  kTimedOut = 7,
  kStopped = 8,  // the server stops, or the client is gone
  kNoProcedure = 9,
  kAnswerLost = 10,   // the answer could not be kept: disk full, or past the limit
  kBusy = 11,         // somebody else holds the database
  kBadName = 20,      // of a file or folder, or an identifier that is none
  kNoFile = 21,       // no such file or folder
  kStoreFailed = 22,  // the place is taken, the folder is not empty, the disk is full, ...
  kBadPack = 23,      // no pack file, or a damaged one
};

// What came of a piece of work; the text is for the server's own log, and for the wire only
// where the command's own description says so.
struct [[nodiscard]] Outcome {
  ErrorCode code = ErrorCode::kNone;
  std::string text;

  bool Ok() const { return code == ErrorCode::kNone; }
};

// Asked again and again while work goes on; once it says that the work is over it stays so. One
// thread.
class WorkLimit {
 public:
  using Clock = std::chrono::steady_clock;

  // `abandoned` tells whether nobody waits for the work any more; it may be slow and is asked
  // rarely.
  WorkLimit(std::chrono::milliseconds time, std::function<bool()> abandoned);

  [[nodiscard]] bool IsOver();
  // How long it may still go on; never negative.
  [[nodiscard]] std::chrono::milliseconds TimeLeft() const;
  // Why it is over; kNone while it is not.
  [[nodiscard]] ErrorCode Reason() const { return reason_; }

 private:
  Clock::time_point deadline_;
  Clock::time_point next_question_;
  std::function<bool()> abandoned_;
  ErrorCode reason_ = ErrorCode::kNone;
};

}  // namespace qv::standin
