// Points in time (parsing, calendar, arithmetic with kOneDay, formatting) and the stopwatch.

#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "XAssert.h"
#include "XTestSupport.h"
#include "XTime.h"
#include "XTimer.h"

TEST(TimeTest, ParsesDatesAndTimesAsUTCAndRefusesBadText)
{
    EXPECT_EQ(XTime("1970-01-01", "00:00:00").GetUnixSeconds(), 0);
    EXPECT_EQ(XTime("1969-12-31", "23:59:59").GetUnixSeconds(), -1);
    EXPECT_EQ(XTime("2024-02-29", "12:34:56").GetUnixSeconds(), 1709210096);
    EXPECT_EQ(XTime("2000-01-01", "00:00:00").GetUnixSeconds(), 946684800);
    EXPECT_EQ(XTime("0001-01-01", "00:00:00").GetUnixSeconds(), -62135596800);
    EXPECT_EQ(XTime("9999-12-31", "23:59:59").GetUnixSeconds(), 253402300799);
    XTime fraction("2024-02-29", "12:34:56.5");
    EXPECT_EQ(fraction.GetUnixSeconds(), 1709210096);
    EXPECT_EQ(fraction.GetNanoseconds(), 500000000u);
    EXPECT_EQ(XTime("2024-02-29", "12:34:56.123456789").GetNanoseconds(), 123456789u);

    for (const char * date : {"2023-02-29", "2024-13-01", "2024-00-10", "2024-04-31", "2024-1-01", "24-01-01",
                              "2024/01/01", "", "0000-01-01", "2024-01-01 ", "2O24-01-01"})
        EXPECT_EQ(ErrorOf([&] { XTime(date, "12:00:00"); }), UInt32(kErrBadArgument)) << date;
    for (const char * time : {"24:00:00", "12:60:00", "12:00:60", "12:00", "12:00:00.", "12:00:00.1234567890",
                              "12:00:00x", " 12:00:00", "1:00:00", "12-00-00", "-1:00:00"})
        EXPECT_EQ(ErrorOf([&] { XTime("2024-01-01", time); }), UInt32(kErrBadArgument)) << time;
}

TEST(TimeTest, ArithmeticCarriesAcrossDaysMonthsYearsAndFractions)
{
    XTime time("2024-02-28", "23:30:00");
    EXPECT_EQ((time + XTime::kOneDay).GetDateString(), "2024-02-29");
    EXPECT_EQ((time + 2 * XTime::kOneDay).GetDateString(), "2024-03-01");
    EXPECT_EQ((XTime("2023-02-28", "00:00:00") + XTime::kOneDay).GetDateString(), "2023-03-01");
    EXPECT_EQ((XTime("1900-02-28", "00:00:00") + XTime::kOneDay).GetDateString(), "1900-03-01");
    EXPECT_EQ((XTime("2000-02-28", "00:00:00") + XTime::kOneDay).GetDateString(), "2000-02-29");
    XTime newYear = XTime("2023-12-31", "23:59:59") + 1.0;
    EXPECT_EQ(newYear.GetISOString(0), "2024-01-01T00:00:00Z");
    EXPECT_EQ((newYear - XTime::kOneDay).GetDateString(), "2023-12-31");
    XTime later = time;
    later += XTime::kOneDay;
    later -= XTime::kOneHour;
    EXPECT_EQ(later - time, 23 * XTime::kOneHour);
    EXPECT_EQ((XTime("2024-01-01", "00:00:00") - XTime("2000-01-01", "00:00:00")) / XTime::kOneDay, 8766.0);

    XTime start = XTime::FromUnixTime(100, 900000000);
    XTime carried = start + 0.25;
    EXPECT_EQ(carried.GetUnixSeconds(), 101);
    EXPECT_EQ(carried.GetNanoseconds(), 150000000u);
    XTime borrowed = start - 1.95;
    EXPECT_EQ(borrowed.GetUnixSeconds(), 98);
    EXPECT_EQ(borrowed.GetNanoseconds(), 950000000u);
    EXPECT_NEAR(carried - borrowed, 2.2, 1e-9);
    EXPECT_NEAR(borrowed - carried, -2.2, 1e-9);
    EXPECT_THROW(XTime::FromUnixTime(0, 1000000000), XInternalError);
}

TEST(TimeTest, ComparesFormatsAndSplitsIntoParts)
{
    XTime early("2024-02-29", "12:34:56.123");
    XTime late("2024-02-29", "12:34:56.124");
    EXPECT_TRUE(early == XTime("2024-02-29", "12:34:56.123"));
    EXPECT_TRUE(early < late);
    EXPECT_TRUE(late >= early);
    EXPECT_FALSE(late <= early);
    EXPECT_EQ(early.GetISOString(), "2024-02-29T12:34:56.123Z");
    EXPECT_EQ(early.GetISOString(0), "2024-02-29T12:34:56Z");
    EXPECT_EQ(early.GetISOString(9), "2024-02-29T12:34:56.123000000Z");
    EXPECT_EQ(early.GetTimeString(), "12:34:56");
    EXPECT_EQ(XTime::FromUnixTime(-1).GetISOString(0), "1969-12-31T23:59:59Z");

    XTime::XParts parts = early.GetParts();
    EXPECT_EQ(parts.itsYear, 2024);
    EXPECT_EQ(parts.itsMonth, 2u);
    EXPECT_EQ(parts.itsDay, 29u);
    EXPECT_EQ(parts.itsDayOfWeek, 4u); // a Thursday
    EXPECT_EQ(XTime::FromUnixTime(-1).GetParts().itsDayOfWeek, 3u);
    EXPECT_EQ(XTime::FromParts(parts), early);
    parts.itsDay = 30;
    EXPECT_THROW(XTime::FromParts(parts), XException);

    // Now is the system's time.
    std::time_t before = std::time(nullptr);
    XTime now;
    EXPECT_GE(now.GetUnixSeconds(), SInt64(before) - 1);
    EXPECT_LE(now.GetUnixSeconds(), SInt64(std::time(nullptr)) + 1);
}

TEST(TimeTest, CalendarAdvancesOneDayAtATime)
{
    // Checks the day arithmetic against the calendar rules, day by day over three centuries.
    auto daysInMonth = [](SInt32 aYear, UInt32 aMonth) -> UInt32 {
        static const UInt32 kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        bool leap = (aYear % 4 == 0 && aYear % 100 != 0) || aYear % 400 == 0;
        return aMonth == 2 && leap ? 29 : kDays[aMonth - 1];
    };
    XTime day("1800-01-01", "00:00:00");
    XTime::XParts previous = day.GetParts();
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
}

TEST(TimerTest, ElapsedTimeNeverGoesBackAndUnitsAgree)
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
    EXPECT_FALSE(timer.IsRunning());

    SInt64 firstNanoseconds = XTimer::GetNow(kTimerNanoseconds);
    SInt64 microseconds = XTimer::GetNow(kTimerMicroseconds);
    SInt64 milliseconds = XTimer::GetNow(kTimerMilliseconds);
    EXPECT_LE(firstNanoseconds / 1000, microseconds);
    EXPECT_LE(microseconds / 1000, milliseconds);
    EXPECT_LE(milliseconds, XTimer::GetNow(kTimerNanoseconds) / 1000000);

    XTimer every(0, kTimerMilliseconds);
    EXPECT_FALSE(every.CheckPeriod()); // starts the timer
    EXPECT_TRUE(every.IsRunning());
    EXPECT_TRUE(every.CheckPeriod());
    EXPECT_TRUE(every.IsPeriodElapsed());
    XTimer never(SInt64(1) << 40, kTimerSeconds);
    never.Start();
    EXPECT_FALSE(never.CheckPeriod());
    EXPECT_FALSE(never.IsPeriodElapsed());
    EXPECT_THROW(XTimer(-1, kTimerSeconds), XInternalError);
}
