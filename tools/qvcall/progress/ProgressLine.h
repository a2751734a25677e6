#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qv::tool {

// How far a piece of work has come.
struct Progress {
  std::string_view label;
  std::uint64_t done = 0;                // bytes
  std::optional<std::uint64_t> total{};  // none: not known, or the work is not counted in bytes
  std::chrono::milliseconds elapsed{0};
  std::optional<double> share{};  // from 0 to 1, where it can be told without a total
};

// That as text for one line of `cells` terminal cells at most: the label, a bar and the share when
// it or the total is known, the bytes, their rate, and the time that is left or, when that cannot
// be told, has passed. What does not fit is left out, the bar first and the time last.
[[nodiscard]] std::string ProgressLine(const Progress& progress, std::size_t cells);

// "1.5 KiB".
[[nodiscard]] std::string SizeText(std::uint64_t bytes);

}  // namespace qv::tool
