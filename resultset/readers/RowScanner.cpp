#include "RowScanner.h"

#include <utility>

namespace qv {

void RowScanner::Seek(std::size_t from) {
  TakeView();
  row_ = FindRow(from);
  while (row_ == kNone && window_.Advance(from)) {
    from = 0;
    TakeView();
    row_ = FindRow(from);
  }
}

void RowScanner::GoOn() {
  const std::size_t kept = std::exchange(stalled_at_, kNone);
  row_ = kNone;
  if (window_.Advance(kept)) Seek(0);
}

}  // namespace qv
