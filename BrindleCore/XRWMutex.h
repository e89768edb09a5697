#pragma once
// A reader-writer mutex with a time-out: any number of readers together, or one writer alone.
//
// - Writers go first: while a writer waits, new readers wait too, so a stream of readers
//   cannot starve a writer.
// - The writer may lock again, for writing or for reading; each such Lock counts as part of its
//   write lock and is undone by an Unlock of the same mode.
// - Read locks are not recursive: a reader must not ask for a second read lock (a waiting
//   writer would block it for ever) and must not ask for a write lock while it reads.
// A Lock that runs out of time either throws XException kErrTimeOut (1009) or answers false.

#include <condition_variable>
#include <mutex>
#include <thread>

#include "XMutex.h"
#include "XTypes.h"

enum XRWLockMode : UInt32
{
    kRWLockRead = 0,
    kRWLockWrite = 1
};

class XRWMutex
{
public:
    // Holds an XRWMutex for a scope, in one mode.
    class XScopedLock
    {
    public:
        XScopedLock(const XRWMutex & aMutex, XRWLockMode aMode,
                    UInt32 aTimeOutMs = kInfiniteTimeOut, bool aThrowOnTimeOut = true);
        XScopedLock(const XScopedLock &) = delete;
        XScopedLock & operator=(const XScopedLock &) = delete;
        ~XScopedLock();
        bool IsLocked() const { return itsLocked; }

    private:
        const XRWMutex & itsMutex;
        XRWLockMode itsMode;
        bool itsLocked;
    };

    XRWMutex();
    XRWMutex(const XRWMutex &) = delete;
    XRWMutex & operator=(const XRWMutex &) = delete;
    ~XRWMutex();

    // Waits up to aTimeOutMs (kInfiniteTimeOut: for ever; 0: only tries). True when granted;
    // on time-out throws XException kErrTimeOut when aThrowOnTimeOut, else answers false.
    bool Lock(XRWLockMode aMode, UInt32 aTimeOutMs = kInfiniteTimeOut,
              bool aThrowOnTimeOut = true) const;
    // Undoes one Lock of that mode by the calling thread (asserted for the writer).
    void Unlock(XRWLockMode aMode) const;

    // A snapshot, for diagnostics: the readers inside, and whether a writer is inside.
    UInt32 GetReaderCount() const;
    bool IsWriteLocked() const;
    bool IsWriteLockedByCurrentThread() const;

private:
    mutable std::mutex itsGuard;                     // guards the members below
    mutable std::condition_variable itsReadersMayGo; // told when no writer is in or waiting
    mutable std::condition_variable itsWriterMayGo;  // told when nobody is in
    mutable UInt32 itsReaders = 0;
    mutable UInt32 itsWaitingWriters = 0;
    mutable std::thread::id itsWriter;
    mutable UInt32 itsWriteDepth = 0;
};
