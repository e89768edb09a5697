#pragma once
// A named worker thread. A subclass puts its work in RunSelf; StartThread runs it on a new
// operating-system thread. Work ends by returning from RunSelf, or, after StopThread, at the
// worker's next XThread::TestCancelCurrentThread, which throws XStopThreadException.
//
// Whatever escapes RunSelf is caught where the thread ends: the process goes on, and the thread
// records how it ended (GetThreadOutcome), a return code and a message:
//   RunSelf returned                 kThreadReturned, the value returned, no message
//   a stop (XStopThreadException)    kThreadStopped, kErrThreadStopped (1010)
//   another XException               kThreadFailed, its number and message
//   any other exception              kThreadFailed, kErrGeneric (1000) and its what()
//
// Stop requests are cooperative: long loops call TestCancelCurrentThread (a thread-local load
// and an atomic load when nothing is asked), and waits in XConditionVariable that are alertable
// return early. AsyncStopThreadSelf is the place for a subclass to break other blocking calls.
//
// Lifetime. The destructor of a thread that still runs asks it to stop and joins it. By then the
// subclass part is already destroyed, so a subclass whose RunSelf uses its own members calls
// StopThread (or WaitForTerminate) in its own destructor. An auto-delete thread deletes itself
// when it ends; after StartThread nobody else may delete it or wait for it, and the caller may
// call StopThread on it only while it knows by other means that the thread has not ended.

#include <atomic>
#include <condition_variable>
#include <mutex>

#include <pthread.h>

#include "XMutex.h"
#include "XString.h"
#include "XTypes.h"

class XConditionVariable;

// Scheduling priority of a worker. Below normal lowers the thread's nice value (idle 19,
// lowest 10, below normal 5); above normal tries to raise it (-5, -10, -20), which needs the
// right to do so and is left as it is without it.
enum XThreadPriority : SInt32
{
    kThreadPriorityIdle = -15,
    kThreadPriorityLowest = -2,
    kThreadPriorityBelowNormal = -1,
    kThreadPriorityNormal = 0,
    kThreadPriorityAboveNormal = 1,
    kThreadPriorityHighest = 2,
    kThreadPriorityTimeCritical = 15
};

// How a worker's run ended.
enum XThreadOutcome : UInt32
{
    kThreadNotEnded = 0, // not started, or still running
    kThreadReturned = 1, // RunSelf returned
    kThreadStopped = 2,  // a stop request ended it (XStopThreadException)
    kThreadFailed = 3    // another exception escaped RunSelf or FinishThreadSelf
};

// The kernel's identifier of a thread (as shown by ps and debuggers); the main thread's equals
// the process identifier.
using XThreadID = UInt64;

class XThread
{
public:
    // aName names the thread for debuggers and ps (its first 15 bytes). aStackSize in bytes,
    // 0 for the system's default; a smaller size than the system's minimum is raised to it.
    // anAutoDelete: the object deletes itself when its thread ends.
    XThread(const XString & aName, XThreadPriority aPriority = kThreadPriorityNormal,
            UInt32 aStackSize = 0, bool anAutoDelete = false);
    XThread(const XThread &) = delete;
    XThread & operator=(const XThread &) = delete;
    virtual ~XThread();

    // Runs RunSelf on a new thread. A thread object runs once (asserted). XException kErrThread
    // (1017) if the system cannot make the thread; the object is then unchanged (and an
    // auto-delete object is not deleted).
    void StartThread();
    // Asks the thread to stop: sets the stop request, calls Stopping (the first time only) and
    // AsyncStopThreadSelf on the calling thread, wakes the worker from a suspension or an
    // alertable wait, then waits up to aTimeOutMs for the end. True when the thread has ended
    // (or was never started); false when the time ran out, when called by the worker itself and
    // for an auto-delete thread, which are not waited for.
    bool StopThread(UInt32 aTimeOutMs = kInfiniteTimeOut);
    // Waits up to aTimeOutMs for the thread's end; true when it has ended or never started.
    // Not for the worker itself nor for an auto-delete thread (asserted).
    bool WaitForTerminate(UInt32 aTimeOutMs = kInfiniteTimeOut);

    // Cooperative suspension: the worker parks at its next TestCancelCurrentThread until as many
    // ResumeThread calls have come as SuspendThread calls, or a stop is asked.
    void SuspendThread();
    void ResumeThread();
    // True while the worker is parked by a suspension.
    bool IsThreadSuspended() const;

    bool IsThreadStarted() const;
    // Started and not yet ended.
    bool IsThreadRunning() const;
    bool IsStopRequested() const;
    XThreadOutcome GetThreadOutcome() const;
    // See the table above; 0 while the thread runs.
    UInt32 GetThreadReturnCode() const;
    // The message of the exception that ended the thread; empty when RunSelf returned.
    XString GetThreadErrorMessage() const;

    const XString & GetThreadName() const { return itsName; }
    XThreadPriority GetThreadPriority() const { return itsPriority; }
    // The worker's kernel identifier, 0 until it runs.
    XThreadID GetThreadID() const;

    // The XThread whose worker is the calling thread; null on threads not made by XThread.
    static XThread * GetCurrentThread();
    static XThreadID GetCurrentThreadID();
    static XThreadID GetMainThreadID();
    static bool IsMainThread();
    // Processors the system has (std::thread::hardware_concurrency), at least 1.
    static UInt32 GetProcessorCount();
    // On an XThread whose stop was asked: throws XStopThreadException. On an XThread that is
    // suspended: parks until resumed. Otherwise, and on threads not made by XThread, nothing.
    static void TestCancelCurrentThread();

protected:
    // The work, on the new thread; the value returned is the thread's return code.
    virtual UInt32 RunSelf() = 0;
    // On the thread calling StopThread, once, right after the stop request is set.
    virtual void Stopping();
    // On the worker, when it parks for a suspension, before it waits.
    virtual void Suspending();
    // On the worker, when it leaves the park (resumed or asked to stop).
    virtual void Resuming();
    // On the worker, after RunSelf has ended in any way, before the end is made known.
    virtual void FinishThreadSelf();
    // On the thread calling StopThread, after Stopping, every time: breaks a blocking call of
    // the worker that does not watch the stop request. Waits of this family are woken anyway.
    virtual void AsyncStopThreadSelf();

private:
    friend class XConditionVariable;

    static constexpr UInt32 kStopBit = 1;
    static constexpr UInt32 kSuspendBit = 2;

    static void * ThreadEntry(void * aThread);
    void Run();
    void EndRun(UInt32 aReturnCode, XThreadOutcome anOutcome, const XString & aMessage);
    void HandleControlRequest();
    // Sets the stop request and wakes the worker; true for the first request.
    bool RequestStop();
    bool WaitForEnd(UInt32 aTimeOutMs);
    void Join();
    // An alertable XConditionVariable wait of the worker, so that a stop can wake it.
    void BeginAlertableWait(XConditionVariable * aCondition);
    void EndAlertableWait();
    void WakeAlertableWait();

    const XString itsName;
    const XThreadPriority itsPriority;
    const UInt32 itsStackSize;
    const bool itsAutoDelete;

    std::atomic<UInt32> itsControl{0}; // kStopBit, kSuspendBit
    std::atomic<XThreadID> itsThreadID{0};

    mutable std::mutex itsStateGuard; // guards the members below up to itsErrorMessage
    std::condition_variable itsStateChanged;
    bool itsStarted = false;
    bool itsFinished = false;
    bool itsParked = false;
    UInt32 itsSuspendCount = 0;
    UInt32 itsReturnCode = 0;
    XThreadOutcome itsOutcome = kThreadNotEnded;
    XString itsErrorMessage;

    std::mutex itsJoinGuard; // guards itsHandle and itsJoinable
    pthread_t itsHandle{};
    bool itsJoinable = false;

    std::mutex itsWaitGuard; // guards itsWaitingOn
    XConditionVariable * itsWaitingOn = nullptr;
};
