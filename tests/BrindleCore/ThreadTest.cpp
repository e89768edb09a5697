// Worker threads (return codes, stop requests reaching a worker's loop or wait, exceptions
// escaping a worker, suspension, priorities, self-deleting threads) and condition variables.

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <thread>

#include <pthread.h>
#include <sys/resource.h>

#include "XAssert.h"
#include "XConditionVariable.h"
#include "XFoundationTestSupport.h"
#include "XStopThreadException.h"
#include "XThreadLock.h"

namespace
{
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
    std::atomic<bool> notMain{false};
    std::atomic<XThreadID> innerID{0};
    std::string innerName;
    XTestThread thread(
        [&](XTestThread & aSelf) -> UInt32 {
            sawSelf = XThread::GetCurrentThread() == &aSelf;
            notMain = !XThread::IsMainThread();
            innerID = XThread::GetCurrentThreadID();
            char name[32] = {};
            ::pthread_getname_np(::pthread_self(), name, sizeof(name));
            innerName = name;
            return go.WaitFor(1) ? 42 : 1;
        },
        "probe-worker-with-a-long-name");

    EXPECT_TRUE(thread.WaitForTerminate(0)); // not started: nothing to wait for
    thread.StartThread();
    EXPECT_TRUE(thread.IsThreadRunning());
    EXPECT_FALSE(thread.WaitForTerminate(0));
    EXPECT_EQ(thread.GetThreadOutcome(), kThreadNotEnded);
    EXPECT_THROW(thread.StartThread(), XInternalError);

    go.Arrive();
    ASSERT_TRUE(thread.WaitForTerminate(kBoundMs));
    EXPECT_FALSE(thread.IsThreadRunning());
    EXPECT_EQ(thread.GetThreadOutcome(), kThreadReturned);
    EXPECT_EQ(thread.GetThreadReturnCode(), 42u);
    EXPECT_TRUE(thread.GetThreadErrorMessage().IsEmpty());
    EXPECT_EQ(thread.itsStoppingCalls, 0);
    EXPECT_EQ(thread.itsFinishCalls, 1);
    EXPECT_TRUE(thread.itsFinishSawSelf);
    EXPECT_TRUE(sawSelf);
    EXPECT_TRUE(notMain);
    EXPECT_EQ(thread.GetThreadID(), innerID.load());
    EXPECT_NE(innerID.load(), XThread::GetMainThreadID());
    EXPECT_EQ(innerName, "probe-worker-wi"); // the kernel keeps 15 bytes
    EXPECT_TRUE(thread.WaitForTerminate(0));  // asking again is harmless
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

TEST(ThreadTest, CallsOffXThreadsAreHarmless)
{
    EXPECT_EQ(XThread::GetCurrentThread(), nullptr);
    EXPECT_NO_THROW(XThread::TestCancelCurrentThread());
    EXPECT_EQ(XThread::GetMainThreadID(), static_cast<XThreadID>(::getpid()));
    EXPECT_TRUE(XThread::IsMainThread()); // the test runs on the process's first thread
    EXPECT_EQ(XThread::GetCurrentThreadID(), XThread::GetMainThreadID());
    EXPECT_GE(XThread::GetProcessorCount(), 1u);

    bool current = true;
    bool isMain = true;
    UInt32 cancelError = 1;
    std::thread([&] {
        current = XThread::GetCurrentThread() != nullptr;
        isMain = XThread::IsMainThread();
        cancelError = ErrorOf([] { XThread::TestCancelCurrentThread(); });
    }).join();
    EXPECT_FALSE(current);
    EXPECT_FALSE(isMain);
    EXPECT_EQ(cancelError, 0u);

    // A stop asked of a thread that never started: nothing to wait for.
    XTestThread idle([](XTestThread &) -> UInt32 { return 0; });
    EXPECT_TRUE(idle.StopThread(0));
    EXPECT_EQ(idle.itsStoppingCalls, 1);
}

TEST(ThreadTest, DeletingARunningThreadJoinsItAndAutoDeleteThreadsGoOnTheirOwn)
{
    auto * endless = new XEndlessThread;
    endless->StartThread();
    ASSERT_TRUE(XEndlessThread::sEntered.WaitFor(1));
    delete endless; // asks for the stop and joins: the loop has been left when it returns
    EXPECT_EQ(XEndlessThread::sLeft.GetCount(), 1);

    (new XSelfDeletingThread)->StartThread(); // not to be touched any more
    EXPECT_TRUE(XSelfDeletingThread::sDeleted.WaitFor(1));
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

TEST(ThreadTest, PriorityAndStackSizeApplyToTheWorker)
{
    const int inherited = ::getpriority(PRIO_PROCESS, 0);
    std::atomic<int> niceValue{-100};
    std::atomic<UInt64> stackSize{0};
    XTestThread thread(
        [&](XTestThread &) -> UInt32 {
            niceValue = ::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()));
            pthread_attr_t attributes;
            if (::pthread_getattr_np(::pthread_self(), &attributes) == 0)
            {
                std::size_t size = 0;
                ::pthread_attr_getstacksize(&attributes, &size);
                stackSize = size;
                ::pthread_attr_destroy(&attributes);
            }
            return 0;
        },
        "low", kThreadPriorityBelowNormal, 1024 * 1024);
    thread.StartThread();
    ASSERT_TRUE(thread.WaitForTerminate(kBoundMs));
    // Below normal is nice 5, unless the process already runs nicer than that.
    EXPECT_EQ(niceValue.load(), std::max(inherited, 5));
    EXPECT_GE(stackSize.load(), 1024u * 1024u);
    // The priority is the worker's own: this thread keeps its value.
    EXPECT_EQ(::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid())), inherited);
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

TEST(ConditionVariableTest, StopRequestEndsAnAlertableWait)
{
    for (const bool throwOnStop : {false, true})
    {
        XWaitRoom room;
        XTestThread worker([&room, throwOnStop](XTestThread &) -> UInt32 {
            XThreadLock holder(room.itsMutex);
            room.Announce();
            try
            {
                const XWaitResult result = room.itsCondition.SleepForInputOrSignal(
                    room.itsMutex, kInfiniteTimeOut, true, throwOnStop);
                return result == kWaitStopRequested ? 5 : 6;
            }
            catch (const XStopThreadException &)
            {
                // The mutex is held again when the stop is thrown.
                room.itsWaiting = static_cast<int>(room.itsMutex.GetLockDepth()) + 10;
                throw;
            }
        });
        worker.StartThread();
        {
            XThreadLock holder(room.itsMutex);
            // Once the worker has told, it waits: it let go of the mutex only in its wait.
            ASSERT_TRUE(room.AwaitNews([&] { return room.itsWaiting == 1; }));
        }
        const bool ended = worker.StopThread(kBoundMs);
        if (!ended)
            room.itsCondition.Signal(kSignalAll); // let the test end instead of hanging
        ASSERT_TRUE(ended);
        EXPECT_EQ(worker.GetThreadOutcome(), throwOnStop ? kThreadStopped : kThreadReturned);
        EXPECT_EQ(worker.GetThreadReturnCode(), throwOnStop ? UInt32(kErrThreadStopped) : 5u);
        if (throwOnStop)
        {
            EXPECT_EQ(room.itsWaiting, 11);
        }
        EXPECT_EQ(room.itsCondition.GetWaiterCount(), 0u);
    }
}

TEST(ConditionVariableTest, EarlyStopEndsAnAlertableWaitAtOnceAndAPlainWaitIgnoresIt)
{
    // The stop comes before the wait begins.
    XWaitRoom early;
    XTestThread first([&early](XTestThread &) -> UInt32 {
        XThreadLock holder(early.itsMutex);
        early.AwaitNews([&] { return early.itsWaiting == 1; }); // held back until the stop
        return early.itsCondition.SleepForInputOrSignal(early.itsMutex, kBoundMs, true, false);
    });
    first.StartThread();
    first.StopThread(0);
    {
        XThreadLock holder(early.itsMutex);
        early.Announce();
    }
    ASSERT_TRUE(first.WaitForTerminate(kBoundMs));
    EXPECT_EQ(first.GetThreadReturnCode(), static_cast<UInt32>(kWaitStopRequested));

    // A wait that is not alertable goes on after the stop, so the signal finds it.
    XWaitRoom plain;
    XTestThread second([&plain](XTestThread &) -> UInt32 {
        XThreadLock holder(plain.itsMutex);
        plain.Announce();
        return plain.itsCondition.SleepForInputOrSignal(plain.itsMutex, kBoundMs, false, true);
    });
    second.StartThread();
    {
        XThreadLock holder(plain.itsMutex);
        ASSERT_TRUE(plain.AwaitNews([&] { return plain.itsWaiting == 1; }));
    }
    second.StopThread(0);
    EXPECT_EQ(plain.itsCondition.Signal(1), 1u);
    ASSERT_TRUE(second.WaitForTerminate(kBoundMs));
    EXPECT_EQ(second.GetThreadOutcome(), kThreadReturned);
    EXPECT_EQ(second.GetThreadReturnCode(), static_cast<UInt32>(kWaitSignalled));
}
