#include "XConditionVariable.h"

#include <chrono>
#include <condition_variable>

#include "XAssert.h"
#include "XStopThreadException.h"
#include "XThread.h"

// One waiting call, on the waiter's stack, queued in the order of arrival. Each waiter has a
// condition of its own, so that Signal(1) wakes one thread and not all.
struct XConditionVariable::XWaiter
{
    XWaiter * itsPrevious = nullptr;
    XWaiter * itsNext = nullptr;
    const XThread * itsThread = nullptr; // set for alertable waits on an XThread
    bool itsSignalled = false;
    std::condition_variable itsWake;
};

XConditionVariable::XConditionVariable() = default;

XConditionVariable::~XConditionVariable() = default;

void XConditionVariable::Append(XWaiter * aWaiter)
{
    aWaiter->itsPrevious = itsLast;
    aWaiter->itsNext = nullptr;
    if (itsLast != nullptr)
        itsLast->itsNext = aWaiter;
    else
        itsFirst = aWaiter;
    itsLast = aWaiter;
    ++itsWaiterCount;
}

void XConditionVariable::Remove(XWaiter * aWaiter)
{
    if (aWaiter->itsPrevious != nullptr)
        aWaiter->itsPrevious->itsNext = aWaiter->itsNext;
    else
        itsFirst = aWaiter->itsNext;
    if (aWaiter->itsNext != nullptr)
        aWaiter->itsNext->itsPrevious = aWaiter->itsPrevious;
    else
        itsLast = aWaiter->itsPrevious;
    aWaiter->itsPrevious = nullptr;
    aWaiter->itsNext = nullptr;
    --itsWaiterCount;
}

UInt32 XConditionVariable::Signal(UInt32 aCount)
{
    std::lock_guard<std::mutex> guard(itsGuard);
    UInt32 woken = 0;
    while (woken < aCount && itsFirst != nullptr)
    {
        XWaiter * waiter = itsFirst;
        Remove(waiter);
        waiter->itsSignalled = true;
        // Told under the guard: the waiter cannot leave (and its node vanish) before.
        waiter->itsWake.notify_one();
        ++woken;
    }
    return woken;
}

UInt32 XConditionVariable::GetWaiterCount() const
{
    std::lock_guard<std::mutex> guard(itsGuard);
    return itsWaiterCount;
}

void XConditionVariable::WakeStoppedThread(const XThread * aThread)
{
    std::lock_guard<std::mutex> guard(itsGuard);
    for (XWaiter * waiter = itsFirst; waiter != nullptr; waiter = waiter->itsNext)
    {
        if (waiter->itsThread == aThread)
            waiter->itsWake.notify_one();
    }
}

XWaitResult XConditionVariable::SleepForInputOrSignal(const XMutex & aMutex, UInt32 aTimeOutMs,
                                                      bool anAlertable, bool aThrowOnStop)
{
    XAssertText(aMutex.GetLockDepth() == 1, "the mutex is held exactly once by the caller");
    XThread * thread = anAlertable ? XThread::GetCurrentThread() : nullptr;

    // Registered before the stop request is looked at: XThread::RequestStop sets the request
    // first and then wakes the registered wait, so one of the two sees the other.
    struct XRegistration
    {
        XThread * itsThread;
        XRegistration(XThread * aThread, XConditionVariable * aCondition) : itsThread(aThread)
        {
            if (itsThread != nullptr)
                itsThread->BeginAlertableWait(aCondition);
        }
        XRegistration(const XRegistration &) = delete;
        XRegistration & operator=(const XRegistration &) = delete;
        ~XRegistration()
        {
            if (itsThread != nullptr)
                itsThread->EndAlertableWait();
        }
    };

    XWaitResult result = kWaitSignalled;
    {
        XRegistration registration(thread, this);
        XWaiter waiter;
        waiter.itsThread = thread;
        std::unique_lock<std::mutex> guard(itsGuard);
        // Queued before the mutex is let go: a signaller that takes the mutex next finds us.
        Append(&waiter);
        aMutex.Unlock();
        auto ready = [&waiter, thread] {
            return waiter.itsSignalled || (thread != nullptr && thread->IsStopRequested());
        };
        bool done = true;
        if (aTimeOutMs == kInfiniteTimeOut)
            waiter.itsWake.wait(guard, ready);
        else
            done = waiter.itsWake.wait_until(
                guard, std::chrono::steady_clock::now() + std::chrono::milliseconds(aTimeOutMs),
                ready);
        if (!waiter.itsSignalled)
        {
            Remove(&waiter);
            result = done ? kWaitStopRequested : kWaitTimedOut;
        }
    }
    aMutex.Lock(kInfiniteTimeOut, true);
    if (result == kWaitStopRequested && aThrowOnStop)
        throw XStopThreadException(thread->GetThreadName().GetStdString());
    return result;
}
