// What a subject read from a file, as two numbers, so that subjects can be compared.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <string_view>

namespace qv {

struct Summary {
  std::uint64_t rows = 0;
  std::uint64_t checksum = 0;

  bool operator==(const Summary&) const = default;
};

// Sums up cells, column by column, in order.
class Checksum {
 public:
  void AddInteger(std::int32_t value) { Mix(static_cast<std::uint32_t>(value)); }
  void AddDouble(double value) { Mix(std::bit_cast<std::uint64_t>(value)); }
  // Dates agree when they do to the second: ways to compute the fraction may differ in its last
  // bit.
  void AddDate(double days) { Mix(static_cast<std::uint64_t>(std::llround(days * 86400.0))); }
  void AddText(std::string_view text) { Mix(std::hash<std::string_view>()(text)); }

  [[nodiscard]] std::uint64_t Value() const { return value_; }

 private:
  void Mix(std::uint64_t word) { value_ = std::rotl(value_ ^ word, 29) * 0x9E3779B97F4A7C15u; }

  std::uint64_t value_ = 1;
};

}  // namespace qv
