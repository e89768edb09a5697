#include "XRWMutex.h"

#include <chrono>
#include <string>

#include "XAssert.h"
#include "XException.h"

namespace
{
// Waits on aCondition until aReady holds or aTimeOutMs has passed; true when aReady holds.
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

bool TimedOut(UInt32 aTimeOutMs, bool aThrowOnTimeOut, const char * aMode)
{
    if (aThrowOnTimeOut)
        throw XException(kErrTimeOut, std::string("a reader-writer mutex was not free for ") +
                                          aMode + " within " + std::to_string(aTimeOutMs) +
                                          " ms");
    return false;
}
} // namespace

XRWMutex::XScopedLock::XScopedLock(const XRWMutex & aMutex, XRWLockMode aMode,
                                   UInt32 aTimeOutMs, bool aThrowOnTimeOut)
    : itsMutex(aMutex), itsMode(aMode), itsLocked(aMutex.Lock(aMode, aTimeOutMs, aThrowOnTimeOut))
{
}

XRWMutex::XScopedLock::~XScopedLock()
{
    if (itsLocked)
        itsMutex.Unlock(itsMode);
}

XRWMutex::XRWMutex() = default;

XRWMutex::~XRWMutex() = default;

bool XRWMutex::Lock(XRWLockMode aMode, UInt32 aTimeOutMs, bool aThrowOnTimeOut) const
{
    XAssertText(aMode == kRWLockRead || aMode == kRWLockWrite, "a known reader-writer lock mode");
    const std::thread::id self = std::this_thread::get_id();
    std::unique_lock<std::mutex> guard(itsGuard);
    if (itsWriteDepth > 0 && itsWriter == self)
    {
        // The writer nests; a read inside a write is part of the write.
        XAssertText(itsWriteDepth < 0xFFFFFFFFu, "the mutex is locked fewer than 2^32 times");
        ++itsWriteDepth;
        return true;
    }
    if (aMode == kRWLockRead)
    {
        if (!WaitFor(itsReadersMayGo, guard, aTimeOutMs,
                     [this] { return itsWriteDepth == 0 && itsWaitingWriters == 0; }))
        {
            guard.unlock();
            return TimedOut(aTimeOutMs, aThrowOnTimeOut, "reading");
        }
        ++itsReaders;
        return true;
    }
    ++itsWaitingWriters;
    const bool granted = WaitFor(itsWriterMayGo, guard, aTimeOutMs,
                                 [this] { return itsWriteDepth == 0 && itsReaders == 0; });
    --itsWaitingWriters;
    if (!granted)
    {
        // Readers held back by this writer may go now, unless another writer still waits; a
        // wake-up meant for the writers that this one took is handed on.
        if (itsWaitingWriters == 0 && itsWriteDepth == 0)
            itsReadersMayGo.notify_all();
        else if (itsWaitingWriters > 0 && itsWriteDepth == 0 && itsReaders == 0)
            itsWriterMayGo.notify_one();
        guard.unlock();
        return TimedOut(aTimeOutMs, aThrowOnTimeOut, "writing");
    }
    itsWriter = self;
    itsWriteDepth = 1;
    return true;
}

void XRWMutex::Unlock(XRWLockMode aMode) const
{
    XAssertText(aMode == kRWLockRead || aMode == kRWLockWrite, "a known reader-writer lock mode");
    const std::thread::id self = std::this_thread::get_id();
    std::unique_lock<std::mutex> guard(itsGuard);
    if (itsWriteDepth > 0)
    {
        // While a writer is inside there are no other readers: only the writer may unlock.
        XAssertText(itsWriter == self, "the writer unlocks its own lock");
        if (--itsWriteDepth > 0)
            return;
        itsWriter = std::thread::id();
    }
    else
    {
        XAssertText(aMode == kRWLockRead && itsReaders > 0, "a read lock is held");
        if (--itsReaders > 0)
            return;
    }
    // Nobody is inside now: a waiting writer goes first, else all waiting readers.
    if (itsWaitingWriters > 0)
        itsWriterMayGo.notify_one();
    else
        itsReadersMayGo.notify_all();
}

UInt32 XRWMutex::GetReaderCount() const
{
    std::lock_guard<std::mutex> guard(itsGuard);
    return itsReaders;
}

bool XRWMutex::IsWriteLocked() const
{
    std::lock_guard<std::mutex> guard(itsGuard);
    return itsWriteDepth > 0;
}

bool XRWMutex::IsWriteLockedByCurrentThread() const
{
    std::lock_guard<std::mutex> guard(itsGuard);
    return itsWriteDepth > 0 && itsWriter == std::this_thread::get_id();
}
