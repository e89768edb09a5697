#include "XMutex.h"

#include <chrono>
#include <string>

#include "XAssert.h"
#include "XException.h"

XMutex::XMutex(UInt32 aTimeOutMs, bool aThrowOnTimeOut)
    : itsTimeOut(aTimeOutMs), itsThrowOnTimeOut(aThrowOnTimeOut)
{
}

// A mutex destroyed while held is a programming error, but a destructor must not throw, so the
// error is not reported here.
XMutex::~XMutex() = default;

bool XMutex::Lock() const
{
    return Lock(itsTimeOut, itsThrowOnTimeOut);
}

bool XMutex::Lock(UInt32 aTimeOutMs, bool aThrowOnTimeOut) const
{
    const std::thread::id self = std::this_thread::get_id();
    std::unique_lock<std::mutex> guard(itsGuard);
    if (itsDepth > 0 && itsOwner == self)
    {
        XAssertText(itsDepth < 0xFFFFFFFFu, "the mutex is locked fewer than 2^32 times");
        ++itsDepth;
        return true;
    }
    if (itsDepth > 0)
    {
        auto isFree = [this] { return itsDepth == 0; };
        ++itsWaiters;
        bool gotIt = true;
        if (aTimeOutMs == kInfiniteTimeOut)
            itsFree.wait(guard, isFree);
        else
            gotIt = itsFree.wait_until(guard,
                                       std::chrono::steady_clock::now() +
                                           std::chrono::milliseconds(aTimeOutMs),
                                       isFree);
        --itsWaiters;
        if (!gotIt)
        {
            guard.unlock();
            if (aThrowOnTimeOut)
                throw XException(kErrTimeOut, "a mutex was not free within " +
                                                  std::to_string(aTimeOutMs) + " ms");
            return false;
        }
    }
    itsOwner = self;
    itsDepth = 1;
    return true;
}

bool XMutex::TryLock() const
{
    return Lock(0, false);
}

void XMutex::Unlock() const
{
    std::unique_lock<std::mutex> guard(itsGuard);
    XAssertText(itsDepth > 0 && itsOwner == std::this_thread::get_id(),
                "the mutex is held by the calling thread");
    if (--itsDepth == 0)
    {
        itsOwner = std::thread::id();
        if (itsWaiters > 0)
            itsFree.notify_one();
    }
}

UInt32 XMutex::GetLockDepth() const
{
    std::lock_guard<std::mutex> guard(itsGuard);
    return itsOwner == std::this_thread::get_id() ? itsDepth : 0;
}
