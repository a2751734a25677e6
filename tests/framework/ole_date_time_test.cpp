#include "qvnetcall/framework/OleDateTime.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <limits>

namespace {

constexpr const char* kWhole = "%Y-%m-%d %H:%M:%S";

TEST(OleDateTime, CountsForwardWithinTheDayOnBothSidesOfDayZero) {
  const struct {
    double value;
    const char* text;
    int day_of_week;
  } cases[] = {
      {0.0, "1899-12-30 00:00:00", 7},       {-0.25, "1899-12-30 06:00:00", 7},
      {-1.25, "1899-12-29 06:00:00", 6},     {1.75, "1899-12-31 18:00:00", 1},
      {60.0, "1900-02-28 00:00:00", 4},      {61.0, "1900-03-01 00:00:00", 5},
      {25569.0, "1970-01-01 00:00:00", 5},   {-657434.0, "0100-01-01 00:00:00", 6},
      {-657434.5, "0100-01-01 12:00:00", 6}, {2958465.5, "9999-12-31 12:00:00", 6},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(COleDateTime(c.value).Format(kWhole), c.text);
    EXPECT_EQ(COleDateTime(c.value).GetDayOfWeek(), c.day_of_week) << c.text;
  }
  EXPECT_EQ(COleDateTime(1899, 12, 29, 6, 0, 0).m_dt, -1.25);
  EXPECT_EQ(COleDateTime(1.5).Format("%y|%j|%I|%%|%Q|%"), "99|365|12|%|%Q|%");
}

TEST(OleDateTime, KeepsEverySecondOfADay) {
  const int days[][3] = {{100, 1, 1},    {100, 12, 31},  {1600, 2, 29}, {1899, 12, 29},
                         {1899, 12, 30}, {1899, 12, 31}, {1900, 2, 28}, {1900, 3, 1},
                         {2000, 2, 29},  {2024, 2, 29},  {9999, 12, 31}};
  for (const auto& [y, m, d] : days) {
    int lost = 0;
    for (int s = 0; s < 86400; ++s) {
      const COleDateTime set(y, m, d, s / 3600, s / 60 % 60, s % 60);
      const COleDateTime got(set.m_dt);
      const bool date = got.GetYear() == y && got.GetMonth() == m && got.GetDay() == d;
      const int second = got.GetHour() * 3600 + got.GetMinute() * 60 + got.GetSecond();
      if (!date || second != s) ++lost;
    }
    EXPECT_EQ(lost, 0) << y << '-' << m << '-' << d;
    CString expected;
    expected.Format("%04d-%02d-%02d 23:59:59", y, m, d);
    EXPECT_EQ(COleDateTime(y, m, d, 23, 59, 59).Format(kWhole), expected);
  }
}

TEST(OleDateTime, RoundsToTheNearestSecondAndCarries) {
  const double second = 1.0 / 86400;
  EXPECT_EQ(COleDateTime(1 + 86399.4 * second).Format(kWhole), "1899-12-31 23:59:59");
  EXPECT_EQ(COleDateTime(1 + 86399.6 * second).Format(kWhole), "1900-01-01 00:00:00");
  EXPECT_EQ(COleDateTime(-1 - 86399.6 * second).Format(kWhole), "1899-12-30 00:00:00");
  EXPECT_EQ(COleDateTime(-657434 - 86399.6 * second).Format(kWhole), "0100-01-02 00:00:00");
  EXPECT_EQ(COleDateTime(2958465 + 86399.6 * second).Format(kWhole), "");
}

TEST(OleDateTime, RefusesWhatIsNoDate) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (double value : {std::nan(""), infinity, -infinity, 1e300, -1e300, 2958466.0, -657435.0}) {
    COleDateTime date(value);
    EXPECT_EQ(date.GetStatus(), COleDateTime::invalid) << value;
    date.SetStatus(COleDateTime::valid);
    EXPECT_TRUE(date.Format(kWhole).IsEmpty());
    EXPECT_EQ(date.GetYear(), -1);
  }
  const int big = std::numeric_limits<int>::max();
  const int fields[][6] = {
      {99, 1, 1, 0, 0, 0},    {10000, 1, 1, 0, 0, 0}, {1900, 2, 29, 0, 0, 0},
      {2024, 0, 1, 0, 0, 0},  {2024, 4, 31, 0, 0, 0}, {2024, 1, 257, 0, 0, 0},
      {2024, 1, 1, 24, 0, 0}, {2024, 1, 1, 0, 0, -1}, {67560, 1, 1, 0, big, big}};
  for (const auto& [y, m, d, h, n, s] : fields) {
    COleDateTime date(2024, 1, 1, 0, 0, 0);
    EXPECT_EQ(date.SetDateTime(y, m, d, h, n, s), 1) << y << ' ' << m << ' ' << d;
    EXPECT_TRUE(date.m_status == COleDateTime::invalid && date.m_dt == 0.0);
  }
  EXPECT_EQ(COleDateTime(std::numeric_limits<std::time_t>::max()).GetStatus(),
            COleDateTime::invalid);
}

TEST(OleDateTime, TakesATimeAsLocalTime) {
  for (std::time_t time : {std::time_t{0}, std::time_t{86400}, std::time_t{1700000000}}) {
    char local[20];
    std::strftime(local, sizeof local, kWhole, std::localtime(&time));
    EXPECT_EQ(COleDateTime(time).Format(kWhole), local);
  }
  EXPECT_EQ(COleDateTime::GetCurrentTime().GetStatus(), COleDateTime::valid);
}

// A host may be reading that result on another thread.
TEST(OleDateTime, LeavesTheSharedResultOfLocaltimeAlone) {
  const std::time_t time = 86400;
  const std::tm* const shared = std::localtime(&time);
  ASSERT_EQ(shared->tm_year, 70);
  EXPECT_EQ(COleDateTime(std::time_t{1700000000}).GetYear(), 2023);
  EXPECT_EQ(COleDateTime::GetCurrentTime().GetStatus(), COleDateTime::valid);
  EXPECT_EQ(shared->tm_year, 70);
}

TEST(OleDateTime, ComparesByTheMoment) {
  EXPECT_LT(COleDateTime(-1.25), COleDateTime(-1.75));
  EXPECT_LT(COleDateTime(-1.75), COleDateTime(0.0));
  EXPECT_EQ(COleDateTime(-0.25), COleDateTime(0.25));
  const COleDateTime none(std::nan(""));
  EXPECT_FALSE(none < COleDateTime() || none > COleDateTime() || none == COleDateTime());
  EXPECT_TRUE(none == COleDateTime(1e300));
}

}  // namespace
