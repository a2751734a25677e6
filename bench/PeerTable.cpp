#include "PeerTable.h"

#include <algorithm>
#include <charconv>
#include <chrono>

namespace qv {

namespace {

template <class Number>
Number Parse(std::string_view text) {
  Number value{};
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

// The files hold nothing but "true" and "false" here, whatever the case.
bool IsTrue(std::string_view text) { return text.size() == 4; }

// Returns a time such as "2004-01-02T03:04:05" in days since 30 December 1899. What follows the
// time is ignored.
double ParseDays(std::string_view text) {
  using std::chrono::sys_days;
  if (text.size() < 19) return 0.0;
  const auto field = [text](std::size_t from, std::size_t length) {
    return Parse<unsigned>(text.substr(from, length));
  };
  const std::chrono::year_month_day date(std::chrono::year(static_cast<int>(field(0, 4))),
                                         std::chrono::month(field(5, 2)),
                                         std::chrono::day(field(8, 2)));
  constexpr sys_days kDayZero{std::chrono::year{1899} / 12 / 30};
  const unsigned second = field(11, 2) * 3600 + field(14, 2) * 60 + field(17, 2);
  return static_cast<double>((sys_days(date) - kDayZero).count()) + second / 86400.0;
}

}  // namespace

PeerTable::PeerTable() {
  for (const FileColumn& column : kFileColumns) {
    columns_.push_back({column.name, column.kind, {}, {}, {}, {}, 0});
  }
}

void PeerTable::Put(std::string_view name, std::string_view value) {
  for (std::size_t i = next_; i < columns_.size(); ++i) {
    if (columns_[i].name != name) continue;
    for (; next_ < i; ++next_) Append(columns_[next_], {});
    Append(columns_[next_++], value);
    return;
  }
}

void PeerTable::EndRow() {
  for (; next_ < columns_.size(); ++next_) Append(columns_[next_], {});
  ++rows_;
}

void PeerTable::Append(Column& column, std::string_view value) {
  switch (column.kind) {
    case ColumnKind::kInteger:
      return column.integers.push_back(Parse<std::int32_t>(value));
    case ColumnKind::kBoolean:
      return column.integers.push_back(IsTrue(value) ? 1 : 0);
    case ColumnKind::kDouble:
      return column.doubles.push_back(Parse<double>(value));
    case ColumnKind::kDate:
      return column.doubles.push_back(ParseDays(value));
    case ColumnKind::kText:
      column.bytes.insert(column.bytes.end(), value.begin(), value.end());
      column.ends.push_back(column.bytes.size());
      column.display_length = std::max(column.display_length, value.size());
  }
}

void PeerTable::AddTo(Checksum& checksum, const Column& column) {
  for (const std::int32_t value : column.integers) checksum.AddInteger(value);
  const bool are_dates = column.kind == ColumnKind::kDate;
  for (const double value : column.doubles) {
    are_dates ? checksum.AddDate(value) : checksum.AddDouble(value);
  }
  std::size_t start = 0;
  for (const std::size_t end : column.ends) {
    checksum.AddText({column.bytes.data() + start, end - start});
    start = end;
  }
}

Summary PeerTable::Sum() const {
  Checksum checksum;
  for (const Column& column : columns_) AddTo(checksum, column);
  return {rows_, checksum.Value()};
}

}  // namespace qv
