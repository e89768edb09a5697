#pragma once
// Holds an XMutex for a scope: locks in the constructor, unlocks in the destructor, also when
// an exception passes.

#include "XMutex.h"

class XThreadLock
{
public:
    // Locks with the mutex's own time-out and throw flag.
    explicit XThreadLock(const XMutex & aMutex);
    // Locks with the given time-out; see XMutex::Lock. When the lock runs out of time without
    // throwing, the holder holds nothing and IsLocked answers false.
    XThreadLock(const XMutex & aMutex, UInt32 aTimeOutMs, bool aThrowOnTimeOut);
    XThreadLock(const XThreadLock &) = delete;
    XThreadLock & operator=(const XThreadLock &) = delete;
    ~XThreadLock();

    bool IsLocked() const { return itsLocked; }
    // Lets go of the mutex before the end of the scope; nothing when not locked.
    void Unlock();
    // Takes the mutex again after Unlock (or after a failed lock); see XMutex::Lock.
    bool Relock(UInt32 aTimeOutMs, bool aThrowOnTimeOut);

private:
    const XMutex & itsMutex;
    bool itsLocked;
};
