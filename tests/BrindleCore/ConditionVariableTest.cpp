// Condition variables over XMutex: signals of a given count, time-outs, and waits that a stop
// request of the waiting XThread ends.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <thread>
#include <vector>

#include "XConditionVariable.h"
#include "XInternalError.h"
#include "XMutex.h"
#include "XStopThreadException.h"
#include "XThread.h"
#include "XThreadLock.h"

namespace
{
constexpr UInt32 kBoundMs = 10000;

// A worker whose body is a function; it must end before the function goes.
class XBodyThread : public XThread
{
public:
    explicit XBodyThread(std::function<UInt32()> aBody)
        : XThread("waiter"), itsBody(std::move(aBody))
    {
    }
    ~XBodyThread() override
    {
        if (!WaitForTerminate(kBoundMs))
        {
            ADD_FAILURE() << "a worker did not end";
            std::abort();
        }
    }

protected:
    UInt32 RunSelf() override { return itsBody(); }

private:
    std::function<UInt32()> itsBody;
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
        {
            if (itsNews.SleepForInputOrSignal(itsMutex, kBoundMs, false, false) == kWaitTimedOut)
                return aPredicate();
        }
        return true;
    }
};
} // namespace

TEST(ConditionVariableTest, SignalWakesThatManyOfTheLongestWaiting)
{
    XWaitRoom room;
    std::vector<std::thread> waiters;
    for (int index = 0; index < 3; ++index)
    {
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
    }
    {
        XThreadLock holder(room.itsMutex);
        ASSERT_TRUE(room.AwaitNews([&] { return room.itsWaiting == 3; }));
        EXPECT_EQ(room.itsCondition.GetWaiterCount(), 3u);

        EXPECT_EQ(room.itsCondition.Signal(2), 2u);
        ASSERT_TRUE(room.AwaitNews([&] { return room.itsWoken.size() == 2; }));
        std::vector<int> firstTwo = room.itsWoken;
        std::sort(firstTwo.begin(), firstTwo.end());
        EXPECT_EQ(firstTwo, (std::vector<int>{0, 1}));
        // The third still waits: it is the only one left to wake.
        EXPECT_EQ(room.itsCondition.GetWaiterCount(), 1u);
        EXPECT_EQ(room.itsCondition.Signal(kSignalAll), 1u);
        ASSERT_TRUE(room.AwaitNews([&] { return room.itsWoken.size() == 3; }));
        EXPECT_EQ(room.itsWoken.back(), 2);
        EXPECT_EQ(room.itsCondition.Signal(kSignalAll), 0u);
    }
    for (std::thread & waiter : waiters)
        waiter.join();
    EXPECT_EQ(room.itsResults, std::vector<XWaitResult>(3, kWaitSignalled));
}

TEST(ConditionVariableTest, TimeOutsAndLostSignals)
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
        XBodyThread worker([&room, throwOnStop]() -> UInt32 {
            XThreadLock holder(room.itsMutex);
            room.itsWaiting = 1;
            room.itsNews.Signal(kSignalAll);
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
        if (throwOnStop)
        {
            EXPECT_EQ(worker.GetThreadOutcome(), kThreadStopped);
            EXPECT_EQ(worker.GetThreadReturnCode(), static_cast<UInt32>(kErrThreadStopped));
            EXPECT_EQ(room.itsWaiting, 11);
        }
        else
        {
            EXPECT_EQ(worker.GetThreadOutcome(), kThreadReturned);
            EXPECT_EQ(worker.GetThreadReturnCode(), 5u);
        }
        EXPECT_EQ(room.itsCondition.GetWaiterCount(), 0u);
    }
}

TEST(ConditionVariableTest, StopAskedBeforeAnAlertableWaitEndsItAtOnce)
{
    XWaitRoom room;
    XBodyThread worker([&room]() -> UInt32 {
        XThreadLock holder(room.itsMutex);
        // The test holds back this wait until the stop has been asked.
        room.AwaitNews([&] { return room.itsWaiting == 1; });
        return room.itsCondition.SleepForInputOrSignal(room.itsMutex, kBoundMs, true, false);
    });
    worker.StartThread();
    worker.StopThread(0);
    {
        XThreadLock holder(room.itsMutex);
        room.itsWaiting = 1;
        room.itsNews.Signal(kSignalAll);
    }
    ASSERT_TRUE(worker.WaitForTerminate(kBoundMs));
    EXPECT_EQ(worker.GetThreadReturnCode(), static_cast<UInt32>(kWaitStopRequested));
}

TEST(ConditionVariableTest, WaitThatIsNotAlertableIgnoresStop)
{
    XWaitRoom room;
    XBodyThread worker([&room]() -> UInt32 {
        XThreadLock holder(room.itsMutex);
        room.itsWaiting = 1;
        room.itsNews.Signal(kSignalAll);
        return room.itsCondition.SleepForInputOrSignal(room.itsMutex, kBoundMs, false, true);
    });
    worker.StartThread();
    {
        XThreadLock holder(room.itsMutex);
        ASSERT_TRUE(room.AwaitNews([&] { return room.itsWaiting == 1; }));
    }
    worker.StopThread(0);
    // The worker still waits, so the signal finds it.
    EXPECT_EQ(room.itsCondition.Signal(1), 1u);
    ASSERT_TRUE(worker.WaitForTerminate(kBoundMs));
    EXPECT_EQ(worker.GetThreadOutcome(), kThreadReturned);
    EXPECT_EQ(worker.GetThreadReturnCode(), static_cast<UInt32>(kWaitSignalled));
}
