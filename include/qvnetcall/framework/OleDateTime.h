#pragma once

#include <compare>
#include <ctime>

#include "qvnetcall/Export.h"
#include "qvnetcall/framework/String.h"

// A well-known system header makes a macro of this name.
#undef GetCurrentTime

/// A date with its time of day, without a zone: days since 1899-12-30, from 0100-01-01 to
/// 9999-12-31. The whole part counts days, the fraction always counts forward within the day, so
/// -1.25 is 1899-12-29 06:00. It is read to the nearest second. A plain value: different objects
/// may be used by different threads.
class QVNETCALL_API COleDateTime {
 public:
  enum DateTimeStatus { valid = 0, invalid = 1, null = 2 };

  /// 0.0, valid: what stands for "no date" in a result set.
  COleDateTime() noexcept = default;
  /// Invalid when `days` is outside the range or not a number; the value is kept.
  COleDateTime(double days) noexcept;  // NOLINT: implicit, as hosts know it
  /// The local time of `time`; invalid outside the range.
  explicit COleDateTime(std::time_t time);
  /// As SetDateTime.
  COleDateTime(int year, int month, int day, int hour, int minute, int second) noexcept;

  /// Now, in local time, to the second.
  [[nodiscard]] static COleDateTime GetCurrentTime();

  /// Year 100..9999, a day that the calendar has, hour 0..23, minute and second 0..59: sets the
  /// value, status valid, and gives 0. Else the value is 0.0, the status invalid, and the result 1.
  int SetDateTime(int year, int month, int day, int hour, int minute, int second) noexcept;

  /// The parts, rounded to the nearest second; -1 for a date that is not valid.
  [[nodiscard]] int GetYear() const noexcept;
  [[nodiscard]] int GetMonth() const noexcept;
  [[nodiscard]] int GetDay() const noexcept;
  [[nodiscard]] int GetHour() const noexcept;
  [[nodiscard]] int GetMinute() const noexcept;
  [[nodiscard]] int GetSecond() const noexcept;
  /// 1 is Sunday, 7 Saturday.
  [[nodiscard]] int GetDayOfWeek() const noexcept;
  /// 1 is the first of January.
  [[nodiscard]] int GetDayOfYear() const noexcept;

  [[nodiscard]] DateTimeStatus GetStatus() const noexcept { return m_status; }
  void SetStatus(DateTimeStatus status) noexcept { m_status = status; }
  [[nodiscard]] explicit operator double() const noexcept { return m_dt; }

  /// `format` as strftime reads it: %Y (four digits) %m %d %H %M %S %% whatever the locale, %a %A
  /// %b %B %c %I %j %p %U %w %W %x %X %y by the locale; anything else stands as it is. Empty for a
  /// date that is not valid.
  [[nodiscard]] CString Format(const char* format) const;

  /// Valid dates compare by the moment they stand for. Dates that are not valid equal those of the
  /// same status and are otherwise without order.
  friend QVNETCALL_API bool operator==(const COleDateTime& a, const COleDateTime& b) noexcept;
  friend QVNETCALL_API std::partial_ordering operator<=>(const COleDateTime& a,
                                                         const COleDateTime& b) noexcept;

  double m_dt = 0.0;
  DateTimeStatus m_status = valid;
};
