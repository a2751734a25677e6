// Exact and fast search for bytes and markers in text, and eight digits at a time.
#pragma once

// GCC and clang define __SSE2__; MSVC has SSE2 on every x64 target.
#if defined(__SSE2__) || defined(_M_X64)
#define QV_HAS_SSE2
#include <emmintrin.h>
#endif

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace qv {

inline std::uint64_t LoadWord(const char* p) {
  std::uint64_t word;
  std::memcpy(&word, p, sizeof word);
  return word;
}

// Returns true if all eight bytes of a word are decimal digits.
inline bool AreDigits(std::uint64_t word) {
  constexpr std::uint64_t kHighHalves = 0xF0F0F0F0F0F0F0F0u;
  constexpr std::uint64_t kSixes = 0x0606060606060606u;
  constexpr std::uint64_t kThrees = 0x3030303030303030u;
  // Adding six carries out of the low half of a byte that is above '9'.
  return (word & kHighHalves) == kThrees && ((word + kSixes) & kHighHalves) == kThrees;
}

// Returns the number that eight digits in a word represent, the first byte being the highest:
// neighbours are joined to numbers of two, four and eight digits.
inline std::uint64_t EightDigits(std::uint64_t word) {
  word = (word & 0x0F0F0F0F0F0F0F0Fu) * (10 * 0x100 + 1) >> 8;
  word = (word & 0x00FF00FF00FF00FFu) * (100 * 0x10000 + 1) >> 16;
  return (word & 0x0000FFFF0000FFFFu) * (10000ull * 0x100000000 + 1) >> 32;
}

// How many bytes scans may read after the end of what they scan.
constexpr std::size_t kScanSlack = 32;

#if defined(QV_HAS_SSE2)
constexpr std::ptrdiff_t kScanStep = 32;
// Returns a bit for each of the 32 bytes at `p` that is `wanted`; the lowest bit is the first
// byte's. So many at once because most values are shorter: where a value ends within them does not
// decide a branch, which the processor could not predict.
inline std::uint32_t MatchBytes(const char* p, char wanted) {
  const auto match_half = [wanted](const char* half) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(half));
    return static_cast<std::uint32_t>(
        _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(wanted))));
  };
  return match_half(p) | match_half(p + 16) << 16;
}
inline int FirstMatch(std::uint32_t matches) { return std::countr_zero(matches); }
#else
constexpr std::ptrdiff_t kScanStep = 8;
// Returns the high bit of the first of the eight bytes at `p` that is `wanted`, and possibly bits
// above it.
inline std::uint64_t MatchBytes(const char* p, char wanted) {
  constexpr std::uint64_t kOnes = 0x0101010101010101u;
  constexpr std::uint64_t kHighs = 0x8080808080808080u;
  const std::uint64_t differing = LoadWord(p) ^ (kOnes * static_cast<unsigned char>(wanted));
  return (differing - kOnes) & ~differing & kHighs;
}
inline int FirstMatch(std::uint64_t matches) { return std::countr_zero(matches) / 8; }
#endif

// Returns the first `wanted` in [p, end), or `end`; p <= end. Most values are short, so a few
// inline steps precede the library call. Up to kScanSlack bytes after `end` are read, but do not
// count.
inline const char* FindByte(const char* p, const char* end, char wanted) {
  constexpr int kStepsBeforeCall = 2;
  for (int i = 0; i < kStepsBeforeCall; ++i) {
    if (const auto matches = MatchBytes(p, wanted); matches != 0) {
      p += FirstMatch(matches);
      return p < end ? p : end;
    }
    p += kScanStep;
    if (p >= end) return end;
  }
  const void* const found = std::memchr(p, wanted, static_cast<std::size_t>(end - p));
  return found != nullptr ? static_cast<const char*>(found) : end;
}

// Returns the first `quote`, either of the two, as FindByte does. What is searched for is known
// when the compiler sees it, so that it is not made into a block of bytes for every value.
inline const char* FindQuote(const char* p, const char* end, char quote) {
  return quote == '\'' ? FindByte(p, end, '\'') : FindByte(p, end, '"');
}

// Returns the first position of `marker`, which starts with "<", in `text` at or after `from`, or
// npos. It is usually near.
inline std::size_t FindTag(std::string_view text, std::string_view marker, std::size_t from) {
  if (from >= text.size()) return std::string_view::npos;
  const char* const end = text.data() + text.size();
  for (const char* p = text.data() + from; (p = FindByte(p, end, '<')) != end; ++p) {
    const auto left = static_cast<std::size_t>(end - p);
    if (left < marker.size()) break;
    if (std::memcmp(p, marker.data(), marker.size()) == 0) {
      return static_cast<std::size_t>(p - text.data());
    }
    if (left == 1) break;
  }
  return std::string_view::npos;
}

// Finds one marker repeatedly from increasing positions. A position that was found serves all calls
// before it, so a file cannot make the search quadratic.
class ForwardFinder {
 public:
  explicit ForwardFinder(std::string marker) : marker_(std::move(marker)) {}

  // Starts over with another text.
  void SetText(std::string_view text) {
    text_ = text;
    searched_ = false;
  }

  // Returns the first position of the marker at or after `from`, or npos. `from` must not decrease
  // between calls.
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
