// What bounds the reading of an answer, and how it ended.
#pragma once

#include <cstdint>
#include <string>

namespace qv {

// The most bytes that the cells of one answer may take: half of the machine's memory unless
// SetResultLimit set another number; 0 goes back to that. Any thread may call both; a read that
// runs keeps the limit that it started with.
[[nodiscard]] std::uint64_t ResultLimit();
void SetResultLimit(std::uint64_t bytes);

// The memory that is left for the cells of an answer.
class ResultBudget {
 public:
  explicit ResultBudget(std::uint64_t limit = ResultLimit()) : limit_(limit), left_(limit) {}

  // Call this before the memory is taken. Returns false if less is left.
  [[nodiscard]] bool Take(std::uint64_t bytes) {
    if (bytes > left_) return false;
    left_ -= bytes;
    return true;
  }

  [[nodiscard]] std::uint64_t Limit() const { return limit_; }
  [[nodiscard]] std::uint64_t Taken() const { return limit_ - left_; }

 private:
  std::uint64_t limit_;
  std::uint64_t left_;
};

// Returns the sentence that names the limit as the reason why an answer was not read.
[[nodiscard]] std::string BeyondLimitText(std::uint64_t limit);

enum class Reading {
  kDone,
  kUnreadable,  // the file cannot be loaded, or is no recordset
  kTooLarge,    // its cells would take more than ResultLimit()
  kCancelled,   // the calling thread's call was cancelled
};

// Keeps why a read failed as the calling thread's error. Returns true for kDone.
[[nodiscard]] bool NoteReading(Reading reading);

}  // namespace qv
