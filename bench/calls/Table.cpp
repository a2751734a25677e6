#include "Table.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ostream>
#include <string_view>

namespace qv::bench {

namespace {

constexpr std::array kHeading{"work", "p50",   "p99",   "per s",  "against", "p50",
                              "p99",  "per s", "ratio", "target", "reached", "noise"};

std::string TimeText(double microseconds) {
  if (microseconds < 1e3) return fmt::format("{:.3g} us", microseconds);
  if (microseconds < 1e6) return fmt::format("{:.3g} ms", microseconds / 1e3);
  return fmt::format("{:.3g} s", microseconds / 1e6);
}

std::string RateText(double rate) {
  return rate < 100 ? fmt::format("{:.3g}", rate) : fmt::format("{:.0f}", rate);
}

std::string TargetText(const Target& target) {
  std::string text;
  const auto add = [&text](double asked, const std::string& part) {
    if (asked > 0) text += (text.empty() ? "" : ", ") + part;
  };
  add(target.ratio_at_most, fmt::format("<= {:g}", target.ratio_at_most));
  add(target.ratio_at_least, fmt::format(">= {:g}", target.ratio_at_least));
  add(target.more_at_most, "<= +" + TimeText(target.more_at_most));
  add(target.time_at_most, "<= " + TimeText(target.time_at_most));
  return text.empty() ? "-" : text;
}

// The ratio of each round.
std::vector<double> Ratios(Compared compared, const Figures& ours, const Figures& peer) {
  const bool of_rates = compared == Compared::kRates;
  const std::vector<double>& above = of_rates ? ours.rates : ours.medians;
  const std::vector<double>& below = of_rates ? peer.rates : peer.medians;
  std::vector<double> ratios(above.size());
  for (std::size_t i = 0; i < ratios.size(); ++i) ratios[i] = above[i] / below[i];
  return ratios;
}

const char* Reached(const Target& target, double ratio, double ours, double peer) {
  if (TargetText(target) == "-") return "-";
  const auto exceeds = [](double value, double most) { return most > 0 && value > most; };
  const bool missed = exceeds(ratio, target.ratio_at_most) || ratio < target.ratio_at_least ||
                      exceeds(ours - peer, target.more_at_most) ||
                      exceeds(ours, target.time_at_most);
  return missed ? "no" : "yes";
}

void AddFigures(std::vector<std::string>& row, const Figures& figures) {
  row.push_back(TimeText(Median(figures.times)));
  row.push_back(TimeText(Percentile(figures.times, 0.99)));
  row.push_back(RateText(Median(figures.rates)));
}

}  // namespace

void Table::Add(const Comparison& comparison, const Figures& ours, const Figures& peer) {
  const std::vector<double> ratios = Ratios(comparison.compared, ours, peer);
  const double ratio = Median(ratios);
  const auto [least, most] = std::ranges::minmax(ratios);
  std::vector<std::string> row{comparison.work};
  AddFigures(row, ours);
  row.push_back(comparison.peer);
  AddFigures(row, peer);
  row.push_back(fmt::format("{:.2f}", ratio));
  row.push_back(TargetText(comparison.target));
  row.emplace_back(Reached(comparison.target, ratio, Median(ours.times), Median(peer.times)));
  row.push_back(fmt::format("{:.0f} %", (most - least) / ratio * 100));
  rows_.push_back(std::move(row));
}

void Table::Print(std::ostream& out) const {
  std::vector<std::vector<std::string>> lines{{kHeading.begin(), kHeading.end()}};
  lines.insert(lines.end(), rows_.begin(), rows_.end());
  std::array<std::size_t, kHeading.size()> widths{};
  for (const auto& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], line[i].size());
  }
  for (const auto& line : lines) {
    std::string text;
    for (std::size_t i = 0; i < line.size(); ++i) {
      const bool is_name = i == 0 || kHeading[i] == std::string_view("against");
      text += is_name ? fmt::format("{:<{}}  ", line[i], widths[i])
                      : fmt::format("{:>{}}  ", line[i], widths[i]);
    }
    out << text.substr(0, text.find_last_not_of(' ') + 1) << '\n';
  }
}

}  // namespace qv::bench
