// What came of a request's work, and how long it may take.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "qvnetcall/ResultCodes.h"

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

// The result of a piece of work.
struct [[nodiscard]] Outcome {
  ErrorCode code = ErrorCode::kNone;
  // For the server's own log, and for clients unless it is private.
  std::string text = {};
  // kNone: the class that the code stands for.
  error::Class error_class = error::kNone;
  // The text may name what clients must not see: paths, or parts of connection texts. They get a
  // general one.
  bool is_private = false;

  bool Ok() const { return code == ErrorCode::kNone; }
};

// Returns the class of a failure, or kNone for a success.
[[nodiscard]] error::Class ClassOf(const Outcome& outcome);
// Returns one lower-case word for a class of the server's, as in "unknown-object", or for a request
// that its client cancelled.
[[nodiscard]] std::string_view NameOf(error::Class error_class);
// Returns the text of a failure that clients may see. `database` is the name by which they know the
// database that they asked for; it may be empty.
[[nodiscard]] std::string TextForClients(const Outcome& outcome, std::string_view database = {});
// Returns the text for a database that does not exist.
[[nodiscard]] std::string NoSuchDatabase(std::string_view name);

// Returns a time as people write it: "30 s", or "1500 ms" if it is not whole seconds.
[[nodiscard]] std::string TextOf(std::chrono::milliseconds time);
// Returns a number of bytes as people write it: "16 MiB", or "1000 bytes".
[[nodiscard]] std::string TextOfBytes(std::uint64_t bytes);

// Ask it repeatedly during work; once the work is over, it stays over. One thread.
class WorkLimit {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds kNoLimit = std::chrono::milliseconds::max();

  // `time` may be kNoLimit. `abandoned` returns whether nobody waits for the work any more;
  // it is called every 20 ms or less often, since it may be slow.
  WorkLimit(std::chrono::milliseconds time, std::function<bool()> abandoned);

  [[nodiscard]] bool IsOver();
  // Returns the time that is left, which is never negative, or nothing if there is no limit.
  [[nodiscard]] std::optional<std::chrono::milliseconds> TimeLeft() const;
  // Returns why the work is over, or kNone if it is not.
  [[nodiscard]] ErrorCode Reason() const { return reason_; }
  // Returns the failure of work that is over, whose text names `what` took too long.
  [[nodiscard]] Outcome Failure(std::string_view what = "the statement") const;

 private:
  [[nodiscard]] bool IsAbandoned() const noexcept;

  std::chrono::milliseconds time_;
  Clock::time_point deadline_;
  Clock::time_point next_question_;
  std::function<bool()> abandoned_;
  ErrorCode reason_ = ErrorCode::kNone;
};

}  // namespace qv::standin
