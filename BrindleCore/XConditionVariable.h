#pragma once
// A condition variable that works with XMutex. A waiter holds the mutex, checks its condition
// and calls SleepForInputOrSignal, which lets go of the mutex while it waits and holds it again
// when it returns, whatever the result.
//
// Signal(n) wakes the n waiters that have waited longest; each of them returns
// kWaitSignalled. A signal with nobody waiting is lost, as with any condition variable: waiters
// check their condition under the mutex before they sleep and again when they wake.
//
// "Input" is the stop request of the calling XThread: an alertable wait also returns when the
// worker is asked to stop (XThread::StopThread), so that a worker waiting for work can end.

#include <mutex>

#include "XMutex.h"
#include "XTypes.h"

class XThread;

enum XWaitResult : UInt32
{
    kWaitSignalled = 0,    // woken by Signal
    kWaitTimedOut = 1,     // the time-out ran out first
    kWaitStopRequested = 2 // alertable wait: the calling XThread was asked to stop
};

// Signal(kSignalAll) wakes every waiter.
inline constexpr UInt32 kSignalAll = 0xFFFFFFFFu;

class XConditionVariable
{
public:
    XConditionVariable();
    XConditionVariable(const XConditionVariable &) = delete;
    XConditionVariable & operator=(const XConditionVariable &) = delete;
    // Nobody may be waiting any more.
    ~XConditionVariable();

    // Wakes up to aCount waiters, longest waiting first (kSignalAll: all); answers how many
    // were woken.
    UInt32 Signal(UInt32 aCount = 1);
    UInt32 GetWaiterCount() const;

    // aMutex must be held exactly once by the caller (asserted): it is let go while waiting and
    // taken again, without time-out, before returning or throwing. aTimeOutMs: kInfiniteTimeOut
    // waits for ever, 0 only looks.
    // anAlertable: on an XThread, also return kWaitStopRequested when its stop is asked, at once
    // if it was asked before the call. Without it (and on other threads) stop requests are
    // ignored.
    // aThrowOnStop: instead of returning kWaitStopRequested, throw XStopThreadException (with
    // the mutex held again), so that the worker's run ends like at TestCancelCurrentThread.
    // A signal that arrives together with a stop or a time-out counts: kWaitSignalled.
    XWaitResult SleepForInputOrSignal(const XMutex & aMutex, UInt32 aTimeOutMs = kInfiniteTimeOut,
                                      bool anAlertable = true, bool aThrowOnStop = false);

private:
    friend class XThread;
    struct XWaiter;

    void Append(XWaiter * aWaiter);
    void Remove(XWaiter * aWaiter);
    // Wakes the waits of aThread so that they see its stop request.
    void WakeStoppedThread(const XThread * aThread);

    mutable std::mutex itsGuard; // guards the queue of waiters
    XWaiter * itsFirst = nullptr;
    XWaiter * itsLast = nullptr;
    UInt32 itsWaiterCount = 0;
};
