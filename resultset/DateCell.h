// Dates as the cells of a result set.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "qvnetcall/framework/OleDateTime.h"
#include "qvnetcall/framework/String.h"

namespace qv {

// Year, month, day, hour, minute, second.
using DateFields = std::array<std::int32_t, 6>;

// What a recordset file or a driver says of a date, in eight bytes: the fields as they were written
// and the milliseconds, rather than a number of days. A number of days cannot tell a missing date
// from the day zero, and does not keep dates that are outside its range or on no calendar.
class DateCell {
 public:
  // No date.
  DateCell() = default;
  // Fields outside 0 to 9999 for the year, and 0 to 99 for the others, are not kept: the cell is
  // then a date that is not valid.
  explicit DateCell(const DateFields& fields, std::int32_t millisecond = 0);
  // The fields of a date without a time, which the platform's calls do not take for a date.
  [[nodiscard]] static DateCell DateOnly(const DateFields& fields);
  // A date that is not valid, without fields.
  [[nodiscard]] static DateCell Unreadable();
  // The fields of `date`.
  [[nodiscard]] static DateCell Of(const COleDateTime& date);

  // Returns the date as the platform's calls give it, to the second: the date 0.0 if there is none,
  // and an invalid date if the calendar does not have it.
  [[nodiscard]] COleDateTime Date() const;

  // Returns "YYYY-MM-DD HH:MM:SS", with ".mmm" unless the milliseconds are 0, and only
  // "YYYY-MM-DD" for a date without a time. Returns an empty text if there is no date.
  [[nodiscard]] CString Text() const;

 private:
  [[nodiscard]] bool HasFields() const;
  [[nodiscard]] DateFields Fields() const;

  std::uint64_t bits_ = 0;
};

struct DateValue {
  DateCell date;
  // The length of the date without padding, "%d-%d-%d %d-%d-%d"; 0 if there is none.
  std::int32_t display_length = 0;
};

[[nodiscard]] DateValue MakeDate(const DateFields& fields, std::int32_t millisecond);

// Parses a date and time at fixed positions of a text of at least 19 characters, with the first
// three digits of a fraction of a second if one follows; or a date alone, of ten characters, which
// has no display length. The date of any other text is none. Up to kValueSlack bytes after the text
// may be read.
[[nodiscard]] DateValue ParseDate(std::string_view text);

}  // namespace qv
