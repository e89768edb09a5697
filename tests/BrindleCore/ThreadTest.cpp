// Worker threads: start, end, return codes, stop requests reaching a worker's loop, exceptions
// escaping a worker, suspension, priorities, self-deleting threads.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include "XAssert.h"
#include "XStopThreadException.h"
#include "XThread.h"
#include "XTestSupport.h"

namespace
{
constexpr UInt32 kBoundMs = 10000; // long enough never to run out unless something is broken

// A one-shot event with a bounded wait.
class XEvent
{
public:
    void Set()
    {
        std::lock_guard<std::mutex> guard(itsMutex);
        itsSet = true;
        itsChanged.notify_all();
    }
    bool Wait(UInt32 aTimeOutMs = kBoundMs)
    {
        std::unique_lock<std::mutex> guard(itsMutex);
        return itsChanged.wait_for(guard, std::chrono::milliseconds(aTimeOutMs),
                                   [this] { return itsSet; });
    }

private:
    std::mutex itsMutex;
    std::condition_variable itsChanged;
    bool itsSet = false;
};

// A worker whose body is a function, counting the calls of the protected hooks.
class XProbeThread : public XThread
{
public:
    using XBody = std::function<UInt32(XProbeThread &)>;

    explicit XProbeThread(XBody aBody, const XString & aName = "probe",
                          XThreadPriority aPriority = kThreadPriorityNormal, UInt32 aStackSize = 0)
        : XThread(aName, aPriority, aStackSize, false), itsBody(std::move(aBody))
    {
    }

    // The body is a member of this class: the thread must end before it goes.
    ~XProbeThread() override
    {
        if (!StopThread(kBoundMs))
        {
            ADD_FAILURE() << "a worker did not end";
            std::abort();
        }
    }

    std::atomic<int> itsStoppingCalls{0};
    std::atomic<int> itsAsyncStopCalls{0};
    std::atomic<int> itsFinishCalls{0};
    std::atomic<bool> itsFinishSawSelf{false};
    XTestGate itsSuspendings;
    XTestGate itsResumings;

protected:
    UInt32 RunSelf() override { return itsBody(*this); }
    void Stopping() override { ++itsStoppingCalls; }
    void AsyncStopThreadSelf() override { ++itsAsyncStopCalls; }
    void Suspending() override { itsSuspendings.Arrive(); }
    void Resuming() override { itsResumings.Arrive(); }
    void FinishThreadSelf() override
    {
        itsFinishSawSelf = GetCurrentThread() == this;
        ++itsFinishCalls;
    }

private:
    XBody itsBody;
};

// A body that loops on the cancel test until a stop ends it.
UInt32 LoopUntilStopped(XEvent & anEntered, std::atomic<UInt64> & aLoops)
{
    anEntered.Set();
    for (;;)
    {
        XThread::TestCancelCurrentThread();
        aLoops.fetch_add(1, std::memory_order_relaxed);
    }
}
} // namespace

TEST(ThreadTest, RunsNamedAndReportsItsReturnCode)
{
    XEvent go;
    std::atomic<bool> sawSelf{false};
    std::atomic<bool> notMain{false};
    std::atomic<XThreadID> innerID{0};
    std::string innerName;
    XProbeThread thread(
        [&](XProbeThread & aSelf) -> UInt32 {
            sawSelf = XThread::GetCurrentThread() == &aSelf;
            notMain = !XThread::IsMainThread();
            innerID = XThread::GetCurrentThreadID();
            char name[32] = {};
            ::pthread_getname_np(::pthread_self(), name, sizeof(name));
            innerName = name;
            if (!go.Wait())
                return 1;
            return 42;
        },
        "probe-worker-with-a-long-name");

    EXPECT_TRUE(thread.WaitForTerminate(0)); // not started: nothing to wait for
    EXPECT_FALSE(thread.IsThreadStarted());
    thread.StartThread();
    EXPECT_TRUE(thread.IsThreadStarted());
    EXPECT_TRUE(thread.IsThreadRunning());
    EXPECT_FALSE(thread.WaitForTerminate(0));
    EXPECT_EQ(thread.GetThreadOutcome(), kThreadNotEnded);
    EXPECT_EQ(thread.GetThreadReturnCode(), 0u);
    EXPECT_THROW(thread.StartThread(), XInternalError);

    go.Set();
    ASSERT_TRUE(thread.WaitForTerminate(kBoundMs));
    EXPECT_FALSE(thread.IsThreadRunning());
    EXPECT_EQ(thread.GetThreadOutcome(), kThreadReturned);
    EXPECT_EQ(thread.GetThreadReturnCode(), 42u);
    EXPECT_TRUE(thread.GetThreadErrorMessage().IsEmpty());
    EXPECT_FALSE(thread.IsStopRequested());
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
    XEvent entered;
    std::atomic<UInt64> loops{0};
    std::atomic<bool> stopSeen{false};
    XProbeThread thread([&](XProbeThread &) -> UInt32 {
        try
        {
            return LoopUntilStopped(entered, loops);
        }
        catch (const XStopThreadException & aStop)
        {
            stopSeen = aStop.GetErrorNumber() == kErrThreadStopped;
            throw;
        }
    });
    thread.StartThread();
    ASSERT_TRUE(entered.Wait());

    EXPECT_TRUE(thread.StopThread(kBoundMs));
    EXPECT_TRUE(stopSeen);
    EXPECT_TRUE(thread.IsStopRequested());
    EXPECT_EQ(thread.GetThreadOutcome(), kThreadStopped);
    EXPECT_EQ(thread.GetThreadReturnCode(), static_cast<UInt32>(kErrThreadStopped));
    EXPECT_NE(std::string(thread.GetThreadErrorMessage().c_str()).find("probe"), std::string::npos);
    EXPECT_EQ(thread.itsStoppingCalls, 1);
    EXPECT_EQ(thread.itsAsyncStopCalls, 1);
    EXPECT_EQ(thread.itsFinishCalls, 1);

    // A second request: Stopping is told once, the asynchronous hook every time.
    EXPECT_TRUE(thread.StopThread(0));
    EXPECT_EQ(thread.itsStoppingCalls, 1);
    EXPECT_EQ(thread.itsAsyncStopCalls, 2);
}

TEST(ThreadTest, AWorkerThatCatchesTheStopReturnsNormally)
{
    XEvent entered;
    std::atomic<UInt64> loops{0};
    XProbeThread thread([&](XProbeThread &) -> UInt32 {
        try
        {
            LoopUntilStopped(entered, loops);
        }
        catch (const XStopThreadException &)
        {
            return 3;
        }
        return 4;
    });
    thread.StartThread();
    ASSERT_TRUE(entered.Wait());
    EXPECT_TRUE(thread.StopThread(kBoundMs));
    EXPECT_EQ(thread.GetThreadOutcome(), kThreadReturned);
    EXPECT_EQ(thread.GetThreadReturnCode(), 3u);
}

TEST(ThreadTest, ExceptionsEscapingAWorkerAreRecorded)
{
    struct XCase
    {
        std::function<UInt32(XProbeThread &)> itsBody;
        UInt32 itsCode;
        const char * itsText;
    };
    const XCase cases[] = {
        {[](XProbeThread &) -> UInt32 { throw XException(kErrBadArgument, "bad value 17"); },
         kErrBadArgument, "bad value 17"},
        {[](XProbeThread &) -> UInt32 { throw std::runtime_error("boom"); }, kErrGeneric, "boom"},
        {[](XProbeThread &) -> UInt32 { throw 5; }, kErrGeneric, "unknown exception"},
        {[](XProbeThread &) -> UInt32 {
             XAssertText(false, "a deliberately broken precondition");
             return 0;
         },
         kErrGeneric, "a deliberately broken precondition"},
    };
    for (const XCase & item : cases)
    {
        XProbeThread thread(item.itsBody);
        thread.StartThread();
        ASSERT_TRUE(thread.WaitForTerminate(kBoundMs));
        EXPECT_EQ(thread.GetThreadOutcome(), kThreadFailed);
        EXPECT_EQ(thread.GetThreadReturnCode(), item.itsCode);
        EXPECT_NE(std::string(thread.GetThreadErrorMessage().c_str()).find(item.itsText),
                  std::string::npos)
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
    bool threw = true;
    bool isMain = true;
    std::thread plain([&] {
        current = XThread::GetCurrentThread() != nullptr;
        isMain = XThread::IsMainThread();
        try
        {
            XThread::TestCancelCurrentThread();
            threw = false;
        }
        catch (...)
        {
        }
    });
    plain.join();
    EXPECT_FALSE(current);
    EXPECT_FALSE(threw);
    EXPECT_FALSE(isMain);

    // A stop asked of a thread that never started: nothing to wait for.
    XProbeThread idle([](XProbeThread &) -> UInt32 { return 0; });
    EXPECT_TRUE(idle.StopThread(0));
    EXPECT_TRUE(idle.IsStopRequested());
    EXPECT_EQ(idle.itsStoppingCalls, 1);
}

namespace
{
// A worker without members of its own, so that it may be deleted while it runs.
class XEndlessThread : public XThread
{
public:
    XEndlessThread() : XThread("endless") {}
    static XEvent sEntered;
    static std::atomic<bool> sLeft;

protected:
    UInt32 RunSelf() override
    {
        sEntered.Set();
        try
        {
            for (;;)
                TestCancelCurrentThread();
        }
        catch (...)
        {
            sLeft = true;
            throw;
        }
    }
};
XEvent XEndlessThread::sEntered;
std::atomic<bool> XEndlessThread::sLeft{false};

// Deletes itself when it ends; its destructor tells.
class XSelfDeletingThread : public XThread
{
public:
    explicit XSelfDeletingThread(XEvent & aDeleted)
        : XThread("self-deleting", kThreadPriorityNormal, 0, true), itsDeleted(aDeleted)
    {
    }
    ~XSelfDeletingThread() override
    {
        itsSawSelf = GetCurrentThread() == this;
        itsDeleted.Set();
    }
    static std::atomic<bool> itsSawSelf;

protected:
    UInt32 RunSelf() override { return 0; }

private:
    XEvent & itsDeleted;
};
std::atomic<bool> XSelfDeletingThread::itsSawSelf{false};
} // namespace

TEST(ThreadTest, DestructorStopsAndJoinsARunningThread)
{
    auto * thread = new XEndlessThread;
    thread->StartThread();
    ASSERT_TRUE(XEndlessThread::sEntered.Wait());
    delete thread; // asks for the stop and joins: the loop has been left when it returns
    EXPECT_TRUE(XEndlessThread::sLeft);
}

TEST(ThreadTest, AutoDeleteThreadDeletesItselfOnItsOwnThread)
{
    XEvent deleted;
    auto * thread = new XSelfDeletingThread(deleted);
    thread->StartThread(); // not to be touched any more
    EXPECT_TRUE(deleted.Wait());
    EXPECT_TRUE(XSelfDeletingThread::itsSawSelf);
}

TEST(ThreadTest, SuspendParksAtTheCancelTestAndResumeGoesOn)
{
    XEvent entered;
    std::atomic<UInt64> loops{0};
    XProbeThread thread([&](XProbeThread &) -> UInt32 { return LoopUntilStopped(entered, loops); });
    thread.StartThread();
    ASSERT_TRUE(entered.Wait());

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
    XProbeThread thread(
        [&](XProbeThread &) -> UInt32 {
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
    EXPECT_EQ(thread.GetThreadOutcome(), kThreadReturned);
    // Below normal is nice 5, unless the process already runs nicer than that.
    EXPECT_EQ(niceValue.load(), std::max(inherited, 5));
    EXPECT_GE(stackSize.load(), 1024u * 1024u);
    // The priority is the worker's own: this thread keeps its value.
    EXPECT_EQ(::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid())), inherited);
}

TEST(ThreadTest, StopExceptionIsSilent)
{
    XStopThreadException stop("worker");
    const XException & asException = stop;
    EXPECT_EQ(asException.GetErrorNumber(), static_cast<UInt32>(kErrThreadStopped));
    EXPECT_FALSE(asException.ShouldLogError());
    EXPECT_FALSE(asException.ShouldReportError());
    EXPECT_NE(std::string(asException.what()).find("worker"), std::string::npos);
    EXPECT_TRUE(XException(kErrBadArgument).ShouldLogError());
}
