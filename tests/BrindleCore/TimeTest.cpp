// Points in time (parsing, the calendar, arithmetic with kOneDay) and the stopwatch.

#include <gtest/gtest.h>

#include <ctime>

#include "XAssert.h"
#include "XTestSupport.h"
#include "XTime.h"
#include "XTimer.h"

TEST(TimeTest, ParsesDatesAndTimesAsUTCAndRefusesBadText)
{
    EXPECT_EQ(XTime("1970-01-01", "00:00:00").GetUnixSeconds(), 0);
    EXPECT_EQ(XTime("1969-12-31", "23:59:59").GetUnixSeconds(), -1);
    EXPECT_EQ(XTime("2024-02-29", "12:34:56").GetUnixSeconds(), 1709210096);
    EXPECT_EQ(XTime("0001-01-01", "00:00:00").GetUnixSeconds(), -62135596800);
    EXPECT_EQ(XTime("9999-12-31", "23:59:59").GetUnixSeconds(), 253402300799);
    EXPECT_EQ(XTime("2024-02-29", "12:34:56.5").GetNanoseconds(), 500000000u);
    EXPECT_EQ(XTime("2024-02-29", "12:34:56.123456789").GetNanoseconds(), 123456789u);
    EXPECT_EQ(XTime("2024-02-29", "12:34:56.123").GetISOString(), "2024-02-29T12:34:56.123Z");
    EXPECT_EQ(XTime::FromUnixTime(-1).GetISOString(0), "1969-12-31T23:59:59Z");

    for (const char * date : {"2023-02-29", "2024-13-01", "2024-00-10", "2024-04-31", "2024-1-01", "24-01-01",
                              "2024/01/01", "", "0000-01-01", "2024-01-01 ", "2O24-01-01"})
        EXPECT_EQ(ErrorOf([&] { XTime(date, "12:00:00"); }), UInt32(kErrBadArgument)) << date;
    for (const char * time : {"24:00:00", "12:60:00", "12:00:60", "12:00", "12:00:00.", "12:00:00.1234567890",
                              "12:00:00x", " 12:00:00", "1:00:00", "12-00-00", "-1:00:00"})
        EXPECT_EQ(ErrorOf([&] { XTime("2024-01-01", time); }), UInt32(kErrBadArgument)) << time;

    // Now is the system's time.
    std::time_t before = std::time(nullptr);
    XTime now;
    EXPECT_GE(now.GetUnixSeconds(), SInt64(before) - 1);
    EXPECT_LE(now.GetUnixSeconds(), SInt64(std::time(nullptr)) + 1);
}

TEST(TimeTest, ArithmeticCarriesFractionsAndWholeDays)
{
    XTime start = XTime::FromUnixTime(100, 900000000);
    XTime carried = start + 0.25;
    EXPECT_EQ(carried.GetUnixSeconds(), 101);
    EXPECT_EQ(carried.GetNanoseconds(), 150000000u);
    XTime borrowed = start - 1.95;
    EXPECT_EQ(borrowed.GetUnixSeconds(), 98);
    EXPECT_EQ(borrowed.GetNanoseconds(), 950000000u);
    EXPECT_NEAR(borrowed - carried, -2.2, 1e-9);
    EXPECT_TRUE(borrowed < carried);
    EXPECT_THROW(XTime::FromUnixTime(0, 1000000000), XInternalError);

    XTime newYear = XTime("2023-12-31", "23:59:59") + 1.0;
    EXPECT_EQ(newYear.GetISOString(0), "2024-01-01T00:00:00Z");
    EXPECT_EQ((newYear - XTime::kOneDay + 2 * XTime::kOneHour).GetDateString(), "2023-12-31");
    EXPECT_EQ((XTime("2024-01-01", "00:00:00") - XTime("2000-01-01", "00:00:00")) / XTime::kOneDay, 8766.0);
}

TEST(TimeTest, CalendarAdvancesOneDayAtATime)
{
    // The day arithmetic against the calendar rules, day by day over three centuries (1900 is
    // no leap year, 2000 is).
    auto daysInMonth = [](SInt32 aYear, UInt32 aMonth) -> UInt32 {
        static const UInt32 kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        bool leap = (aYear % 4 == 0 && aYear % 100 != 0) || aYear % 400 == 0;
        return aMonth == 2 && leap ? 29 : kDays[aMonth - 1];
    };
    XTime day("1800-01-01", "00:00:00");
    XTime::XParts previous = day.GetParts();
    EXPECT_EQ(previous.itsDayOfWeek, 3u); // a Wednesday
    for (int i = 0; i < 300 * 366; ++i)
    {
        day += XTime::kOneDay;
        XTime::XParts parts = day.GetParts();
        if (previous.itsDay < daysInMonth(previous.itsYear, previous.itsMonth))
        {
            ASSERT_EQ(parts.itsDay, previous.itsDay + 1);
            ASSERT_EQ(parts.itsMonth, previous.itsMonth);
        }
        else
        {
            ASSERT_EQ(parts.itsDay, 1u);
            ASSERT_EQ(parts.itsMonth, previous.itsMonth % 12 + 1);
            ASSERT_EQ(parts.itsYear, previous.itsYear + (previous.itsMonth == 12 ? 1 : 0));
        }
        ASSERT_EQ(parts.itsDayOfWeek, (previous.itsDayOfWeek + 1) % 7);
        ASSERT_EQ(XTime::FromParts(parts), day);
        previous = parts;
    }
    previous.itsMonth = 2;
    previous.itsDay = 30;
    EXPECT_THROW(XTime::FromParts(previous), XException);
}

TEST(TimerTest, ElapsedTimeNeverGoesBack)
{
    XTimer timer(0, kTimerNanoseconds);
    EXPECT_EQ(timer.GetElapsedTime(), 0);
    timer.Start();
    SInt64 last = timer.GetElapsedTime();
    for (int i = 0; i < 10000; ++i)
    {
        SInt64 now = timer.GetElapsedTime();
        ASSERT_GE(now, last);
        last = now;
    }
    timer.Stop();
    SInt64 stopped = timer.GetElapsedTime();
    EXPECT_GE(stopped, last);
    EXPECT_EQ(timer.GetElapsedTime(), stopped); // frozen while stopped
    timer.Resume();
    timer.Stop();
    EXPECT_GE(timer.GetElapsedTime(), stopped); // a resume adds to it
    timer.Reset();
    EXPECT_EQ(timer.GetElapsedTime(), 0);
    EXPECT_LE(XTimer::GetNow(kTimerMicroseconds) / 1000, XTimer::GetNow(kTimerMilliseconds));
    EXPECT_THROW(XTimer(-1, kTimerSeconds), XInternalError);
}
