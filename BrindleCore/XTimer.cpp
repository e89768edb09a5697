#include "XTimer.h"

#include "XAssert.h"

XTimer::XTimer(SInt64 aPeriod, XTimerMode aMode) : itsMode(aMode), itsPeriod(aPeriod)
{
    XAssert(aMode <= kTimerNanoseconds);
    XAssert(aPeriod >= 0);
}

void XTimer::Start()
{
    itsAccumulated = XClock::duration::zero();
    itsStart = XClock::now();
    itsPeriodStart = itsStart;
    itsRunning = true;
}

void XTimer::Stop()
{
    if (!itsRunning)
        return;
    itsAccumulated += XClock::now() - itsStart;
    itsRunning = false;
}

void XTimer::Resume()
{
    if (itsRunning)
        return;
    itsStart = XClock::now();
    itsRunning = true;
}

void XTimer::Reset()
{
    itsRunning = false;
    itsAccumulated = XClock::duration::zero();
}

SInt64 XTimer::GetElapsedTime() const
{
    XClock::duration elapsed = itsAccumulated;
    if (itsRunning)
        elapsed += XClock::now() - itsStart;
    return ToUnits(elapsed, itsMode);
}

double XTimer::GetElapsedSeconds() const
{
    XClock::duration elapsed = itsAccumulated;
    if (itsRunning)
        elapsed += XClock::now() - itsStart;
    return std::chrono::duration<double>(elapsed).count();
}

void XTimer::SetPeriod(SInt64 aPeriod)
{
    XAssert(aPeriod >= 0);
    itsPeriod = aPeriod;
}

bool XTimer::CheckPeriod()
{
    if (!itsRunning)
    {
        Start();
        return false;
    }
    XClock::time_point now = XClock::now();
    if (ToUnits(now - itsPeriodStart, itsMode) < itsPeriod)
        return false;
    itsPeriodStart = now;
    return true;
}

SInt64 XTimer::GetNow(XTimerMode aMode)
{
    return ToUnits(XClock::now().time_since_epoch(), aMode);
}

SInt64 XTimer::ToUnits(XClock::duration aDuration, XTimerMode aMode)
{
    using namespace std::chrono;
    switch (aMode)
    {
    case kTimerSeconds:
        return duration_cast<seconds>(aDuration).count();
    case kTimerMilliseconds:
        return duration_cast<milliseconds>(aDuration).count();
    case kTimerMicroseconds:
        return duration_cast<microseconds>(aDuration).count();
    case kTimerNanoseconds:
        break;
    }
    return duration_cast<nanoseconds>(aDuration).count();
}
