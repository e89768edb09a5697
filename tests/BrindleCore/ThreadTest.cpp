// Worker threads (return codes, stop requests reaching a worker's loop or wait, exceptions
// escaping a worker, suspension, priorities, self-deleting threads), recursive mutexes with
// time-outs and their scoped holder, reader-writer mutexes, and condition variables.

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <thread>

#include <pthread.h>
#include <sys/resource.h>

#include "XAssert.h"
#include "XConditionVariable.h"
#include "XFoundationTestSupport.h"
#include "XRWMutex.h"
#include "XStopThreadException.h"
#include "XThreadLock.h"

namespace
{
template <typename TWork>
void OnOtherThread(TWork aWork)
{
    std::thread(aWork).join();
}

// A body that loops on the cancel test until a stop ends it.
UInt32 LoopUntilStopped(XTestGate & anEntered, std::atomic<UInt64> & aLoops)
{
    anEntered.Arrive();
    for (;;)
    {
        XThread::TestCancelCurrentThread();
        aLoops.fetch_add(1, std::memory_order_relaxed);
    }
}

// Workers without members of their own, so that they may be deleted while they run.
class XEndlessThread : public XThread
{
public:
    XEndlessThread() : XThread("endless") {}
    static inline XTestGate sEntered;
    static inline XTestGate sLeft;

protected:
    UInt32 RunSelf() override
    {
        sEntered.Arrive();
        try
        {
            for (;;)
                TestCancelCurrentThread();
        }
        catch (...)
        {
            sLeft.Arrive();
            throw;
        }
    }
};

class XSelfDeletingThread : public XThread
{
public:
    XSelfDeletingThread() : XThread("self-deleting", kThreadPriorityNormal, 0, true) {}
    ~XSelfDeletingThread() override
    {
        sSawSelf = GetCurrentThread() == this;
        sDeleted.Arrive();
    }
    static inline std::atomic<bool> sSawSelf{false};
    static inline XTestGate sDeleted;

protected:
    UInt32 RunSelf() override { return 0; }
};

// State shared by the waiters of a test, all guarded by itsMutex.
struct XWaitRoom
{
    XMutex itsMutex;
    XConditionVariable itsCondition; // what the waiters wait on
    XConditionVariable itsNews;      // what the test waits on
    int itsWaiting = 0;
    std::vector<int> itsWoken;
    std::vector<XWaitResult> itsResults;

    // With itsMutex held: waits for aPredicate, bounded. False if the bound ran out.
    bool AwaitNews(const std::function<bool()> & aPredicate)
    {
        while (!aPredicate())
            if (itsNews.SleepForInputOrSignal(itsMutex, kBoundMs, false, false) == kWaitTimedOut)
                return aPredicate();
        return true;
    }
    // With itsMutex held: tells the test that the worker is about to wait.
    void Announce()
    {
        itsWaiting = 1;
        itsNews.Signal(kSignalAll);
    }
};
} // namespace

TEST(ThreadTest, RunsNamedAndReportsItsReturnCode)
{
    XTestGate go;
    std::atomic<bool> sawSelf{false};
    std::atomic<XThreadID> innerID{0};
    std::string innerName;
    XTestThread thread(
        [&](XTestThread & aSelf) -> UInt32 {
            sawSelf = XThread::GetCurrentThread() == &aSelf && !XThread::IsMainThread();
            innerID = XThread::GetCurrentThreadID();
            char name[32] = {};
            ::pthread_getname_np(::pthread_self(), name, sizeof(name));
            innerName = name;
            return go.WaitFor(1) ? 42 : 1;
        },
        "probe-worker-with-a-long-name");
    EXPECT_TRUE(thread.WaitForTerminate(0)); // not started: nothing to wait for
    thread.StartThread();
    EXPECT_FALSE(thread.WaitForTerminate(0));
    EXPECT_EQ(thread.GetThreadOutcome(), kThreadNotEnded);
    EXPECT_THROW(thread.StartThread(), XInternalError);
    go.Arrive();
    ASSERT_TRUE(thread.WaitForTerminate(kBoundMs));
    EXPECT_EQ(thread.GetThreadOutcome(), kThreadReturned);
    EXPECT_EQ(thread.GetThreadReturnCode(), 42u);
    EXPECT_EQ(thread.itsFinishCalls, 1);
    EXPECT_TRUE(thread.itsFinishSawSelf);
    EXPECT_TRUE(sawSelf);
    EXPECT_EQ(thread.GetThreadID(), innerID.load());
    EXPECT_NE(innerID.load(), XThread::GetMainThreadID());
    EXPECT_EQ(innerName, "probe-worker-wi"); // the kernel keeps 15 bytes
    EXPECT_TRUE(thread.WaitForTerminate(0));  // asking again is harmless

    // Calls off XThreads: the main thread, and a thread the library did not start.
    EXPECT_EQ(XThread::GetCurrentThread(), nullptr);
    EXPECT_NO_THROW(XThread::TestCancelCurrentThread());
    EXPECT_EQ(XThread::GetMainThreadID(), static_cast<XThreadID>(::getpid()));
    EXPECT_EQ(XThread::GetCurrentThreadID(), XThread::GetMainThreadID());
    EXPECT_TRUE(XThread::IsMainThread()); // the test runs on the process's first thread
    EXPECT_GE(XThread::GetProcessorCount(), 1u);
    bool plainLooksLikeXThread = true;
    std::thread([&] {
        plainLooksLikeXThread = XThread::GetCurrentThread() != nullptr || XThread::IsMainThread() ||
                                ErrorOf([] { XThread::TestCancelCurrentThread(); }) != 0;
    }).join();
    EXPECT_FALSE(plainLooksLikeXThread);
    // A stop asked of a thread that never started: nothing to wait for.
    XTestThread idle([](XTestThread &) -> UInt32 { return 0; });
    EXPECT_TRUE(idle.StopThread(0));
    EXPECT_EQ(idle.itsStoppingCalls, 1);
}

TEST(ThreadTest, StopReachesAWorkersLoop)
{
    // The stop passes out of the body, or the body catches it and returns.
    for (const bool catchTheStop : {false, true})
    {
        XTestGate entered;
        std::atomic<UInt64> loops{0};
        std::atomic<bool> stopSeen{false};
        XTestThread thread([&](XTestThread &) -> UInt32 {
            try
            {
                return LoopUntilStopped(entered, loops);
            }
            catch (const XStopThreadException & aStop)
            {
                stopSeen = aStop.GetErrorNumber() == kErrThreadStopped;
                if (!catchTheStop)
                    throw;
                return 3;
            }
        });
        thread.StartThread();
        ASSERT_TRUE(entered.WaitFor(1));

        EXPECT_TRUE(thread.StopThread(kBoundMs));
        EXPECT_TRUE(stopSeen);
        EXPECT_TRUE(thread.IsStopRequested());
        EXPECT_EQ(thread.GetThreadOutcome(), catchTheStop ? kThreadReturned : kThreadStopped);
        EXPECT_EQ(thread.GetThreadReturnCode(), catchTheStop ? 3u : UInt32(kErrThreadStopped));
        if (!catchTheStop)
        {
            EXPECT_NE(thread.GetThreadErrorMessage().GetStdString().find("probe"), std::string::npos);
        }
        EXPECT_EQ(thread.itsAsyncStopCalls, 1);
        EXPECT_EQ(thread.itsFinishCalls, 1);
        // A second request: Stopping is told once, the asynchronous hook every time.
        EXPECT_TRUE(thread.StopThread(0));
        EXPECT_EQ(thread.itsStoppingCalls, 1);
        EXPECT_EQ(thread.itsAsyncStopCalls, 2);
    }
}

TEST(ThreadTest, ExceptionsEscapingAWorkerAreRecorded)
{
    struct XCase
    {
        XTestThread::XBody itsBody;
        UInt32 itsCode;
        const char * itsText;
    };
    const XCase cases[] = {
        {[](XTestThread &) -> UInt32 { throw XException(kErrBadArgument, "bad value 17"); },
         kErrBadArgument, "bad value 17"},
        {[](XTestThread &) -> UInt32 { throw std::runtime_error("boom"); }, kErrGeneric, "boom"},
        {[](XTestThread &) -> UInt32 { throw 5; }, kErrGeneric, "unknown exception"},
        {[](XTestThread &) -> UInt32 {
             XAssertText(false, "a deliberately broken precondition");
             return 0;
         },
         kErrGeneric, "a deliberately broken precondition"},
    };
    for (const XCase & item : cases)
    {
        XTestThread thread(item.itsBody);
        thread.StartThread();
        ASSERT_TRUE(thread.WaitForTerminate(kBoundMs));
        EXPECT_EQ(thread.GetThreadOutcome(), kThreadFailed);
        EXPECT_EQ(thread.GetThreadReturnCode(), item.itsCode);
        EXPECT_NE(thread.GetThreadErrorMessage().GetStdString().find(item.itsText), std::string::npos)
            << thread.GetThreadErrorMessage().c_str();
        EXPECT_EQ(thread.itsFinishCalls, 1); // the end hook runs after a failure too
    }
}

TEST(ThreadTest, DeletingARunningThreadJoinsItAndAutoDeleteThreadsGoOnTheirOwn)
{
    // The gates count over repetitions of the test.
    const int runs = XEndlessThread::sLeft.GetCount() + 1;
    auto * endless = new XEndlessThread;
    endless->StartThread();
    ASSERT_TRUE(XEndlessThread::sEntered.WaitFor(runs));
    delete endless; // asks for the stop and joins: the loop has been left when it returns
    EXPECT_EQ(XEndlessThread::sLeft.GetCount(), runs);

    (new XSelfDeletingThread)->StartThread(); // not to be touched any more
    EXPECT_TRUE(XSelfDeletingThread::sDeleted.WaitFor(runs));
    EXPECT_TRUE(XSelfDeletingThread::sSawSelf); // deleted on its own thread
}

TEST(ThreadTest, SuspendParksAtTheCancelTestAndResumeGoesOn)
{
    XTestGate entered;
    std::atomic<UInt64> loops{0};
    XTestThread thread([&](XTestThread &) -> UInt32 { return LoopUntilStopped(entered, loops); });
    thread.StartThread();
    ASSERT_TRUE(entered.WaitFor(1));

    thread.SuspendThread();
    thread.SuspendThread();
    ASSERT_TRUE(thread.itsSuspendings.WaitFor(1));
    EXPECT_TRUE(thread.IsThreadSuspended());
    const UInt64 parkedAt = loops.load();
    thread.ResumeThread(); // one of two: still parked
    EXPECT_TRUE(thread.IsThreadSuspended());
    EXPECT_EQ(loops.load(), parkedAt);
    EXPECT_EQ(thread.itsResumings.GetCount(), 0);
    thread.ResumeThread();
    ASSERT_TRUE(thread.itsResumings.WaitFor(1));
    EXPECT_EQ(thread.itsSuspendings.GetCount(), 1);
    EXPECT_THROW(thread.ResumeThread(), XInternalError); // not suspended any more

    // A stop reaches a parked worker too.
    thread.SuspendThread();
    ASSERT_TRUE(thread.itsSuspendings.WaitFor(2));
    EXPECT_TRUE(thread.StopThread(kBoundMs));
    EXPECT_EQ(thread.GetThreadOutcome(), kThreadStopped);
    EXPECT_FALSE(thread.IsThreadSuspended());
    EXPECT_EQ(thread.itsResumings.GetCount(), 2);
}

TEST(ThreadTest, PriorityAppliesToTheWorkerAlone)
{
    const int inherited = ::getpriority(PRIO_PROCESS, 0);
    std::atomic<int> niceValue{-100};
    XTestThread thread(
        [&](XTestThread &) -> UInt32 {
            niceValue = ::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()));
            return 0;
        },
        "low", kThreadPriorityBelowNormal, 1024 * 1024);
    thread.StartThread();
    ASSERT_TRUE(thread.WaitForTerminate(kBoundMs));
    // Below normal is nice 5, unless the process already runs nicer than that.
    EXPECT_EQ(niceValue.load(), std::max(inherited, 5));
    // The priority is the worker's own: this thread keeps its value.
    EXPECT_EQ(::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid())), inherited);
}

TEST(MutexTest, SameThreadNestsOthersWaitAndTimeOut)
{
    XMutex mutex;
    EXPECT_TRUE(mutex.Lock());
    EXPECT_TRUE(mutex.Lock(0, true));
    EXPECT_TRUE(mutex.TryLock());
    EXPECT_EQ(mutex.GetLockDepth(), 3u);
    EXPECT_TRUE(mutex.IsLockedByCurrentThread());
    OnOtherThread([&] {
        EXPECT_EQ(mutex.GetLockDepth(), 0u);
        EXPECT_FALSE(mutex.TryLock());
        EXPECT_FALSE(mutex.Lock(20, false));
        EXPECT_EQ(ErrorOf([&] { mutex.Lock(20, true); }), UInt32(kErrTimeOut));
        EXPECT_THROW(mutex.Unlock(), XInternalError); // not the holder
    });
    mutex.Unlock();
    mutex.Unlock();
    OnOtherThread([&] { EXPECT_FALSE(mutex.TryLock()); }); // still held once
    mutex.Unlock();
    EXPECT_THROW(mutex.Unlock(), XInternalError);

    // A waiting locker gets the mutex when it is free.
    XTestGate asking;
    std::atomic<bool> got{false};
    mutex.Lock();
    std::thread other([&] {
        asking.Arrive();
        got = mutex.Lock(kBoundMs, false);
        if (got)
            mutex.Unlock();
    });
    ASSERT_TRUE(asking.WaitFor(1));
    mutex.Unlock();
    other.join();
    EXPECT_TRUE(got);

    // The constructor sets what Lock() without arguments does on a time-out.
    XMutex throwing(20, true);
    XMutex quiet(20, false);
    throwing.Lock();
    quiet.Lock();
    OnOtherThread([&] {
        EXPECT_EQ(ErrorOf([&] { throwing.Lock(); }), UInt32(kErrTimeOut));
        EXPECT_FALSE(quiet.Lock());
        XThreadLock holder(quiet);
        EXPECT_FALSE(holder.IsLocked()); // a failed lock holds nothing and unlocks nothing
    });
    throwing.Unlock();
    quiet.Unlock();
}

TEST(MutexTest, ThreadLockReleasesAtScopeEndAndOnExceptions)
{
    XMutex mutex;
    {
        XThreadLock holder(mutex);
        {
            XThreadLock nested(mutex, 0, true);
            EXPECT_EQ(mutex.GetLockDepth(), 2u);
        }
        EXPECT_EQ(mutex.GetLockDepth(), 1u);
        holder.Unlock();
        EXPECT_FALSE(holder.IsLocked());
        EXPECT_EQ(mutex.GetLockDepth(), 0u);
        holder.Unlock(); // nothing held: nothing happens
        EXPECT_TRUE(holder.Relock(0, true));
        EXPECT_THROW(holder.Relock(0, true), XInternalError);
    }
    EXPECT_EQ(mutex.GetLockDepth(), 0u);
    EXPECT_EQ(ErrorOf([&] {
                  XThreadLock holder(mutex);
                  throw XException(kErrGeneric);
              }),
              UInt32(kErrGeneric));
    OnOtherThread([&] {
        EXPECT_TRUE(mutex.TryLock());
        mutex.Unlock();
    });
}

TEST(MutexTest, ExcludesConcurrentWriters)
{
    XMutex mutex;
    UInt64 total = 0;
    constexpr int kRounds = 20000;
    RunOnThreads(2, [&](int) {
        for (int round = 0; round < kRounds; ++round)
        {
            XThreadLock holder(mutex);
            XThreadLock again(mutex); // nesting under contention
            total += 1;
        }
    });
    EXPECT_EQ(total, 2u * kRounds);
}

TEST(RWMutexTest, ReadersHoldTheLockTogether)
{
    XRWMutex mutex;
    constexpr int kReaders = 3;
    XTestGate inside;
    XTestGate release;
    std::atomic<int> allInside{0};
    std::vector<std::thread> readers;
    for (int reader = 0; reader < kReaders; ++reader)
        readers.emplace_back([&] {
            if (!mutex.Lock(kRWLockRead, kBoundMs, false))
                return;
            inside.Arrive();
            if (inside.WaitFor(kReaders)) // only possible if all readers are inside at once
                ++allInside;
            release.WaitFor(1);
            mutex.Unlock(kRWLockRead);
        });
    ASSERT_TRUE(inside.WaitFor(kReaders));
    EXPECT_EQ(mutex.GetReaderCount(), UInt32(kReaders));
    EXPECT_FALSE(mutex.IsWriteLocked());
    EXPECT_FALSE(mutex.Lock(kRWLockWrite, 0, false));
    EXPECT_FALSE(mutex.Lock(kRWLockWrite, 20, false));
    EXPECT_EQ(ErrorOf([&] { mutex.Lock(kRWLockWrite, 20, true); }), UInt32(kErrTimeOut));
    // A writer that gave up holds back no reader.
    EXPECT_TRUE(mutex.Lock(kRWLockRead, 0, false));
    mutex.Unlock(kRWLockRead);
    release.Arrive();
    for (std::thread & reader : readers)
        reader.join();
    EXPECT_EQ(allInside.load(), kReaders);
    EXPECT_EQ(mutex.GetReaderCount(), 0u);
    EXPECT_TRUE(mutex.Lock(kRWLockWrite, 0, false));
    mutex.Unlock(kRWLockWrite);
}

TEST(RWMutexTest, WriterIsAloneAndMayNest)
{
    XRWMutex mutex;
    ASSERT_TRUE(mutex.Lock(kRWLockWrite));
    EXPECT_TRUE(mutex.IsWriteLockedByCurrentThread());
    OnOtherThread([&] {
        EXPECT_FALSE(mutex.IsWriteLockedByCurrentThread());
        EXPECT_FALSE(mutex.Lock(kRWLockRead, 0, false));
        EXPECT_FALSE(mutex.Lock(kRWLockRead, 20, false));
        EXPECT_FALSE(mutex.Lock(kRWLockWrite, 20, false));
        EXPECT_EQ(ErrorOf([&] { mutex.Lock(kRWLockRead, 20, true); }), UInt32(kErrTimeOut));
        EXPECT_THROW(mutex.Unlock(kRWLockWrite), XInternalError); // not the writer
    });

    // The writer nests, for writing and for reading.
    EXPECT_TRUE(mutex.Lock(kRWLockWrite, 0, true));
    EXPECT_TRUE(mutex.Lock(kRWLockRead, 0, true));
    EXPECT_EQ(mutex.GetReaderCount(), 0u);
    mutex.Unlock(kRWLockRead);
    mutex.Unlock(kRWLockWrite);
    OnOtherThread([&] { EXPECT_FALSE(mutex.Lock(kRWLockRead, 0, false)); });
    mutex.Unlock(kRWLockWrite);
    EXPECT_FALSE(mutex.IsWriteLocked());
    EXPECT_THROW(mutex.Unlock(kRWLockRead), XInternalError); // nothing held

    OnOtherThread([&] {
        XRWMutex::XScopedLock reading(mutex, kRWLockRead, 0, false);
        EXPECT_TRUE(reading.IsLocked());
        EXPECT_EQ(mutex.GetReaderCount(), 1u);
    });
    EXPECT_EQ(mutex.GetReaderCount(), 0u);
}

TEST(RWMutexTest, ReadersNeverSeeAHalfWrite)
{
    XRWMutex mutex;
    UInt64 first = 0;
    UInt64 second = 0;
    std::atomic<int> torn{0};
    constexpr int kRounds = 5000;
    RunOnThreads(4, [&](int aThread) { // two writers, two readers
        for (int round = 0; round < kRounds; ++round)
        {
            XRWMutex::XScopedLock lock(mutex, aThread < 2 ? kRWLockWrite : kRWLockRead);
            if (aThread < 2)
            {
                ++first;
                ++second;
            }
            else
                torn += first != second;
        }
    });
    EXPECT_EQ(torn.load(), 0);
    EXPECT_EQ(first, 2u * kRounds);
    EXPECT_EQ(second, 2u * kRounds);
}

TEST(ConditionVariableTest, SignalWakesThatManyOfTheLongestWaiting)
{
    XWaitRoom room;
    std::vector<std::thread> waiters;
    for (int index = 0; index < 3; ++index)
        waiters.emplace_back([&room] {
            XThreadLock holder(room.itsMutex);
            const int order = room.itsWaiting++;
            room.itsNews.Signal(kSignalAll);
            // The mutex is held from the count above until this wait has queued the waiter,
            // so the queue's order is the count's order.
            const XWaitResult result =
                room.itsCondition.SleepForInputOrSignal(room.itsMutex, kBoundMs, true, false);
            room.itsWoken.push_back(order);
            room.itsResults.push_back(result);
            room.itsNews.Signal(kSignalAll);
        });
    {
        XThreadLock holder(room.itsMutex);
        ASSERT_TRUE(room.AwaitNews([&] { return room.itsWaiting == 3; }));
        EXPECT_EQ(room.itsCondition.GetWaiterCount(), 3u);
        EXPECT_EQ(room.itsCondition.Signal(2), 2u);
        ASSERT_TRUE(room.AwaitNews([&] { return room.itsWoken.size() == 2; }));
        std::sort(room.itsWoken.begin(), room.itsWoken.end());
        EXPECT_EQ(room.itsWoken, (std::vector<int>{0, 1}));
        // The third still waits: it is the only one left to wake.
        EXPECT_EQ(room.itsCondition.Signal(kSignalAll), 1u);
        ASSERT_TRUE(room.AwaitNews([&] { return room.itsWoken.size() == 3; }));
        EXPECT_EQ(room.itsWoken.back(), 2);
        EXPECT_EQ(room.itsCondition.Signal(kSignalAll), 0u);
    }
    for (std::thread & waiter : waiters)
        waiter.join();
    EXPECT_EQ(room.itsResults, std::vector<XWaitResult>(3, kWaitSignalled));
}

TEST(ConditionVariableTest, TimeOutsLostSignalsAndTheHeldMutex)
{
    XMutex mutex;
    XConditionVariable condition;
    XThreadLock holder(mutex);
    // Nobody waits: the signal is lost and the wait runs out.
    EXPECT_EQ(condition.Signal(1), 0u);
    EXPECT_EQ(condition.SleepForInputOrSignal(mutex, 0, true, false), kWaitTimedOut);
    EXPECT_EQ(condition.SleepForInputOrSignal(mutex, 15, true, true), kWaitTimedOut);
    EXPECT_EQ(mutex.GetLockDepth(), 1u); // held again after the wait
    EXPECT_EQ(condition.GetWaiterCount(), 0u);

    // The mutex must be held exactly once.
    mutex.Lock();
    EXPECT_THROW(condition.SleepForInputOrSignal(mutex, 0, false, false), XInternalError);
    EXPECT_EQ(mutex.GetLockDepth(), 2u);
    mutex.Unlock();
    holder.Unlock();
    EXPECT_THROW(condition.SleepForInputOrSignal(mutex, 0, false, false), XInternalError);
}

TEST(ConditionVariableTest, StopRequestEndsOnlyAnAlertableWait)
{
    struct XCase
    {
        bool itsStopFirst; // the stop is asked before the wait begins
        bool itsAlertable;
        bool itsThrowOnStop;
        XThreadOutcome itsOutcome;
        UInt32 itsCode;
    };
    const XCase cases[] = {
        {false, true, false, kThreadReturned, kWaitStopRequested},
        {false, true, true, kThreadStopped, kErrThreadStopped},
        {true, true, false, kThreadReturned, kWaitStopRequested},
        {false, false, true, kThreadReturned, kWaitSignalled}, // a plain wait goes on: a signal ends it
    };
    for (const XCase & item : cases)
    {
        XWaitRoom room;
        int depthAtStop = 0;
        XTestThread worker([&](XTestThread &) -> UInt32 {
            XThreadLock holder(room.itsMutex);
            if (item.itsStopFirst)
                room.AwaitNews([&] { return room.itsWaiting == 1; }); // held back until the stop
            else
                room.Announce();
            try
            {
                return room.itsCondition.SleepForInputOrSignal(room.itsMutex, kBoundMs, item.itsAlertable,
                                                               item.itsThrowOnStop);
            }
            catch (const XStopThreadException &)
            {
                depthAtStop = int(room.itsMutex.GetLockDepth()); // held again when the stop is thrown
                throw;
            }
        });
        worker.StartThread();
        if (item.itsStopFirst)
            worker.StopThread(0);
        {
            XThreadLock holder(room.itsMutex);
            if (item.itsStopFirst)
                room.Announce();
            else // once the worker has told, it waits: it lets go of the mutex only in its wait
                ASSERT_TRUE(room.AwaitNews([&] { return room.itsWaiting == 1; }));
        }
        if (!item.itsStopFirst)
            worker.StopThread(0);
        if (!item.itsAlertable)
        {
            EXPECT_EQ(room.itsCondition.Signal(1), 1u);
        }
        ASSERT_TRUE(worker.WaitForTerminate(kBoundMs));
        EXPECT_EQ(worker.GetThreadOutcome(), item.itsOutcome);
        EXPECT_EQ(worker.GetThreadReturnCode(), item.itsCode);
        EXPECT_EQ(depthAtStop, item.itsThrowOnStop && item.itsAlertable ? 1 : 0);
        EXPECT_EQ(room.itsCondition.GetWaiterCount(), 0u);
    }
}
