#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qv::tool {

// The state of a piece of work.
struct Progress {
  std::string_view label;
  std::uint64_t done = 0;                // bytes
  std::optional<std::uint64_t> total{};  // nullopt: unknown, or not counted in bytes
  std::chrono::milliseconds elapsed{0};
  std::optional<double> share{};  // from 0 to 1, if it is known without a total
};

// Returns the state as text of at most `cells` terminal cells: the label, a bar and the share if it
// or the total is known, the bytes, their rate, and the remaining time or, if that cannot be
// estimated, the elapsed time. Parts that do not fit are left out, the bar first and the time last.
[[nodiscard]] std::string ProgressLine(const Progress& progress, std::size_t cells);

// Returns a number of bytes for people, such as "1.5 KiB".
[[nodiscard]] std::string SizeText(std::uint64_t bytes);

}  // namespace qv::tool
