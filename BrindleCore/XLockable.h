#pragma once
// Data that is locked before it is touched, and that may be fetched lazily at its first lock.
//
// Locks are taken with the scoped XLock. Modes (XLockMode): 2 (read) is shared, any number of
// readers hold it together; 1 (read and write) and 3 (write, old contents not needed) are
// exclusive. A thread may nest any locks that it holds: a read inside its own write, a write
// inside its own write, a read inside its own read. A write asked by a thread that holds only a
// read on the same lockable would wait for itself forever: it is reported as a programming error
// (XInternalError) instead.
//
// Fairness: there is no writer preference. A reader is let in whenever no writer holds the
// lock, even while writers wait, so readers are never held up by waiting writers (and a read
// nested in one's own read can never deadlock); a steady stream of overlapping readers can keep
// a writer waiting for as long as it lasts.
//
// Speed: the lock state is one atomic word (reader count, waiter flag, writer's thread number).
// An uncontended lock or unlock is one compare-and-exchange; only a thread that has to wait
// takes a mutex and sleeps on a condition variable, shared by lockables through a small table
// keyed by address, so that a lockable costs a few words.
//
// Fetching: a lockable may hold an XDataFetcher. The first XLock (in any mode) runs it through
// FetchData before LockSelf, and so does the first XLock after the subclass marks the data as
// not fetched (XMemoryHandle::Purge). Subclasses override FetchData to fetch parts of their own
// and call XLockable::FetchData first.
//
// Copies: a copy starts unlocked. It shares the original's fetcher and takes over whether the
// data was fetched, so a copy of data that is not yet in memory still brings it in at its own
// first lock. Assignment leaves the target's lock state alone (it is the target's lock, possibly
// held right now) and takes the source's fetcher and fetched state likewise, except while the
// target's own fetcher runs on this thread: a fetcher fills its target by assignment, and the
// target keeps the fetcher that is filling it. Explicit sharing (a volume's CopyFrom) uses
// SetDataFetcher.

#include <atomic>
#include <mutex>

#include "XDataFetcher.h"
#include "XRefPtrBase.h"
#include "XTypes.h"

class XLockable
{
public:
    virtual ~XLockable();

    // Attaches aFetcher (null detaches). A fetcher marks the data as not fetched, so the next
    // lock runs it; detaching marks the data as fetched (there is nothing left to bring).
    virtual void SetDataFetcher(XDataFetcher * aFetcher);
    // Runs the fetcher once if the data is not fetched yet. Safe from several threads at once:
    // the fetcher runs on one of them, the others wait for it. A call made from inside this
    // lockable's own running fetcher returns at once.
    virtual void FetchData() const;

    // The attached fetcher, or null; the lockable keeps it alive while it stays attached.
    XDataFetcher * GetDataFetcher() const;
    bool HasDataFetcher() const { return itsHasFetcher.load(std::memory_order_acquire); }
    bool IsDataFetched() const { return itsFetched.load(std::memory_order_acquire); }
    // True while any thread holds a lock on this lockable (for diagnostics and assertions).
    bool IsLocked() const;
    // True while the current thread holds this lockable in mode 1 or 3.
    bool IsWriteLockedByCurrentThread() const;

protected:
    XLockable();
    XLockable(const XLockable & anOther);
    XLockable & operator=(const XLockable & anOther);

    // This class's own part of taking and releasing a lock, called after the lock is granted and
    // the data fetched, and before it is released. The defaults do nothing.
    virtual void LockSelf(XLockMode aMode) const;
    virtual void UnlockSelf(XLockMode aMode) const;

    // Pass a lock on to a lockable that one owns (a volume to its memory handle): they run the
    // other object's LockSelf and UnlockSelf.
    static void LockFor(const XLockable & aLockable, XLockMode aMode);
    static void UnlockFor(const XLockable & aLockable, XLockMode aMode);

    // Marks the data as fetched or not, for subclasses that drop fetchable data.
    void SetDataFetched(bool aFetched) const
    {
        itsFetched.store(aFetched, std::memory_order_release);
    }
    // True while this lockable's fetcher runs on the current thread.
    bool IsFetchingOnCurrentThread() const;
    // For subclasses that let go of data the fetcher can bring back: when a fetcher is attached,
    // the data is fetched and no fetch through that fetcher is running, runs aDrop and marks the
    // data as not fetched, so that the next lock fetches again. False (and nothing done)
    // otherwise. The caller makes sure that no lock is held.
    bool DropFetchedData(void (*aDrop)(const XLockable &)) const;
    // A short-term mutex for a subclass's own lock-time work (shared with other lockables by
    // address). Hold it briefly and take no other lock, and call no XLockable operation, under it.
    std::mutex & GetGuardMutex() const;

private:
    friend class XLock;

    // The lock word. Blocks until granted; reports a write asked inside one's own read.
    void Acquire(XLockMode aMode) const;
    void Release(XLockMode aMode) const;
    bool TryAcquireState(XLockMode aMode, UInt64 aThreadBits) const;
    void AcquireSlow(XLockMode aMode, UInt64 aThreadBits) const;
    void WakeWaiters() const;
    // Copies the fetcher reference and fetched flag under this lockable's guard.
    void CopyFetchState(XRefPtr<XDataFetcher> & outFetcher, bool & outFetched) const;

    // Bits 0-30: readers; bit 31: threads are waiting; bits 32-63: the writer's thread number.
    mutable std::atomic<UInt64> itsState{0};
    mutable UInt32 itsOwnerDepth = 0; // nested locks of the writer, touched by the writer only
    mutable UInt32 itsWaiters = 0;    // threads asleep on this lockable, under the wait mutex
    mutable std::atomic<bool> itsFetched{true};
    std::atomic<bool> itsHasFetcher{false};
    XRefPtr<XDataFetcher> itsFetcher; // read and replaced under the guard mutex
};
