// The table in which measured work stands beside what it is compared with.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "Rounds.h"

namespace qv::bench {

// What a comparison is meant to give. Zero: nothing is asked of that figure.
struct Target {
  double ratio_at_most = 0;
  double ratio_at_least = 0;
  double more_at_most = 0;  // our time - that of the peer, in microseconds
  double time_at_most = 0;  // our time, in microseconds
};

// What the ratio is of: ours / that of the peer.
enum class Compared { kTimes, kRates };

struct Comparison {
  std::string work;
  std::string peer;
  Target target;
  Compared compared = Compared::kTimes;
};

class Table {
 public:
  // Figures must have times.
  void Add(const Comparison& comparison, const Figures& ours, const Figures& peer);
  // Columns are separated by two spaces at least, and no cell is empty or has two in a row.
  void Print(std::ostream& out) const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace qv::bench
