// What the queues of both kinds of component do alike.
#pragma once

#include <cstddef>
#include <functional>

#include "qvnetcall/framework/StringArray.h"

namespace qv {

// The parts of one queue, wherever its object keeps them. Both arrays always have the same count.
struct PairList {
  CStringArray& first;
  CStringArray& second;
  int& done;  // 1 when the pairs were carried out, so that the next one starts anew

  void Add(const CString& first_path, const CString& second_path) const;
  void Empty() const;

  using Question = std::function<bool(const CString& first_path)>;
  // Names the pairs whose first path did not succeed, of a run after which `count` did; empty when
  // there is nothing to report.
  [[nodiscard]] CString FailReport(const char* label, long count, const Question& succeeded) const;
};

// The label of a kind of run: 0 for uploads, 1 for downloads, 2 for copies; empty for any other.
template <std::size_t kKinds>
const char* LabelOf(const char* const (&labels)[kKinds], int kind) {
  return kind >= 0 && kind < static_cast<int>(kKinds) ? labels[kind] : "";
}

}  // namespace qv
