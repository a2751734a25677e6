// What the queues of both components have in common.
#pragma once

#include <cstddef>
#include <functional>

#include "qvnetcall/framework/StringArray.h"

namespace qv {

// The parts of one queue, which its object owns. Both arrays always have the same length.
struct PairList {
  CStringArray& first;
  CStringArray& second;
  int& done;  // 1 if the pairs were carried out, so that the next Add starts a new queue

  void Add(const CString& first_path, const CString& second_path) const;
  void Empty() const;

  using Question = std::function<bool(const CString& first_path)>;
  // Lists the pairs whose first path did not succeed, after a run in which `count` did. Returns an
  // empty text if there is nothing to report.
  [[nodiscard]] CString FailReport(const char* label, long count, const Question& succeeded) const;
};

// Returns the label of a kind of run: 0 for uploads, 1 for downloads, 2 for copies; empty for any
// other kind.
template <std::size_t kKinds>
const char* LabelOf(const char* const (&labels)[kKinds], int kind) {
  return kind >= 0 && kind < static_cast<int>(kKinds) ? labels[kind] : "";
}

}  // namespace qv
