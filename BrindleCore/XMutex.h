#pragma once
// A recursive mutex with a time-out. The thread that holds it may lock it again; it is free when
// every Lock has been matched by an Unlock. A Lock that runs out of time either throws
// XException kErrTimeOut (1009) or answers false, as asked.
//
// The constructor only sets members, so an XMutex can be a static of any translation unit
// (the library keeps a few with a time-out of 4000 ms). Lock and Unlock are const: locking
// does not change the guarded value, and waits take the mutex by const reference.

#include <condition_variable>
#include <mutex>
#include <thread>

#include "XTypes.h"

// A time-out that never runs out.
inline constexpr UInt32 kInfiniteTimeOut = 0xFFFFFFFFu;

class XMutex
{
public:
    // aTimeOutMs and aThrowOnTimeOut are what Lock() without arguments uses.
    explicit XMutex(UInt32 aTimeOutMs = kInfiniteTimeOut, bool aThrowOnTimeOut = true);
    XMutex(const XMutex &) = delete;
    XMutex & operator=(const XMutex &) = delete;
    ~XMutex();

    // Lock with the constructor's time-out and throw flag.
    bool Lock() const;
    // Waits up to aTimeOutMs (kInfiniteTimeOut: for ever; 0: only tries). True when the calling
    // thread holds the mutex; on time-out throws XException kErrTimeOut when aThrowOnTimeOut,
    // else answers false.
    bool Lock(UInt32 aTimeOutMs, bool aThrowOnTimeOut) const;
    // Lock(0, false).
    bool TryLock() const;
    // Undoes one Lock. The calling thread must hold the mutex (asserted).
    void Unlock() const;

    // How many times the calling thread holds the mutex; 0 when it does not.
    UInt32 GetLockDepth() const;
    bool IsLockedByCurrentThread() const { return GetLockDepth() > 0; }

    UInt32 GetDefaultTimeOut() const { return itsTimeOut; }
    bool GetThrowOnTimeOut() const { return itsThrowOnTimeOut; }

private:
    UInt32 itsTimeOut;
    bool itsThrowOnTimeOut;
    mutable std::mutex itsGuard;             // guards the members below
    mutable std::condition_variable itsFree; // told when the depth drops to 0
    mutable std::thread::id itsOwner;
    mutable UInt32 itsDepth = 0;
    mutable UInt32 itsWaiters = 0;
};
