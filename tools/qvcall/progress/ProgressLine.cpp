#include "ProgressLine.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>

#include "tools/qvcall/output/DisplayText.h"

namespace qv::tool {
namespace {

// In a narrower line, not even the label is shown.
constexpr std::size_t kFewestCells = 12;
constexpr std::size_t kShortestBar = 10;
constexpr std::size_t kLongestBar = 40;
// A rate that was measured over less time does not predict anything.
constexpr std::chrono::seconds kTimeForARate{1};

std::string Bytes(double count) {
  constexpr std::array kUnits = {"KiB", "MiB", "GiB", "TiB"};
  if (count < 1024) return fmt::format("{:.0f} B", std::floor(count));
  std::size_t unit = 0;
  for (count /= 1024; count >= 1024 && unit + 1 < kUnits.size(); ++unit) count /= 1024;
  return fmt::format("{:.1f} {}", count, kUnits[unit]);
}

std::string Clock(double seconds) {
  constexpr double kLongest = 100.0 * 3600 - 1;
  const auto whole = static_cast<long>(std::min(seconds, kLongest));
  if (whole < 3600) return fmt::format("{}:{:02}", whole / 60, whole % 60);
  return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

std::optional<double> Share(const Progress& progress) {
  if (!progress.total) return progress.share;
  if (*progress.total == 0) return 1;
  return static_cast<double>(progress.done) / static_cast<double>(*progress.total);
}

// The parts of the line after the bar. A part that is not known is empty.
struct Details {
  std::string share;
  std::string bytes;
  std::string rate;
  std::string time;
};

Details Describe(const Progress& progress) {
  Details details;
  const double seconds = std::chrono::duration<double>(progress.elapsed).count();
  const auto done = static_cast<double>(progress.done);
  const std::optional<double> share = Share(progress);
  details.time = Clock(seconds);
  // Rounded down, so that 100 % means that everything is done.
  if (share) details.share = fmt::format("{:3.0f}%", std::floor(*share * 100));
  if (progress.total) {
    details.bytes = Bytes(done) + " of " + Bytes(static_cast<double>(*progress.total));
  } else if (progress.done != 0) {
    details.bytes = Bytes(done);
  }
  if (progress.done == 0 || progress.elapsed < kTimeForARate) return details;
  const double rate = done / seconds;
  details.rate = Bytes(rate) + "/s";
  if (progress.total) {
    details.time = Clock((static_cast<double>(*progress.total) - done) / rate) + " left";
  } else if (share && *share > 0) {
    details.time = Clock(seconds / *share - seconds) + " left";
  }
  return details;
}

std::string Join(std::initializer_list<std::string_view> pieces) {
  std::string joined;
  for (const std::string_view piece : pieces) {
    if (!piece.empty()) joined.append("  ").append(piece);
  }
  return joined;
}

// Returns as many of the details as fit.
std::string FittingDetails(const Details& from, std::size_t cells) {
  for (std::string joined :
       {Join({from.share, from.bytes, from.rate, from.time}),
        Join({from.share, from.bytes, from.time}), Join({from.share, from.time})}) {
    if (joined.size() <= cells) return joined;
  }
  return {};
}

std::string Bar(double share, std::size_t cells) {
  const std::size_t frame = std::string_view("  []").size();
  if (cells < kShortestBar + frame) return {};
  const std::size_t length = std::min(cells - frame, kLongestBar);
  const auto filled = static_cast<std::size_t>(share * static_cast<double>(length));
  return fmt::format("  [{:-<{}}]", std::string(filled, '#'), length);
}

}  // namespace

std::string ProgressLine(const Progress& progress, std::size_t cells) {
  if (cells < kFewestCells) return {};
  Progress sane = progress;
  // A file may grow while it is sent.
  if (sane.total) sane.done = std::min(sane.done, *sane.total);
  const Details known = Describe(sane);
  // The label leaves room for the share and the time, but keeps at least half of the line.
  const std::size_t least = std::min(Join({known.share, known.time}).size(), cells / 2);
  std::string line = VisibleStart(progress.label, cells - least);
  std::string ignored;
  std::size_t left = cells - AppendVisible(line, ignored);
  const std::string details = FittingDetails(known, left);
  left -= details.size();
  const std::optional<double> share = Share(sane);
  return line + (share ? Bar(*share, left) : "") + details;
}

std::string SizeText(std::uint64_t bytes) { return Bytes(static_cast<double>(bytes)); }

}  // namespace qv::tool
