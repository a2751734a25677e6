// The text of a recordset, a stretch at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string_view>

#include "TextSource.h"
#include "resultset/Reading.h"

namespace qv {

// A stretch of a source's text that moves over it, in a buffer that is used again and again: what
// was just loaded is still in the processor's caches when it is read, and the text as a whole needs
// no memory. A stretch grows only if what its reader must see at once does.
//
// The text is the source's in chunks of 2 MiB, each of which ends at its first NUL. Scanners and
// copies may read some bytes after the end of the view, which are zero.
class TextWindow {
 public:
  static constexpr std::size_t kSlack = 64;
  static constexpr std::size_t kNone = std::string_view::npos;

  // How much text a window has.
  struct Sizes {
    std::size_t first;  // at the start
    std::size_t step;   // later, unless what is kept is more than half of it
    std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
  };

  // Starts over at `offset` of a source, which outlives the reading. The chunk must have no NUL
  // before it.
  void Start(const TextSource& source, std::uint64_t offset, const Sizes& sizes);

  [[nodiscard]] std::string_view View() const { return {buffer_.get(), length_}; }
  // Where the view starts in the source; unknown once a NUL was met.
  [[nodiscard]] std::uint64_t Base() const { return base_; }
  [[nodiscard]] bool MetNul() const { return met_nul_; }
  // Returns true if no text follows the view.
  [[nodiscard]] bool IsLast() const { return next_ >= size_; }
  [[nodiscard]] const TextSource& Source() const { return *source_; }

  // Drops the text before `kept`, a position in the view, and loads more at the end. Returns false
  // if there is no more: at the end of the source, or when the window has failed.
  bool Advance(std::size_t kept);

  // Returns the first position of `marker` in the view at or after `from`, loading all the text
  // that this takes, or kNone.
  [[nodiscard]] std::size_t Find(std::string_view marker, std::size_t from);

  // kDone unless the window has failed: kUnreadable if the source cannot be read or memory runs
  // out, kTooLarge if the view would exceed the most, kCancelled. The text then ends.
  [[nodiscard]] Reading Status() const { return status_; }

 private:
  // Loads until the view has `bytes`, or no text follows it.
  void Fill(std::uint64_t bytes);
  [[nodiscard]] bool MakeRoom(std::uint64_t bytes);
  // Loads up to `bytes`, for which there is room.
  void Load(std::size_t bytes);
  void Fail(Reading reading);

  struct Freed {
    void operator()(char* buffer) const { std::free(buffer); }
  };

  const TextSource* source_ = nullptr;
  Sizes sizes_{};
  std::unique_ptr<char, Freed> buffer_;
  std::size_t capacity_ = 0;
  std::size_t length_ = 0;
  std::uint64_t base_ = 0;
  std::uint64_t next_ = 0;  // the offset in the source that is loaded next
  std::uint64_t size_ = 0;
  bool met_nul_ = false;
  Reading status_ = Reading::kDone;
};

// Returns this thread's window, which keeps its buffer from text to text.
[[nodiscard]] TextWindow& KeptTextWindow();

// How much text is loaded at a time, and read by a thread before it takes its next piece.
[[nodiscard]] std::size_t PieceBytes();
// Sets it; 0 goes back to the usual. For tests, in which small texts shall have many pieces.
void SetPieceBytes(std::size_t bytes);

}  // namespace qv
