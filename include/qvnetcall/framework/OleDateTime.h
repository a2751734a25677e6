#pragma once

#include <compare>
#include <ctime>

#include "qvnetcall/Export.h"
#include "qvnetcall/framework/String.h"

// A well-known system header makes a macro of this name.
#undef GetCurrentTime

/// A date and a time of day, without a time zone: the number of days since 1899-12-30, from
/// 0100-01-01 to 9999-12-31. The whole part counts days, and the fraction always counts forward
/// within the day, so -1.25 is 1899-12-29 06:00. It is read to the nearest second. A plain value:
/// one thread at a time may use an object, and different objects are independent.
class QVNETCALL_API COleDateTime {
 public:
  enum DateTimeStatus { valid = 0, invalid = 1, null = 2 };

  /// The valid date 0.0, which stands for "no date" in a result set.
  COleDateTime() noexcept = default;
  /// The date `days`. If that is outside the range or not a number, it is kept as the value, and
  /// the status is invalid.
  COleDateTime(double days) noexcept;  // NOLINT: implicit, as hosts know it
  /// The local time of `time`; invalid if that is outside the range.
  explicit COleDateTime(std::time_t time);
  /// The date and time that SetDateTime sets; invalid, with the value 0.0, where it returns 1.
  COleDateTime(int year, int month, int day, int hour, int minute, int second) noexcept;

  /// Returns the current local time, to the second. Any thread may call it.
  [[nodiscard]] static COleDateTime GetCurrentTime();

  /// Sets date and time. If the year is 100 to 9999, the calendar has the day, the hour is 0 to 23,
  /// and minute and second are 0 to 59, the status becomes valid and the result is 0. Otherwise the
  /// value becomes 0.0, the status becomes invalid, and the result is 1.
  int SetDateTime(int year, int month, int day, int hour, int minute, int second) noexcept;

  /// Return a part of the date, which is rounded to the nearest second, or -1 if it is not valid.
  [[nodiscard]] int GetYear() const noexcept;
  [[nodiscard]] int GetMonth() const noexcept;
  [[nodiscard]] int GetDay() const noexcept;
  [[nodiscard]] int GetHour() const noexcept;
  [[nodiscard]] int GetMinute() const noexcept;
  [[nodiscard]] int GetSecond() const noexcept;
  /// Returns the day of the week, from 1 for Sunday to 7 for Saturday, or -1 if the date is not
  /// valid.
  [[nodiscard]] int GetDayOfWeek() const noexcept;
  /// Returns the day of the year, from 1 for the first of January, or -1 if the date is not valid.
  [[nodiscard]] int GetDayOfYear() const noexcept;

  /// Return and set the status; setting it does not change the value.
  [[nodiscard]] DateTimeStatus GetStatus() const noexcept { return m_status; }
  void SetStatus(DateTimeStatus status) noexcept { m_status = status; }
  /// Returns the number of days, whatever the status.
  [[nodiscard]] explicit operator double() const noexcept { return m_dt; }

  /// Returns the date as `format` says, which is that of strftime: %Y (four digits), %y (two), %m,
  /// %d, %H, %M, %S and %% are the same in every locale; %a, %A, %b, %B, %c, %I, %j, %p, %U, %w,
  /// %W, %x and %X follow the locale; anything else is copied. Returns an empty text if the date is
  /// not valid or `format` is null.
  [[nodiscard]] CString Format(const char* format) const;

  /// Valid dates are compared by the moment that they stand for. A date that is not valid equals
  /// those of the same status; otherwise it is unordered.
  friend QVNETCALL_API bool operator==(const COleDateTime& a, const COleDateTime& b) noexcept;
  friend QVNETCALL_API std::partial_ordering operator<=>(const COleDateTime& a,
                                                         const COleDateTime& b) noexcept;

  double m_dt = 0.0;
  DateTimeStatus m_status = valid;
};
