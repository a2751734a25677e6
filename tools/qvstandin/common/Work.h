// What came of a request's work, and how long it may take.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

namespace qv::standin {

// Why a command failed: the number after the status word "FAILURE".
enum class ErrorCode : std::int32_t {
  kNone = 0,
  kMalformedRequest = 1,  // a field is missing or of the wrong kind
  kUnknownCommand = 2,
  kAccessDenied = 3,  // the access token is missing or wrong
  kNoDatabase = 4,
  kNotPermitted = 5,  // forbidden to clients: to write in a query, to attach files, ...
  kSqlFailed = 6,
  kTimedOut = 7,
  kStopped = 8,  // the server stops, or the client is gone
  kNoProcedure = 9,
  kAnswerLost = 10,   // the answer could not be stored: disk full, or over the limit
  kBusy = 11,         // another connection has locked the database
  kBadName = 20,      // an invalid name of a file or folder, or an invalid identifier
  kNoFile = 21,       // no such file or folder
  kStoreFailed = 22,  // the place is taken, the folder is not empty, the disk is full, ...
  kBadPack = 23,      // not a pack file, or a damaged one
};

// The result of a piece of work. The text is for the server's own log; it is sent only where the
// description of the command says so.
struct [[nodiscard]] Outcome {
  ErrorCode code = ErrorCode::kNone;
  std::string text;

  bool Ok() const { return code == ErrorCode::kNone; }
};

// Ask it repeatedly during work; once the work is over, it stays over. One thread.
class WorkLimit {
 public:
  using Clock = std::chrono::steady_clock;

  // `abandoned` returns whether nobody waits for the work any more; it is called rarely, since it
  // may be slow.
  WorkLimit(std::chrono::milliseconds time, std::function<bool()> abandoned);

  [[nodiscard]] bool IsOver();
  // Returns the time that is left; never negative.
  [[nodiscard]] std::chrono::milliseconds TimeLeft() const;
  // Returns why the work is over, or kNone if it is not.
  [[nodiscard]] ErrorCode Reason() const { return reason_; }

 private:
  Clock::time_point deadline_;
  Clock::time_point next_question_;
  std::function<bool()> abandoned_;
  ErrorCode reason_ = ErrorCode::kNone;
};

}  // namespace qv::standin
