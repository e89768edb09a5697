#include "XTime.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>

#include "XAssert.h"
#include "XException.h"

namespace
{
constexpr SInt64 kSecondsPerDay = 86400;
constexpr SInt64 kNanosecondsPerSecond = 1000000000;

// Days since 1970-01-01 of a date of the proleptic Gregorian calendar, and back (the
// era-based rules of H. Hinnant's "chrono-compatible low-level date algorithms").
SInt64 DaysFromCivil(SInt64 aYear, UInt32 aMonth, UInt32 aDay)
{
    aYear -= aMonth <= 2 ? 1 : 0;
    SInt64 era = (aYear >= 0 ? aYear : aYear - 399) / 400;
    SInt64 yearOfEra = aYear - era * 400;
    SInt64 month = aMonth;
    SInt64 dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + aDay - 1;
    SInt64 dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

void CivilFromDays(SInt64 aDays, SInt64 & outYear, UInt32 & outMonth, UInt32 & outDay)
{
    aDays += 719468;
    SInt64 era = (aDays >= 0 ? aDays : aDays - 146096) / 146097;
    SInt64 dayOfEra = aDays - era * 146097;
    SInt64 yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    SInt64 dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    SInt64 shiftedMonth = (5 * dayOfYear + 2) / 153;
    outDay = UInt32(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1);
    outMonth = UInt32(shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9);
    outYear = yearOfEra + era * 400 + (outMonth <= 2 ? 1 : 0);
}

bool IsLeapYear(SInt64 aYear)
{
    return (aYear % 4 == 0 && aYear % 100 != 0) || aYear % 400 == 0;
}

UInt32 DaysInMonth(SInt64 aYear, UInt32 aMonth)
{
    static const UInt32 kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return aMonth == 2 && IsLeapYear(aYear) ? 29 : kDays[aMonth - 1];
}

// Reads aCount decimal digits of aText from aPosition on; false if any is not a digit.
bool ReadDigits(const std::string & aText, std::size_t aPosition, std::size_t aCount, UInt32 & outValue)
{
    if (aPosition + aCount > aText.size())
        return false;
    outValue = 0;
    for (std::size_t i = aPosition; i < aPosition + aCount; ++i)
    {
        if (aText[i] < '0' || aText[i] > '9')
            return false;
        outValue = outValue * 10 + UInt32(aText[i] - '0');
    }
    return true;
}

[[noreturn]] void Refuse(const std::string & aWhat, const std::string & aText)
{
    throw XException(kErrBadArgument, "bad " + aWhat + " \"" + aText + "\"");
}

void CheckParts(const XTime::XParts & aParts)
{
    if (aParts.itsYear < 1 || aParts.itsYear > 9999 || aParts.itsMonth < 1 || aParts.itsMonth > 12 ||
        aParts.itsDay < 1 || aParts.itsDay > DaysInMonth(aParts.itsYear, aParts.itsMonth) ||
        aParts.itsHour > 23 || aParts.itsMinute > 59 || aParts.itsSecond > 59 ||
        aParts.itsNanosecond >= kNanosecondsPerSecond)
        throw XException(kErrBadArgument, "no such date and time");
}
} // namespace

XTime::XTime()
{
    auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    SInt64 nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(sinceEpoch).count();
    itsSeconds = nanoseconds / kNanosecondsPerSecond;
    SInt64 fraction = nanoseconds % kNanosecondsPerSecond;
    if (fraction < 0)
    {
        fraction += kNanosecondsPerSecond;
        --itsSeconds;
    }
    itsNanoseconds = UInt32(fraction);
}

XTime::XTime(const XString & aDate, const XString & aTime)
{
    const std::string & date = aDate.GetStdString();
    const std::string & time = aTime.GetStdString();
    XParts parts;
    UInt32 year = 0;
    if (date.size() != 10 || date[4] != '-' || date[7] != '-' || !ReadDigits(date, 0, 4, year) ||
        !ReadDigits(date, 5, 2, parts.itsMonth) || !ReadDigits(date, 8, 2, parts.itsDay))
        Refuse("date", date);
    parts.itsYear = SInt32(year);
    if (time.size() < 8 || time[2] != ':' || time[5] != ':' || !ReadDigits(time, 0, 2, parts.itsHour) ||
        !ReadDigits(time, 3, 2, parts.itsMinute) || !ReadDigits(time, 6, 2, parts.itsSecond))
        Refuse("time", time);
    if (time.size() > 8)
    {
        std::size_t digits = time.size() - 9;
        if (time[8] != '.' || digits < 1 || digits > 9 ||
            !ReadDigits(time, 9, digits, parts.itsNanosecond))
            Refuse("time", time);
        for (std::size_t i = digits; i < 9; ++i)
            parts.itsNanosecond *= 10;
    }
    try
    {
        *this = FromParts(parts);
    }
    catch (const XException &)
    {
        Refuse("date and time", date + " " + time);
    }
}

XTime XTime::FromUnixTime(SInt64 aSeconds, UInt32 aNanoseconds)
{
    XAssert(aNanoseconds < kNanosecondsPerSecond);
    return XTime(aSeconds, aNanoseconds);
}

XTime XTime::FromParts(const XParts & aParts)
{
    CheckParts(aParts);
    SInt64 days = DaysFromCivil(aParts.itsYear, aParts.itsMonth, aParts.itsDay);
    SInt64 seconds = days * kSecondsPerDay + SInt64(aParts.itsHour) * 3600 +
                     SInt64(aParts.itsMinute) * 60 + aParts.itsSecond;
    return XTime(seconds, aParts.itsNanosecond);
}

XTime::XParts XTime::GetParts() const
{
    XParts parts;
    SInt64 days = itsSeconds / kSecondsPerDay;
    SInt64 secondOfDay = itsSeconds % kSecondsPerDay;
    if (secondOfDay < 0)
    {
        secondOfDay += kSecondsPerDay;
        --days;
    }
    SInt64 year = 0;
    CivilFromDays(days, year, parts.itsMonth, parts.itsDay);
    parts.itsYear = SInt32(year);
    parts.itsHour = UInt32(secondOfDay / 3600);
    parts.itsMinute = UInt32(secondOfDay / 60 % 60);
    parts.itsSecond = UInt32(secondOfDay % 60);
    parts.itsNanosecond = itsNanoseconds;
    SInt64 weekday = (days + 4) % 7; // 1970-01-01 was a Thursday
    parts.itsDayOfWeek = UInt32(weekday < 0 ? weekday + 7 : weekday);
    return parts;
}

XString XTime::GetDateString() const
{
    XParts parts = GetParts();
    char text[32];
    std::snprintf(text, sizeof(text), "%04d-%02u-%02u", parts.itsYear, parts.itsMonth, parts.itsDay);
    return XString(text);
}

XString XTime::GetTimeString() const
{
    XParts parts = GetParts();
    char text[32];
    std::snprintf(text, sizeof(text), "%02u:%02u:%02u", parts.itsHour, parts.itsMinute, parts.itsSecond);
    return XString(text);
}

XString XTime::GetISOString(UInt32 aDecimals) const
{
    XAssert(aDecimals <= 9);
    std::string text = GetDateString().GetStdString() + "T" + GetTimeString().GetStdString();
    if (aDecimals > 0)
    {
        char fraction[16];
        std::snprintf(fraction, sizeof(fraction), "%09u", itsNanoseconds);
        text += '.';
        text.append(fraction, aDecimals);
    }
    return XString(text + "Z");
}

XTime & XTime::operator+=(double aSeconds)
{
    XAssertText(std::isfinite(aSeconds) && std::fabs(aSeconds) < 1e15,
                "std::isfinite(aSeconds) && std::fabs(aSeconds) < 1e15");
    double whole = std::floor(aSeconds);
    SInt64 nanoseconds = SInt64(itsNanoseconds) + std::llround((aSeconds - whole) * 1e9);
    itsSeconds += SInt64(whole) + nanoseconds / kNanosecondsPerSecond;
    itsNanoseconds = UInt32(nanoseconds % kNanosecondsPerSecond);
    return *this;
}

XTime & XTime::operator-=(double aSeconds)
{
    return *this += -aSeconds;
}

XTime XTime::operator+(double aSeconds) const
{
    XTime result(*this);
    return result += aSeconds;
}

XTime XTime::operator-(double aSeconds) const
{
    XTime result(*this);
    return result -= aSeconds;
}

double XTime::operator-(const XTime & anEarlier) const
{
    return double(itsSeconds - anEarlier.itsSeconds) +
           double(SInt64(itsNanoseconds) - SInt64(anEarlier.itsNanoseconds)) * 1e-9;
}
