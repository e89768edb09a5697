#pragma once
// A point in time: whole seconds since 1970-01-01 00:00:00 UTC (Unix time, without leap
// seconds) and a fraction in nanoseconds. Dates and times in texts are always UTC.
//
// Lengths of time are plain seconds (double): a time plus or minus seconds is a time, and the
// difference of two times is seconds. The constants kOneDay, kOneHour and kOneMinute are such
// lengths, so that
//     XTime tomorrow = XTime() + XTime::kOneDay;
//     double days = (later - earlier) / XTime::kOneDay;
// read as they are meant. Texts and parts cover the years 1 to 9999.

#include <compare>

#include "XString.h"
#include "XTypes.h"

class XTime
{
public:
    static constexpr double kOneMinute = 60.0;
    static constexpr double kOneHour = 3600.0;
    static constexpr double kOneDay = 86400.0;

    // A time split into its calendar parts (UTC).
    struct XParts
    {
        SInt32 itsYear = 1970;
        UInt32 itsMonth = 1;  // 1 to 12
        UInt32 itsDay = 1;    // 1 to 31
        UInt32 itsHour = 0;   // 0 to 23
        UInt32 itsMinute = 0; // 0 to 59
        UInt32 itsSecond = 0; // 0 to 59
        UInt32 itsNanosecond = 0;
        UInt32 itsDayOfWeek = 4; // 0 Sunday to 6 Saturday (out only)
    };

    // Now.
    XTime();
    // A date "YYYY-MM-DD" and a time "HH:MM:SS", optionally with a fraction "HH:MM:SS.fff" of up
    // to nine digits, both UTC. XException kErrBadArgument for any other text or a date or time
    // that does not exist (2023-02-29, 24:00:00).
    XTime(const XString & aDate, const XString & aTime);
    XTime(const XTime &) = default;
    XTime & operator=(const XTime &) = default;

    // aNanoseconds below one billion (asserted).
    static XTime FromUnixTime(SInt64 aSeconds, UInt32 aNanoseconds = 0);
    // From calendar parts (the day of the week is ignored); XException kErrBadArgument when
    // they do not make a date and time of the years 1 to 9999.
    static XTime FromParts(const XParts & aParts);

    SInt64 GetUnixSeconds() const { return itsSeconds; }
    UInt32 GetNanoseconds() const { return itsNanoseconds; }
    XParts GetParts() const;

    // "YYYY-MM-DD", "HH:MM:SS", and "YYYY-MM-DDTHH:MM:SS.fffZ" with aDecimals digits of the
    // fraction (0 to 9, truncated; none and no point for 0).
    XString GetDateString() const;
    XString GetTimeString() const;
    XString GetISOString(UInt32 aDecimals = 3) const;

    // Seconds may be negative and fractional; they must be finite (asserted).
    XTime & operator+=(double aSeconds);
    XTime & operator-=(double aSeconds);
    XTime operator+(double aSeconds) const;
    XTime operator-(double aSeconds) const;
    // Seconds from anEarlier to this time.
    double operator-(const XTime & anEarlier) const;

    friend bool operator==(const XTime &, const XTime &) = default;
    friend std::strong_ordering operator<=>(const XTime &, const XTime &) = default;

private:
    XTime(SInt64 aSeconds, UInt32 aNanoseconds) : itsSeconds(aSeconds), itsNanoseconds(aNanoseconds) {}

    SInt64 itsSeconds;
    UInt32 itsNanoseconds;
};
