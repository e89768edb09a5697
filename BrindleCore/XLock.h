#pragma once
// A scoped lock on an XLockable.
//
// The constructor blocks until the mode can be granted (see XLockable for the rules), then makes
// sure the data is fetched (FetchData) and runs the lockable's LockSelf. If either throws, the
// lock is released and the exception goes on. The destructor runs UnlockSelf and releases.
// An XLock belongs to the thread that made it; it cannot be copied or moved.

#include "XLockable.h"

class XLock
{
public:
    XLock(const XLockable & aLockable, XLockMode aMode);
    XLock(const XLock &) = delete;
    XLock & operator=(const XLock &) = delete;
    ~XLock();

    const XLockable & GetLockable() const { return itsLockable; }
    XLockMode GetMode() const { return itsMode; }

private:
    const XLockable & itsLockable;
    XLockMode itsMode;
};
