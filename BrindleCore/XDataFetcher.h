#pragma once
// Brings the data of an XLockable into memory when it is first locked.
//
// A fetcher is attached to a lockable with XLockable::SetDataFetcher and is reference counted:
// the lockable holds it through an XRefPtr, and several lockables (copies of one handle, a
// volume and the volume it copied from) may share one. The lockable runs LoadDataSelf at most
// once per fetch: at its first lock, and again after its memory was purged. Loads through one
// fetcher are serialised, so a fetcher shared by lockables on different threads runs on one
// thread at a time.
//
// LoadDataSelf runs while the lock that asked for the data is held, in whatever mode it was
// asked. It must therefore not lock the target itself for writing; it fills the target by
// assignment (for a memory handle: aTarget = loadedHandle), which keeps the target's fetcher.

#include <mutex>

#include "XRefCountable.h"

class XLockable;

class XDataFetcher : public XRefCountable
{
public:
    XDataFetcher();
    XDataFetcher(const XDataFetcher &) = delete;
    XDataFetcher & operator=(const XDataFetcher &) = delete;
    ~XDataFetcher() override;

protected:
    friend class XLockable;

    // Loads the data into aTarget. Exceptions pass to the XLock that asked; the data then stays
    // not fetched, and the next lock tries again.
    virtual void LoadDataSelf(XLockable & aTarget) = 0;

private:
    std::mutex itsLoadMutex; // held by XLockable::FetchData while LoadDataSelf runs
};
