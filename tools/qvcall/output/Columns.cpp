#include "Columns.h"

#include <fmt/chrono.h>

#include <algorithm>
#include <ctime>
#include <ostream>

#include "DisplayWidth.h"

namespace qv::tool {

void WriteColumns(const std::vector<std::vector<std::string>>& rows, std::ostream& out) {
  std::vector<std::size_t> widths;
  std::string ignored;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], AppendVisible(row[i], ignored));
      ignored.clear();
    }
  }
  for (const auto& row : rows) {
    std::string line;
    std::size_t padding = 0;
    for (std::size_t i = 0; i < row.size(); ++i) {
      line.append(padding, ' ');
      padding = widths[i] - AppendVisible(row[i], line) + 2;
    }
    out << line << '\n';
  }
}

std::string TimeText(std::int64_t seconds) {
  constexpr std::int64_t kEndOf9998 = 253370764800;
  if (seconds < 0 || seconds >= kEndOf9998) return fmt::format("{:<19}", '?');
  return fmt::format("{:%Y-%m-%d %H:%M:%S}", fmt::localtime(static_cast<std::time_t>(seconds)));
}

}  // namespace qv::tool
