// A group of comparisons that are measured together.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "Rounds.h"
#include "Table.h"

namespace qv::bench {

class Group {
 public:
  explicit Group(Pace pace) : rounds_(pace) {}

  // Returns the number of the work, to be compared by.
  std::size_t Add(Work work) { return rounds_.Add(std::move(work)); }
  void Compare(Comparison comparison, std::size_t ours, std::size_t peer) {
    rows_.push_back({std::move(comparison), ours, peer});
  }
  // Measures, and adds a row for each comparison.
  void Run(Table& table) {
    rounds_.Run();
    for (const Row& row : rows_) {
      table.Add(row.comparison, rounds_.Of(row.ours), rounds_.Of(row.peer));
    }
  }

 private:
  struct Row {
    Comparison comparison;
    std::size_t ours;
    std::size_t peer;
  };

  Rounds rounds_;
  std::vector<Row> rows_;
};

}  // namespace qv::bench
