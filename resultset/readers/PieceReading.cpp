#include "PieceReading.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>
#include <vector>

#include "ReaderThreads.h"
#include "base/call/CancelFlag.h"

namespace qv {

namespace {

constexpr std::uint64_t kEnd = RowScanner::kEnd;
// Waking threads costs more than they save on a shorter text.
constexpr std::uint64_t kLeastPieces = 8;
// The most that the cells of a piece may take; one with more is not read ahead.
constexpr std::uint64_t kMostAhead = 0x100000;

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

// How a text is cut, and where its rows come from.
struct Pieces {
  const TextSource& source;
  const MakeRowScanner& make;
  std::uint64_t first;  // where the first row starts
  std::uint64_t bytes;  // of each piece
  std::size_t count;

  [[nodiscard]] std::uint64_t Start(std::size_t piece) const { return first + piece * bytes; }
  // Rows that start there belong to the next piece.
  [[nodiscard]] std::uint64_t Limit(std::size_t piece) const {
    return piece + 1 < count ? Start(piece + 1) : kEnd;
  }
};

// Returns how the text after the first row's start is cut.
Pieces Cut(const RowScanner& scanner, const MakeRowScanner& make) {
  const std::uint64_t bytes = PieceBytes();
  const TextSource& source = scanner.Window().Source();
  const std::uint64_t left = source.Size() - std::min(source.Size(), scanner.Position());
  const bool is_cut = left / bytes >= kLeastPieces && !scanner.Window().MetNul();
  const std::uint64_t count = is_cut ? (left - 1) / bytes + 1 : 1;
  return {source, make, scanner.Position(), bytes, static_cast<std::size_t>(count)};
}

// The rows of one piece, in columns without names.
class PieceAhead {
 public:
  PieceAhead(const Pieces& pieces, std::span<const Column> columns, BinaryCells& binary,
             std::uint64_t most_bytes)
      : pieces_(pieces),
        most_bytes_(most_bytes),
        scanner_(pieces.make(window_)),
        columns_(EmptyLike(columns)),
        filler_(columns_, scanner_->Values(), binary, ResultBudget(most_bytes)) {
    filler_.NeverReserve();
  }

  // Returns false without memory to read ahead.
  [[nodiscard]] bool Read(std::size_t piece) try {
    filler_.Clear();
    // Most pieces end with a row that ends a little after them.
    const std::size_t beyond = static_cast<std::size_t>(pieces_.bytes) / 32 + 1;
    window_.Start(
        pieces_.source, pieces_.Start(piece),
        {static_cast<std::size_t>(pieces_.bytes) + beyond, beyond, most_bytes_ + pieces_.bytes});
    scanner_->Seek(0);
    start_ = scanner_->Position();
    reading_ = scanner_->ReadRows(pieces_.Limit(piece), filler_);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }

  // Whether the piece can be read on its own: no row is much too long for it, and the text is where
  // it is in the source.
  [[nodiscard]] bool IsSeparate() const {
    return window_.Status() == Reading::kDone && !window_.MetNul();
  }
  // Whether its cells took no more memory than they may.
  [[nodiscard]] bool IsWhole() const { return reading_ == Reading::kDone; }
  [[nodiscard]] const ColumnFiller& Rows() const { return filler_; }
  // Where the first row starts, and the one after the last.
  [[nodiscard]] std::uint64_t Start() const { return start_; }
  [[nodiscard]] std::uint64_t End() const { return scanner_->Position(); }

 private:
  static std::vector<Column> EmptyLike(std::span<const Column> columns) {
    std::vector<Column> empty;
    empty.reserve(columns.size());
    for (const Column& column : columns) {
      empty.push_back({.name = {}, .type = column.type, .cells = CellsFor(column.type)});
    }
    return empty;
  }

  const Pieces& pieces_;
  const std::uint64_t most_bytes_;
  TextWindow window_;
  std::unique_ptr<RowScanner> scanner_;
  std::vector<Column> columns_;
  ColumnFiller filler_;
  std::uint64_t start_ = kEnd;
  Reading reading_ = Reading::kDone;
};

// One text that is read by several threads, each of which runs Work.
class PieceReading {
 public:
  // `threads` is at least 2. What is passed outlives the reading.
  PieceReading(const Pieces& pieces, int threads, std::uint64_t limit, RowScanner& scanner,
               ColumnFiller& filler, std::span<const Column> columns, BinaryCells& binary)
      : pieces_(pieces),
        threads_(threads),
        // All threads together take less than the table may.
        most_ahead_(std::min(kMostAhead, limit / 2 / static_cast<std::uint64_t>(threads))),
        columns_(columns),
        binary_(binary),
        flag_(call::CancelFlagOfThisThread()),
        scanner_(scanner),
        filler_(filler),
        position_(pieces.first) {}

  [[nodiscard]] Reading Run() {
    RunOnReaderThreads(threads_ - 1, [this] { Work(); });
    if (error_) std::rethrow_exception(error_);
    return reading_;
  }

 private:
  void Work();
  void ReadPieces();
  // Returns null without memory.
  [[nodiscard]] std::unique_ptr<PieceAhead> MakeAhead() const;
  // Returns false if the rows ended before the piece.
  [[nodiscard]] bool WaitForTurn(std::size_t piece);
  // Appends the piece to the table; `ahead` is null if it was not read ahead.
  [[nodiscard]] Reading TakeTurn(std::size_t piece, const PieceAhead* ahead);
  [[nodiscard]] Reading ReadUntil(std::uint64_t limit);
  void EndTurn(Reading reading);
  void End();

  const Pieces& pieces_;
  const int threads_;
  const std::uint64_t most_ahead_;
  const std::span<const Column> columns_;
  BinaryCells& binary_;
  const call::CancelFlag* const flag_;

  // These are the calling thread's before and after the reading, and in between those of the thread
  // whose turn it is.
  RowScanner& scanner_;
  ColumnFiller& filler_;
  std::uint64_t position_;  // of the next row

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

std::unique_ptr<PieceAhead> PieceReading::MakeAhead() const try {
  return std::make_unique<PieceAhead>(pieces_, columns_, binary_, most_ahead_);
} catch (const std::bad_alloc&) {
  return nullptr;
}

void PieceReading::ReadPieces() {
  const std::unique_ptr<PieceAhead> ahead = MakeAhead();
  while (!ended_) {
    const std::size_t piece = next_piece_++;
    if (piece >= pieces_.count) return;
    const bool is_read = ahead != nullptr && ahead->Read(piece);
    if (!WaitForTurn(piece)) return;
    EndTurn(TakeTurn(piece, is_read ? ahead.get() : nullptr));
  }
}

bool PieceReading::WaitForTurn(std::size_t piece) {
  std::unique_lock lock(mutex_);
  turned_.wait(lock, [&] { return ended_ || turn_ == piece; });
  return !ended_;
}

Reading PieceReading::TakeTurn(std::size_t piece, const PieceAhead* ahead) {
  if (call::IsCancelled()) return Reading::kCancelled;
  // A row of the pieces before goes beyond this one.
  if (position_ >= pieces_.Limit(piece)) return Reading::kDone;
  if (ahead == nullptr) return ReadUntil(pieces_.Limit(piece));
  // After a wrong start others may be wrong too, so that reading ahead could take long for nothing.
  if (position_ != ahead->Start() || !ahead->IsSeparate()) return ReadUntil(kEnd);
  if (!ahead->IsWhole() || !filler_.AppendRowsOf(ahead->Rows())) {
    return ReadUntil(pieces_.Limit(piece));
  }
  position_ = ahead->End();
  if (filler_.CanReserve() && position_ != kEnd) {
    filler_.ReserveAfter(position_, pieces_.source.Size());
  }
  return Reading::kDone;
}

Reading PieceReading::ReadUntil(std::uint64_t limit) {
  scanner_.Window().Start(pieces_.source, position_, {PieceBytes(), PieceBytes()});
  scanner_.Seek(0);
  const Reading reading = scanner_.ReadRows(limit, filler_);
  position_ = scanner_.Position();
  return reading == Reading::kDone ? scanner_.Window().Status() : reading;
}

void PieceReading::EndTurn(Reading reading) {
  const std::lock_guard lock(mutex_);
  ++turn_;
  reading_ = reading;
  if (reading != Reading::kDone || position_ == kEnd) return End();
  turned_.notify_all();
}

void PieceReading::End() {
  ended_ = true;
  turned_.notify_all();
}

Reading ReadRows(RowScanner& scanner, const MakeRowScanner& make, ResultTable& table,
                 BinaryCells& binary) {
  const ResultBudget budget;
  ColumnFiller filler(table.Columns(), scanner.Values(), binary, budget);
  const int most = HasBinary(table.Columns()) ? 1 : ReaderThreads();
  const Pieces pieces = Cut(scanner, make);
  const auto threads = static_cast<int>(std::min(pieces.count, static_cast<std::size_t>(most)));
  if (threads == 1) return scanner.ReadRows(kEnd, filler);
  PieceReading reading(pieces, threads, budget.Limit(), scanner, filler, table.Columns(), binary);
  return reading.Run();
}

}  // namespace

Reading ReadAllRows(TextWindow& window, std::size_t from, const MakeRowScanner& make,
                    ResultTable& table, BinaryCells& binary) {
  const std::unique_ptr<RowScanner> scanner = make(window);
  scanner->Seek(from);
  if (scanner->Position() == kEnd) return window.Status();
  const Reading reading = ReadRows(*scanner, make, table, binary);
  if (reading != Reading::kDone) DropRows(table);
  return reading;
}

}  // namespace qv
