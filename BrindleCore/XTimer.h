#pragma once
// A stopwatch over the steady clock (never goes back, unaffected by changes of the wall clock).
// The mode gives the unit of every time the timer takes or returns: the period and
// GetElapsedTime. A timer can also tell when a period has passed, the usual way of throttling
// work that should run "at most every so often" (redraws, reports).
//
//     XTimer timer(0, kTimerMicroseconds);
//     timer.Start();
//     ...
//     timer.Stop();
//     SInt64 spent = timer.GetElapsedTime();   // microseconds
//
// Start begins a measurement from zero; Stop freezes the elapsed time; Resume continues a
// stopped measurement, adding to it. A timer object serves one thread at a time.

#include <chrono>

#include "XTypes.h"

enum XTimerMode : UInt32
{
    kTimerSeconds = 0,
    kTimerMilliseconds = 1,
    kTimerMicroseconds = 2,
    kTimerNanoseconds = 3
};

class XTimer
{
public:
    // aPeriod in the unit of aMode, zero or more (asserted). The timer is made stopped, at zero.
    explicit XTimer(SInt64 aPeriod = 0, XTimerMode aMode = kTimerMilliseconds);

    void Start();
    void Stop();
    void Resume();
    // Stops and sets the elapsed time to zero.
    void Reset();
    bool IsRunning() const { return itsRunning; }

    // Time measured so far, truncated to whole units of the mode; runs on while the timer runs.
    SInt64 GetElapsedTime() const;
    double GetElapsedSeconds() const;

    XTimerMode GetMode() const { return itsMode; }
    SInt64 GetPeriod() const { return itsPeriod; }
    void SetPeriod(SInt64 aPeriod);

    // True when the elapsed time has reached the period.
    bool IsPeriodElapsed() const { return GetElapsedTime() >= itsPeriod; }
    // True at most once a period: when a period has passed since Start or since the last call
    // that answered true (which then begins the next period). Starts the timer if it is stopped.
    bool CheckPeriod();

    // The steady clock now, in the unit of aMode (from an arbitrary fixed origin).
    static SInt64 GetNow(XTimerMode aMode);

private:
    using XClock = std::chrono::steady_clock;

    static SInt64 ToUnits(XClock::duration aDuration, XTimerMode aMode);

    XTimerMode itsMode;
    SInt64 itsPeriod;
    bool itsRunning = false;
    XClock::time_point itsStart{};        // start of the running stretch
    XClock::duration itsAccumulated{};   // time of stretches before a Stop
    XClock::time_point itsPeriodStart{}; // start of the present period of CheckPeriod
};
