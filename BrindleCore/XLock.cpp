#include "XLock.h"

XLock::XLock(const XLockable & aLockable, XLockMode aMode) : itsLockable(aLockable), itsMode(aMode)
{
    itsLockable.Acquire(aMode);
    try
    {
        itsLockable.FetchData();
        itsLockable.LockSelf(aMode);
    }
    catch (...)
    {
        itsLockable.Release(aMode);
        throw;
    }
}

XLock::~XLock()
{
    try
    {
        itsLockable.UnlockSelf(itsMode);
    }
    catch (...)
    {
        // A destructor must not throw; the lock is released all the same.
    }
    itsLockable.Release(itsMode);
}
