// Measures several kinds of work side by side.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace qv::bench {

// How often a kind of work is done in a round.
enum class Length {
  kShort,  // again and again until the time for it is up
  kLong,   // once, without warming up
};

struct Work {
  // Runs before the work of each round and is not measured. May be empty.
  std::function<void()> prepare;
  // What is measured. Throws if it fails. Threads call it at once, each with its number.
  std::function<void(std::size_t thread)> call;
  std::size_t threads = 1;
  Length length = Length::kShort;
};

struct Pace {
  int rounds = 8;
  int long_rounds = 3;  // if there is long work
  std::chrono::milliseconds slice{250};
  int warm_up = 5;  // calls of each thread
};

// What came of one kind of work. Times are in microseconds.
struct Figures {
  std::vector<double> times;    // of every call
  std::vector<double> medians;  // of each round
  std::vector<double> rates;    // of each round: calls per second, of all threads
};

// Every round does each kind of work for a while, in an order of its own. So what disturbs the
// machine disturbs all of them alike, and what remains of it shows as the spread over the rounds.
class Rounds {
 public:
  explicit Rounds(Pace pace) : pace_(pace) {}

  // Returns the number of the work.
  std::size_t Add(Work work);
  // Throws what a call throws.
  void Run();
  [[nodiscard]] const Figures& Of(std::size_t number) const { return figures_[number]; }

 private:
  void RunOnce(std::size_t number);

  const Pace pace_;
  std::vector<Work> works_;
  std::vector<Figures> figures_;
};

// Returns the value that `share` of the values do not exceed; `values` must not be empty.
[[nodiscard]] double Percentile(std::vector<double> values, double share);
[[nodiscard]] inline double Median(const std::vector<double>& values) {
  return Percentile(values, 0.5);
}

}  // namespace qv::bench
