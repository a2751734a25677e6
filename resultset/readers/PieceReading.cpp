#include "PieceReading.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <vector>

#include "ReaderThreads.h"
#include "base/call/CancelFlag.h"

namespace qv {

namespace {

constexpr std::size_t kNone = RowScanner::kNone;
// The cells of a piece stay in the caches until they are appended.
constexpr std::size_t kUsualPieceBytes = 0x40000;
// Waking threads costs more than they save on a shorter text.
constexpr std::size_t kLeastPieces = 8;
// The most that the cells of a piece may take; one with more is not read ahead.
constexpr std::uint64_t kMostAhead = 0x100000;

std::atomic<std::size_t> set_piece_bytes = 0;

// Returns the places at which to cut the rows, the first included. There is only one if the text is
// too short to be cut.
std::vector<std::size_t> Cuts(const RowScanner& scanner, std::size_t first_row) {
  const std::size_t set = set_piece_bytes.load(std::memory_order_relaxed);
  const std::size_t piece = set != 0 ? set : kUsualPieceBytes;
  std::vector<std::size_t> cuts = {first_row};
  const std::size_t bytes = scanner.Text().size() - first_row;
  if (bytes / piece < kLeastPieces) return cuts;
  cuts.reserve(bytes / piece + 1);
  while (true) {
    const std::size_t next = scanner.FindRow(cuts.back() + piece);
    if (next == kNone) return cuts;
    cuts.push_back(next);
  }
}

bool HasBinary(std::span<const Column> columns) {
  return std::any_of(columns.begin(), columns.end(),
                     [](const Column& column) { return column.type == kTypeLongVarBinary; });
}

// Makes a flag cancel the calls of this thread while it helps with those of another.
class CancelledBy {
 public:
  explicit CancelledBy(const call::CancelFlag* flag) { call::SetCancelFlag(flag); }
  ~CancelledBy() { call::SetCancelFlag(own_); }
  CancelledBy(const CancelledBy&) = delete;
  CancelledBy& operator=(const CancelledBy&) = delete;

 private:
  const call::CancelFlag* const own_ = call::CancelFlagOfThisThread();
};

// The rows of one piece, in columns without names.
class PieceAhead {
 public:
  PieceAhead(const MakeRowScanner& make, std::span<const Column> columns, BinaryCells& binary,
             std::uint64_t most_bytes)
      : scanner_(make()),
        columns_(EmptyLike(columns)),
        filler_(columns_, scanner_->Values(), binary, ResultBudget(most_bytes)) {
    filler_.NeverReserve();
  }

  // Returns false if it did not come to the piece's end.
  [[nodiscard]] bool Read(std::size_t start, std::size_t limit) {
    filler_.Clear();
    end_ = start;
    return scanner_->ReadRows(end_, limit, filler_) == Reading::kDone;
  }

  [[nodiscard]] const ColumnFiller& Rows() const { return filler_; }
  // The start of the row after the last.
  [[nodiscard]] std::size_t End() const { return end_; }

 private:
  static std::vector<Column> EmptyLike(std::span<const Column> columns) {
    std::vector<Column> empty;
    empty.reserve(columns.size());
    for (const Column& column : columns) {
      empty.push_back({.name = {}, .type = column.type, .cells = CellsFor(column.type)});
    }
    return empty;
  }

  std::unique_ptr<RowScanner> scanner_;
  std::vector<Column> columns_;
  ColumnFiller filler_;
  std::size_t end_ = kNone;
};

// One text that is read by several threads, each of which runs Work.
class PieceReading {
 public:
  // `threads` is at least 2. What is passed outlives the reading.
  PieceReading(std::vector<std::size_t> cuts, int threads, std::uint64_t limit,
               const MakeRowScanner& make, RowScanner& scanner, ColumnFiller& filler,
               std::span<const Column> columns, BinaryCells& binary)
      : cuts_(std::move(cuts)),
        threads_(threads),
        // All threads together take less than the table may.
        most_ahead_(std::min(kMostAhead, limit / 2 / static_cast<std::uint64_t>(threads))),
        make_(make),
        columns_(columns),
        binary_(binary),
        flag_(call::CancelFlagOfThisThread()),
        scanner_(scanner),
        filler_(filler),
        position_(cuts_.front()) {}

  [[nodiscard]] Reading Run() {
    RunOnReaderThreads(threads_ - 1, [this] { Work(); });
    if (error_) std::rethrow_exception(error_);
    return reading_;
  }

 private:
  void Work();
  void ReadPieces();
  [[nodiscard]] std::size_t LimitOf(std::size_t piece) const {
    return piece + 1 < cuts_.size() ? cuts_[piece + 1] : kNone;
  }
  // Returns false if the rows ended before the piece.
  [[nodiscard]] bool WaitForTurn(std::size_t piece);
  // Appends the piece to the table; `ahead` is null if it was not read ahead.
  [[nodiscard]] Reading TakeTurn(std::size_t piece, const PieceAhead* ahead);
  void EndTurn(Reading reading);
  void End();

  const std::vector<std::size_t> cuts_;
  const int threads_;
  const std::uint64_t most_ahead_;
  const MakeRowScanner& make_;
  const std::span<const Column> columns_;
  BinaryCells& binary_;
  const call::CancelFlag* const flag_;

  // These are the calling thread's before and after the reading, and in between those of the thread
  // whose turn it is.
  RowScanner& scanner_;
  ColumnFiller& filler_;
  std::size_t position_;  // of the next row

  std::atomic<std::size_t> next_piece_ = 0;
  std::atomic<bool> ended_ = false;
  std::mutex mutex_;
  std::condition_variable turned_;
  std::size_t turn_ = 0;  // the piece to be appended next
  Reading reading_ = Reading::kDone;
  std::exception_ptr error_;
};

void PieceReading::Work() try {
  const CancelledBy flag(flag_);
  ReadPieces();
} catch (...) {
  const std::lock_guard lock(mutex_);
  error_ = std::current_exception();
  End();
}

void PieceReading::ReadPieces() {
  PieceAhead ahead(make_, columns_, binary_, most_ahead_);
  while (!ended_) {
    const std::size_t piece = next_piece_++;
    if (piece >= cuts_.size()) return;
    const bool is_read = ahead.Read(cuts_[piece], LimitOf(piece));
    if (!WaitForTurn(piece)) return;
    EndTurn(TakeTurn(piece, is_read ? &ahead : nullptr));
  }
}

bool PieceReading::WaitForTurn(std::size_t piece) {
  std::unique_lock lock(mutex_);
  turned_.wait(lock, [&] { return ended_ || turn_ == piece; });
  return !ended_;
}

Reading PieceReading::TakeTurn(std::size_t piece, const PieceAhead* ahead) {
  if (call::IsCancelled()) return Reading::kCancelled;
  // After a wrong cut others may be wrong too, so that reading ahead could take long for nothing.
  if (position_ != cuts_[piece]) return scanner_.ReadRows(position_, kNone, filler_);
  if (ahead == nullptr || !filler_.AppendRowsOf(ahead->Rows())) {
    return scanner_.ReadRows(position_, LimitOf(piece), filler_);
  }
  position_ = ahead->End();
  if (filler_.CanReserve() && position_ != kNone) {
    filler_.ReserveAfter(position_, scanner_.Text().size());
  }
  return Reading::kDone;
}

void PieceReading::EndTurn(Reading reading) {
  const std::lock_guard lock(mutex_);
  ++turn_;
  reading_ = reading;
  if (reading != Reading::kDone || position_ == kNone) return End();
  turned_.notify_all();
}

void PieceReading::End() {
  ended_ = true;
  turned_.notify_all();
}

Reading ReadRows(std::size_t first_row, const MakeRowScanner& make, ResultTable& table,
                 BinaryCells& binary) {
  const std::unique_ptr<RowScanner> scanner = make();
  const ResultBudget budget;
  ColumnFiller filler(table.Columns(), scanner->Values(), binary, budget);
  const int most = HasBinary(table.Columns()) ? 1 : ReaderThreads();
  if (most == 1) return scanner->ReadRows(first_row, kNone, filler);
  std::vector<std::size_t> cuts = Cuts(*scanner, first_row);
  const auto threads = static_cast<int>(std::min(cuts.size(), static_cast<std::size_t>(most)));
  if (threads == 1) return scanner->ReadRows(first_row, kNone, filler);
  PieceReading reading(std::move(cuts), threads, budget.Limit(), make, *scanner, filler,
                       table.Columns(), binary);
  return reading.Run();
}

}  // namespace

Reading ReadAllRows(std::size_t first_row, const MakeRowScanner& make, ResultTable& table,
                    BinaryCells& binary) {
  if (first_row == kNone) return Reading::kDone;
  const Reading reading = ReadRows(first_row, make, table, binary);
  if (reading != Reading::kDone) DropRows(table);
  return reading;
}

void SetPieceBytes(std::size_t bytes) { set_piece_bytes.store(bytes, std::memory_order_relaxed); }

}  // namespace qv
