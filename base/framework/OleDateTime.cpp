#include "qvnetcall/framework/OleDateTime.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/platform/Platform.h"

namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::int64_t kSecondsPerDay = 86400;
constexpr sys_days kDayZero{std::chrono::year{1899} / 12 / 30};
constexpr std::int64_t kFirstDay = (sys_days{std::chrono::year{100} / 1 / 1} - kDayZero).count();
constexpr std::int64_t kLastDay = (sys_days{std::chrono::year{9999} / 12 / 31} - kDayZero).count();

struct Moment {
  std::int64_t day;     // since day zero
  std::int64_t second;  // of that day
};

struct Parts {
  year_month_day date;
  sys_days day;
  int second;
};

// Before day zero the value is negative, but its fraction still counts forward, so the two are
// separated first.
std::optional<Moment> ToMoment(double value) noexcept {
  const auto first = static_cast<double>(kFirstDay);
  const auto last = static_cast<double>(kLastDay);
  if (!(value > first - 1 && value < last + 1)) return std::nullopt;  // rejects NaN as well
  const double whole = std::trunc(value);
  const double fraction = std::fabs(value - whole);
  Moment moment{static_cast<std::int64_t>(whole),
                std::llround(fraction * static_cast<double>(kSecondsPerDay))};
  if (moment.second == kSecondsPerDay) moment = {moment.day + 1, 0};
  if (moment.day > kLastDay) return std::nullopt;
  return moment;
}

std::optional<Parts> ToParts(const COleDateTime& date) noexcept {
  if (date.m_status != COleDateTime::valid) return std::nullopt;
  const std::optional<Moment> moment = ToMoment(date.m_dt);
  if (!moment) return std::nullopt;
  const sys_days day = kDayZero + days{moment->day};
  return Parts{year_month_day{day}, day, static_cast<int>(moment->second)};
}

// Increases with time, which the stored value does not before day zero.
double Linear(double value) noexcept {
  const double whole = std::trunc(value);
  return whole + std::fabs(value - whole);
}

int DayOfWeek(const Parts& parts) noexcept {
  return static_cast<int>(std::chrono::weekday{parts.day}.c_encoding());
}

int DayOfYear(const Parts& parts) noexcept {
  return static_cast<int>((parts.day - sys_days{parts.date.year() / 1 / 1}).count());
}

int MonthOf(const Parts& parts) noexcept {
  return static_cast<int>(static_cast<unsigned>(parts.date.month()));
}

int DayOf(const Parts& parts) noexcept {
  return static_cast<int>(static_cast<unsigned>(parts.date.day()));
}

std::tm ToTm(const Parts& parts) noexcept {
  std::tm tm{};
  tm.tm_year = static_cast<int>(parts.date.year()) - 1900;
  tm.tm_mon = MonthOf(parts) - 1;
  tm.tm_mday = DayOf(parts);
  tm.tm_hour = parts.second / 3600;
  tm.tm_min = parts.second / 60 % 60;
  tm.tm_sec = parts.second % 60;
  tm.tm_wday = DayOfWeek(parts);
  tm.tm_yday = DayOfYear(parts);
  tm.tm_isdst = -1;
  return tm;
}

void AppendPadded(CString& text, int value, std::size_t width) {
  const std::string digits = std::to_string(value);
  for (std::size_t length = digits.size(); length < width; ++length) text += '0';
  text += digits.c_str();
}

void AppendLocal(CString& text, const Parts& parts, char letter) {
  const char format[] = {'%', letter, '\0'};
  const std::tm tm = ToTm(parts);
  char buffer[256];
  text += CString(std::string_view(buffer, std::strftime(buffer, sizeof buffer, format, &tm)));
}

void AppendField(CString& text, const Parts& parts, char letter) {
  switch (letter) {
    case 'Y':
      return AppendPadded(text, static_cast<int>(parts.date.year()), 4);
    case 'y':  // the C library of one system leaves it empty before 1900
      return AppendPadded(text, static_cast<int>(parts.date.year()) % 100, 2);
    case 'm':
      return AppendPadded(text, MonthOf(parts), 2);
    case 'd':
      return AppendPadded(text, DayOf(parts), 2);
    case 'H':
      return AppendPadded(text, parts.second / 3600, 2);
    case 'M':
      return AppendPadded(text, parts.second / 60 % 60, 2);
    case 'S':
      return AppendPadded(text, parts.second % 60, 2);
    case '%':
      text += '%';
      return;
    default:
      // Some run-time libraries abort on an unknown letter.
      if (std::string_view("aAbBcIjpUwWxXy").find(letter) != std::string_view::npos) {
        return AppendLocal(text, parts, letter);
      }
      (text += '%') += letter;
  }
}

}  // namespace

COleDateTime::COleDateTime(double days) noexcept
    : m_dt(days), m_status(ToMoment(days) ? valid : invalid) {}

COleDateTime::COleDateTime(std::time_t time) : m_status(invalid) {
  const std::optional<std::tm> local = qv::platform::LocalTime(time);
  constexpr int kLastYear = 9999;
  if (!local || local->tm_year > kLastYear - 1900) return;
  SetDateTime(local->tm_year + 1900, local->tm_mon + 1, local->tm_mday, local->tm_hour,
              local->tm_min, std::min(local->tm_sec, 59));  // leap seconds are not supported
}

COleDateTime::COleDateTime(int year, int month, int day, int hour, int minute,
                           int second) noexcept {
  SetDateTime(year, month, day, hour, minute, second);
}

COleDateTime COleDateTime::GetCurrentTime() { return COleDateTime(std::time(nullptr)); }

int COleDateTime::SetDateTime(int year, int month, int day, int hour, int minute,
                              int second) noexcept {
  const auto within = [](int value, int low, int high) { return value >= low && value <= high; };
  m_dt = 0.0;
  m_status = invalid;
  if (!within(year, 100, 9999) || !within(month, 1, 12) || !within(day, 1, 31) ||
      !within(hour, 0, 23) || !within(minute, 0, 59) || !within(second, 0, 59)) {
    return 1;
  }
  const year_month_day date = std::chrono::year{year} / month / day;
  if (!date.ok()) return 1;
  const auto whole = static_cast<double>((sys_days{date} - kDayZero).count());
  const double fraction =
      (hour * 3600 + minute * 60 + second) / static_cast<double>(kSecondsPerDay);
  m_dt = whole < 0 ? whole - fraction : whole + fraction;
  m_status = valid;
  return 0;
}

int COleDateTime::GetYear() const noexcept {
  const auto parts = ToParts(*this);
  return parts ? static_cast<int>(parts->date.year()) : -1;
}

int COleDateTime::GetMonth() const noexcept {
  const auto parts = ToParts(*this);
  return parts ? MonthOf(*parts) : -1;
}

int COleDateTime::GetDay() const noexcept {
  const auto parts = ToParts(*this);
  return parts ? DayOf(*parts) : -1;
}

int COleDateTime::GetHour() const noexcept {
  const auto parts = ToParts(*this);
  return parts ? parts->second / 3600 : -1;
}

int COleDateTime::GetMinute() const noexcept {
  const auto parts = ToParts(*this);
  return parts ? parts->second / 60 % 60 : -1;
}

int COleDateTime::GetSecond() const noexcept {
  const auto parts = ToParts(*this);
  return parts ? parts->second % 60 : -1;
}

int COleDateTime::GetDayOfWeek() const noexcept {
  const auto parts = ToParts(*this);
  return parts ? DayOfWeek(*parts) + 1 : -1;
}

int COleDateTime::GetDayOfYear() const noexcept {
  const auto parts = ToParts(*this);
  return parts ? DayOfYear(*parts) + 1 : -1;
}

CString COleDateTime::Format(const char* format) const {
  CString text;
  const auto parts = ToParts(*this);
  if (!parts || format == nullptr) return text;
  for (const char* at = format; *at != '\0'; ++at) {
    if (*at == '%' && at[1] != '\0') {
      AppendField(text, *parts, *++at);
    } else {
      text += *at;
    }
  }
  return text;
}

bool operator==(const COleDateTime& a, const COleDateTime& b) noexcept {
  if (a.m_status != b.m_status) return false;
  return a.m_status != COleDateTime::valid || Linear(a.m_dt) == Linear(b.m_dt);
}

std::partial_ordering operator<=>(const COleDateTime& a, const COleDateTime& b) noexcept {
  if (a == b) return std::partial_ordering::equivalent;
  if (a.m_status != COleDateTime::valid || b.m_status != COleDateTime::valid) {
    return std::partial_ordering::unordered;
  }
  return Linear(a.m_dt) <=> Linear(b.m_dt);
}
