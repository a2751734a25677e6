// Finding bytes and markers in text, exactly and fast.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace qv {

inline std::uint64_t LoadWord(const char* p) {
  std::uint64_t word;
  std::memcpy(&word, p, sizeof word);
  return word;
}

// The first `wanted` in [p, end), or `end`. Most values are short, so eight bytes at a time come
// before a library call. Up to seven bytes behind `end` are looked at, but do not count.
inline const char* FindByte(const char* p, const char* end, char wanted) {
  constexpr std::uint64_t kOnes = 0x0101010101010101u;
  constexpr std::uint64_t kHighs = 0x8080808080808080u;
  constexpr int kWordsBeforeCall = 4;
  const std::uint64_t pattern = kOnes * static_cast<unsigned char>(wanted);
  for (int i = 0; i < kWordsBeforeCall; ++i) {
    if (p >= end) return end;
    const std::uint64_t differing = LoadWord(p) ^ pattern;
    const std::uint64_t zeros = (differing - kOnes) & ~differing & kHighs;
    if (zeros != 0) {
      p += std::countr_zero(zeros) / 8;
      return p < end ? p : end;
    }
    p += sizeof(std::uint64_t);
  }
  if (p >= end) return end;
  const void* const found = std::memchr(p, wanted, static_cast<std::size_t>(end - p));
  return found != nullptr ? static_cast<const char*>(found) : end;
}

// Finds one marker again and again from positions that only grow. What was found lies ahead of many
// positions, and is looked for once for all of them: a file cannot make the search quadratic.
class ForwardFinder {
 public:
  ForwardFinder(std::string_view text, std::string marker)
      : text_(text), marker_(std::move(marker)) {}

  // The first position of the marker at or behind `from`, or npos. `from` is never less than at the
  // call before.
  [[nodiscard]] std::size_t Find(std::size_t from) {
    if (!searched_ || (found_ != std::string_view::npos && found_ < from)) {
      found_ = text_.find(marker_, from);
      searched_ = true;
    }
    return found_;
  }

  [[nodiscard]] std::size_t MarkerLength() const { return marker_.size(); }

 private:
  std::string_view text_;
  std::string marker_;
  std::size_t found_ = 0;
  bool searched_ = false;
};

}  // namespace qv
