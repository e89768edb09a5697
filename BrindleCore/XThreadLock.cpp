#include "XThreadLock.h"

#include "XAssert.h"

XThreadLock::XThreadLock(const XMutex & aMutex) : itsMutex(aMutex), itsLocked(aMutex.Lock()) {}

XThreadLock::XThreadLock(const XMutex & aMutex, UInt32 aTimeOutMs, bool aThrowOnTimeOut)
    : itsMutex(aMutex), itsLocked(aMutex.Lock(aTimeOutMs, aThrowOnTimeOut))
{
}

XThreadLock::~XThreadLock()
{
    if (itsLocked)
        itsMutex.Unlock();
}

void XThreadLock::Unlock()
{
    if (itsLocked)
    {
        itsLocked = false;
        itsMutex.Unlock();
    }
}

bool XThreadLock::Relock(UInt32 aTimeOutMs, bool aThrowOnTimeOut)
{
    XAssertText(!itsLocked, "the holder does not hold its mutex already");
    itsLocked = itsMutex.Lock(aTimeOutMs, aThrowOnTimeOut);
    return itsLocked;
}
