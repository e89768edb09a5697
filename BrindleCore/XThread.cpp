#include "XThread.h"

#include <chrono>
#include <string>
#include <system_error>
#include <thread>

#include <cxxabi.h>
#include <sys/resource.h>
#include <unistd.h>

#include "XAssert.h"
#include "XConditionVariable.h"
#include "XException.h"
#include "XStopThreadException.h"

namespace
{
// The XThread whose worker runs on this thread; null elsewhere.
thread_local XThread * tCurrentThread = nullptr;

constexpr std::size_t kMaxThreadNameBytes = 15; // the kernel keeps 16 bytes with the end mark

// The first bytes of aName that fit the kernel's limit, cut at a character boundary.
std::string ShortThreadName(const XString & aName)
{
    std::string name = aName.GetStdString();
    if (name.size() <= kMaxThreadNameBytes)
        return name;
    std::size_t length = kMaxThreadNameBytes;
    // Step back over UTF-8 continuation bytes (10xxxxxx) so as not to split a character.
    while (length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0u) == 0x80u)
        --length;
    return name.substr(0, length);
}

// The nice value of a priority; kThreadPriorityNormal leaves the inherited one.
int NiceValue(XThreadPriority aPriority)
{
    switch (aPriority)
    {
    case kThreadPriorityIdle: return 19;
    case kThreadPriorityLowest: return 10;
    case kThreadPriorityBelowNormal: return 5;
    case kThreadPriorityAboveNormal: return -5;
    case kThreadPriorityHighest: return -10;
    case kThreadPriorityTimeCritical: return -20;
    case kThreadPriorityNormal: break;
    }
    return 0;
}

// The stack size to ask for: at least the system's minimum, a whole number of pages.
std::size_t StackSizeFor(UInt32 aStackSize)
{
    std::size_t size = aStackSize;
    const auto minimum = ::sysconf(_SC_THREAD_STACK_MIN);
    if (minimum > 0 && size < static_cast<std::size_t>(minimum))
        size = static_cast<std::size_t>(minimum);
    const auto page = ::sysconf(_SC_PAGESIZE);
    if (page > 0)
    {
        const std::size_t pageSize = static_cast<std::size_t>(page);
        size = (size + pageSize - 1) / pageSize * pageSize;
    }
    return size;
}

// Inside a catch block: what the exception in flight means for the thread's end.
void ClassifyCurrentException(UInt32 & outCode, XThreadOutcome & outOutcome, XString & outMessage)
{
    try
    {
        throw;
    }
    catch (const XException & anError)
    {
        outCode = anError.GetErrorNumber();
        outOutcome = outCode == kErrThreadStopped ? kThreadStopped : kThreadFailed;
        outMessage = anError.GetErrorMessage();
    }
    catch (const std::exception & anError)
    {
        outCode = kErrGeneric;
        outOutcome = kThreadFailed;
        outMessage = XString(anError.what());
    }
    catch (...)
    {
        outCode = kErrGeneric;
        outOutcome = kThreadFailed;
        outMessage = XString("unknown exception");
    }
}

template <typename TReady>
bool WaitFor(std::condition_variable & aCondition, std::unique_lock<std::mutex> & aGuard,
             UInt32 aTimeOutMs, TReady aReady)
{
    if (aTimeOutMs == kInfiniteTimeOut)
    {
        aCondition.wait(aGuard, aReady);
        return true;
    }
    return aCondition.wait_until(
        aGuard, std::chrono::steady_clock::now() + std::chrono::milliseconds(aTimeOutMs), aReady);
}
} // namespace

XThread::XThread(const XString & aName, XThreadPriority aPriority, UInt32 aStackSize,
                 bool anAutoDelete)
    : itsName(aName), itsPriority(aPriority), itsStackSize(aStackSize), itsAutoDelete(anAutoDelete)
{
}

XThread::~XThread()
{
    if (tCurrentThread == this)
    {
        // An auto-delete thread ending: it was made detached, there is nothing to join.
        std::lock_guard<std::mutex> join(itsJoinGuard);
        if (itsJoinable)
        {
            ::pthread_detach(itsHandle);
            itsJoinable = false;
        }
        return;
    }
    bool running = false;
    {
        std::lock_guard<std::mutex> state(itsStateGuard);
        running = itsStarted && !itsFinished;
    }
    if (running)
    {
        RequestStop();
        WaitForEnd(kInfiniteTimeOut);
    }
    Join();
}

void XThread::StartThread()
{
    {
        std::lock_guard<std::mutex> state(itsStateGuard);
        XAssertText(!itsStarted, "the thread is started only once");
        itsStarted = true;
    }
    pthread_attr_t attributes;
    ::pthread_attr_init(&attributes);
    int error = 0;
    if (itsStackSize > 0)
        error = ::pthread_attr_setstacksize(&attributes, StackSizeFor(itsStackSize));
    const bool autoDelete = itsAutoDelete;
    if (error == 0 && autoDelete)
        error = ::pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    if (error == 0)
    {
        if (autoDelete)
        {
            // The new thread may end and delete this object at once: touch no member after.
            pthread_t handle;
            error = ::pthread_create(&handle, &attributes, &XThread::ThreadEntry, this);
        }
        else
        {
            std::lock_guard<std::mutex> join(itsJoinGuard);
            error = ::pthread_create(&itsHandle, &attributes, &XThread::ThreadEntry, this);
            itsJoinable = error == 0;
        }
    }
    ::pthread_attr_destroy(&attributes);
    if (error != 0)
    {
        {
            std::lock_guard<std::mutex> state(itsStateGuard);
            itsStarted = false;
        }
        throw XException(kErrThread, "\"" + itsName.GetStdString() + "\": " +
                                         std::system_category().message(error));
    }
}

bool XThread::StopThread(UInt32 aTimeOutMs)
{
    const bool autoDelete = itsAutoDelete;
    if (RequestStop())
        Stopping();
    AsyncStopThreadSelf();
    if (!IsThreadStarted())
        return true;
    if (tCurrentThread == this || autoDelete)
        return false;
    return WaitForTerminate(aTimeOutMs);
}

bool XThread::WaitForTerminate(UInt32 aTimeOutMs)
{
    XAssertText(tCurrentThread != this, "a thread does not wait for its own end");
    if (!IsThreadStarted())
        return true;
    XAssertText(!itsAutoDelete, "nobody waits for an auto-delete thread");
    if (!WaitForEnd(aTimeOutMs))
        return false;
    Join();
    return true;
}

bool XThread::WaitForEnd(UInt32 aTimeOutMs)
{
    std::unique_lock<std::mutex> state(itsStateGuard);
    return WaitFor(itsStateChanged, state, aTimeOutMs, [this] { return itsFinished; });
}

void XThread::Join()
{
    std::lock_guard<std::mutex> join(itsJoinGuard);
    if (itsJoinable)
    {
        ::pthread_join(itsHandle, nullptr);
        itsJoinable = false;
    }
}

void XThread::SuspendThread()
{
    std::lock_guard<std::mutex> state(itsStateGuard);
    XAssertText(itsSuspendCount < 0xFFFFFFFFu, "the thread is suspended fewer than 2^32 times");
    ++itsSuspendCount;
    itsControl.fetch_or(kSuspendBit, std::memory_order_acq_rel);
}

void XThread::ResumeThread()
{
    std::lock_guard<std::mutex> state(itsStateGuard);
    XAssertText(itsSuspendCount > 0, "the thread is suspended");
    if (--itsSuspendCount == 0)
    {
        itsControl.fetch_and(~kSuspendBit, std::memory_order_acq_rel);
        itsStateChanged.notify_all();
    }
}

bool XThread::IsThreadSuspended() const
{
    std::lock_guard<std::mutex> state(itsStateGuard);
    return itsParked;
}

bool XThread::IsThreadStarted() const
{
    std::lock_guard<std::mutex> state(itsStateGuard);
    return itsStarted;
}

bool XThread::IsThreadRunning() const
{
    std::lock_guard<std::mutex> state(itsStateGuard);
    return itsStarted && !itsFinished;
}

bool XThread::IsStopRequested() const
{
    return (itsControl.load(std::memory_order_acquire) & kStopBit) != 0;
}

XThreadOutcome XThread::GetThreadOutcome() const
{
    std::lock_guard<std::mutex> state(itsStateGuard);
    return itsOutcome;
}

UInt32 XThread::GetThreadReturnCode() const
{
    std::lock_guard<std::mutex> state(itsStateGuard);
    return itsReturnCode;
}

XString XThread::GetThreadErrorMessage() const
{
    std::lock_guard<std::mutex> state(itsStateGuard);
    return itsErrorMessage;
}

XThreadID XThread::GetThreadID() const
{
    return itsThreadID.load(std::memory_order_acquire);
}

XThread * XThread::GetCurrentThread()
{
    return tCurrentThread;
}

XThreadID XThread::GetCurrentThreadID()
{
    thread_local const XThreadID tID = static_cast<XThreadID>(::gettid());
    return tID;
}

XThreadID XThread::GetMainThreadID()
{
    return static_cast<XThreadID>(::getpid());
}

bool XThread::IsMainThread()
{
    return GetCurrentThreadID() == GetMainThreadID();
}

UInt32 XThread::GetProcessorCount()
{
    static const UInt32 sCount = [] {
        const unsigned int count = std::thread::hardware_concurrency();
        return count > 0 ? static_cast<UInt32>(count) : 1u;
    }();
    return sCount;
}

void XThread::TestCancelCurrentThread()
{
    XThread * current = tCurrentThread;
    if (current != nullptr && current->itsControl.load(std::memory_order_acquire) != 0)
        [[unlikely]] current->HandleControlRequest();
}

void XThread::HandleControlRequest()
{
    if ((itsControl.load(std::memory_order_acquire) & kStopBit) == 0)
    {
        bool park = false;
        {
            std::lock_guard<std::mutex> state(itsStateGuard);
            park = itsSuspendCount > 0;
            itsParked = park;
        }
        if (park)
        {
            Suspending();
            {
                std::unique_lock<std::mutex> state(itsStateGuard);
                itsStateChanged.wait(state, [this] {
                    return itsSuspendCount == 0 ||
                           (itsControl.load(std::memory_order_acquire) & kStopBit) != 0;
                });
                itsParked = false;
            }
            Resuming();
        }
    }
    if ((itsControl.load(std::memory_order_acquire) & kStopBit) != 0)
        throw XStopThreadException(itsName.GetStdString());
}

bool XThread::RequestStop()
{
    const UInt32 before = itsControl.fetch_or(kStopBit, std::memory_order_acq_rel);
    {
        // Under the guard, so that a worker about to park cannot miss the request.
        std::lock_guard<std::mutex> state(itsStateGuard);
        itsStateChanged.notify_all();
    }
    WakeAlertableWait();
    return (before & kStopBit) == 0;
}

void XThread::BeginAlertableWait(XConditionVariable * aCondition)
{
    std::lock_guard<std::mutex> wait(itsWaitGuard);
    itsWaitingOn = aCondition;
}

void XThread::EndAlertableWait()
{
    std::lock_guard<std::mutex> wait(itsWaitGuard);
    itsWaitingOn = nullptr;
}

void XThread::WakeAlertableWait()
{
    // The worker leaves its wait only after clearing itsWaitingOn under this guard, so the
    // condition variable is alive while it is told.
    std::lock_guard<std::mutex> wait(itsWaitGuard);
    if (itsWaitingOn != nullptr)
        itsWaitingOn->WakeStoppedThread(this);
}

void * XThread::ThreadEntry(void * aThread)
{
    static_cast<XThread *>(aThread)->Run();
    return nullptr;
}

void XThread::Run()
{
    tCurrentThread = this;
    itsThreadID.store(GetCurrentThreadID(), std::memory_order_release);
    const std::string shortName = ShortThreadName(itsName);
    if (!shortName.empty())
        ::pthread_setname_np(::pthread_self(), shortName.c_str());
    if (itsPriority != kThreadPriorityNormal)
    {
        // Linux gives each thread a nice value of its own; a failure to raise the priority
        // (no right to) leaves the inherited one.
        ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), NiceValue(itsPriority));
    }

    UInt32 code = 0;
    XThreadOutcome outcome = kThreadReturned;
    XString message;
    try
    {
        code = RunSelf();
    }
    catch (abi::__forced_unwind &)
    {
        // pthread_exit or a cancellation: the unwinding must go on, but the end is made known.
        EndRun(kErrGeneric, kThreadFailed, "the thread was ended by the system");
        throw;
    }
    catch (...)
    {
        ClassifyCurrentException(code, outcome, message);
    }
    try
    {
        FinishThreadSelf();
    }
    catch (abi::__forced_unwind &)
    {
        EndRun(kErrGeneric, kThreadFailed, "the thread was ended by the system");
        throw;
    }
    catch (...)
    {
        // The first failure is the one that tells.
        if (outcome == kThreadReturned)
            ClassifyCurrentException(code, outcome, message);
    }
    EndRun(code, outcome, message);
}

void XThread::EndRun(UInt32 aReturnCode, XThreadOutcome anOutcome, const XString & aMessage)
{
    const bool autoDelete = itsAutoDelete;
    {
        std::lock_guard<std::mutex> state(itsStateGuard);
        itsReturnCode = aReturnCode;
        itsOutcome = anOutcome;
        itsErrorMessage = aMessage;
        itsFinished = true;
        itsParked = false;
        itsStateChanged.notify_all();
    }
    if (autoDelete)
        delete this; // its destructor sees tCurrentThread == this and joins nothing
    tCurrentThread = nullptr;
}

void XThread::Stopping() {}

void XThread::Suspending() {}

void XThread::Resuming() {}

void XThread::FinishThreadSelf() {}

void XThread::AsyncStopThreadSelf() {}
