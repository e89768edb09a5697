#include "XLockable.h"

#include <condition_variable>
#include <mutex>

#include "XAssert.h"

namespace
{
constexpr UInt64 kReaderMask = 0x7FFFFFFFull;
constexpr UInt64 kWaitersBit = 1ull << 31;
constexpr UInt32 kWriterShift = 32;
constexpr UInt64 kWriterMask = ~0ull << kWriterShift;

constexpr UInt64 Readers(UInt64 aState)
{
    return aState & kReaderMask;
}

constexpr UInt64 Writer(UInt64 aState)
{
    return aState & kWriterMask;
}

// Read locks held by one thread, kept so that a write asked inside one's own read is caught.
// Reads beyond the table are counted but not named; they only weaken that check.
constexpr UInt32 kTrackedReads = 32;

struct XFetchFrame
{
    const XLockable * itsLockable;
    const XDataFetcher * itsFetcher;
    XFetchFrame * itsPrevious;
};

// Plain data, zero at thread start: no constructor runs on a thread's first lock.
struct XThreadLockState
{
    UInt32 itsNumber;
    UInt32 itsReadCount;
    UInt32 itsUntrackedReads;
    const XLockable * itsReads[kTrackedReads];
    XFetchFrame * itsFetching;
};

thread_local XThreadLockState tThread;
std::atomic<UInt32> sNextThreadNumber{1};

[[gnu::noinline]] UInt32 AssignThreadNumber()
{
    UInt32 number = sNextThreadNumber.fetch_add(1, std::memory_order_relaxed);
    XAssertText(number != 0, "more than 4294967295 threads took locks");
    tThread.itsNumber = number;
    return number;
}

inline UInt64 CurrentThreadBits()
{
    UInt32 number = tThread.itsNumber;
    if (number == 0) [[unlikely]]
        number = AssignThreadNumber();
    return UInt64(number) << kWriterShift;
}

inline void NoteRead(const XLockable * aLockable)
{
    XThreadLockState & thread = tThread;
    if (thread.itsReadCount < kTrackedReads)
        thread.itsReads[thread.itsReadCount++] = aLockable;
    else
        ++thread.itsUntrackedReads;
}

inline void ForgetRead(const XLockable * aLockable)
{
    XThreadLockState & thread = tThread;
    // Scoped locks end in reverse order, so the entry is nearly always the last one.
    for (UInt32 i = thread.itsReadCount; i-- > 0;)
    {
        if (thread.itsReads[i] == aLockable)
        {
            thread.itsReads[i] = thread.itsReads[--thread.itsReadCount];
            return;
        }
    }
    if (thread.itsUntrackedReads > 0)
        --thread.itsUntrackedReads;
}

bool HoldsRead(const XLockable * aLockable)
{
    const XThreadLockState & thread = tThread;
    for (UInt32 i = 0; i < thread.itsReadCount; ++i)
        if (thread.itsReads[i] == aLockable)
            return true;
    return false;
}

// Where waiting threads sleep: a table of mutexes and condition variables shared by all
// lockables, chosen by address. Made on first use, so that no static order matters.
struct alignas(64) XWaitSlot
{
    std::mutex itsMutex;
    std::condition_variable itsCondition;
};
constexpr std::size_t kWaitSlots = 64;

XWaitSlot & WaitSlotFor(const void * anAddress)
{
    static XWaitSlot * sSlots = new XWaitSlot[kWaitSlots];
    std::size_t key = reinterpret_cast<std::uintptr_t>(anAddress);
    return sSlots[(key >> 6 ^ key >> 12) % kWaitSlots];
}

// Short guards for the fetcher reference. std::mutex is constant-initialised.
struct alignas(64) XGuardSlot
{
    std::mutex itsMutex;
};
XGuardSlot sGuards[kWaitSlots];

std::mutex & GuardFor(const void * anAddress)
{
    std::size_t key = reinterpret_cast<std::uintptr_t>(anAddress);
    return sGuards[(key >> 6 ^ key >> 12) % kWaitSlots].itsMutex;
}

// Marks a lockable's fetcher as running on this thread for its lifetime.
class XFetchScope
{
public:
    XFetchScope(const XLockable * aLockable, const XDataFetcher * aFetcher)
        : itsFrame{aLockable, aFetcher, tThread.itsFetching}
    {
        tThread.itsFetching = &itsFrame;
    }
    XFetchScope(const XFetchScope &) = delete;
    XFetchScope & operator=(const XFetchScope &) = delete;
    ~XFetchScope() { tThread.itsFetching = itsFrame.itsPrevious; }

private:
    XFetchFrame itsFrame;
};

// A fetcher that keeps attaching other fetchers to its own target would never end.
constexpr int kMaxFetchRounds = 16;
} // namespace

XLockable::XLockable() = default;

XLockable::XLockable(const XLockable & anOther)
{
    bool fetched = true;
    anOther.CopyFetchState(itsFetcher, fetched);
    itsFetched.store(fetched, std::memory_order_relaxed);
    itsHasFetcher.store(!itsFetcher.IsNull(), std::memory_order_relaxed);
}

XLockable & XLockable::operator=(const XLockable & anOther)
{
    if (this == &anOther || IsFetchingOnCurrentThread())
        return *this;
    XRefPtr<XDataFetcher> fetcher;
    bool fetched = true;
    anOther.CopyFetchState(fetcher, fetched);
    {
        std::lock_guard<std::mutex> guard(GuardFor(this));
        std::swap(itsFetcher, fetcher);
        itsFetched.store(fetched, std::memory_order_release);
        itsHasFetcher.store(!itsFetcher.IsNull(), std::memory_order_release);
    }
    return *this; // the old fetcher goes with the local, outside the guard
}

XLockable::~XLockable() = default;

void XLockable::CopyFetchState(XRefPtr<XDataFetcher> & outFetcher, bool & outFetched) const
{
    std::lock_guard<std::mutex> guard(GuardFor(this));
    outFetcher = itsFetcher;
    outFetched = itsFetched.load(std::memory_order_acquire);
}

void XLockable::SetDataFetcher(XDataFetcher * aFetcher)
{
    XRefPtr<XDataFetcher> fetcher(aFetcher);
    {
        std::lock_guard<std::mutex> guard(GuardFor(this));
        std::swap(itsFetcher, fetcher);
        itsFetched.store(aFetcher == nullptr, std::memory_order_release);
        itsHasFetcher.store(aFetcher != nullptr, std::memory_order_release);
    }
}

XDataFetcher * XLockable::GetDataFetcher() const
{
    std::lock_guard<std::mutex> guard(GuardFor(this));
    return itsFetcher.Get();
}

std::mutex & XLockable::GetGuardMutex() const
{
    return GuardFor(this);
}

bool XLockable::IsFetchingOnCurrentThread() const
{
    for (const XFetchFrame * frame = tThread.itsFetching; frame != nullptr;
         frame = frame->itsPrevious)
    {
        if (frame->itsLockable == this)
            return true;
    }
    return false;
}

bool XLockable::DropFetchedData(void (*aDrop)(const XLockable &)) const
{
    XRefPtr<XDataFetcher> fetcher;
    bool fetched = false;
    CopyFetchState(fetcher, fetched);
    if (!fetcher || !fetched)
        return false;
    // This thread may be inside that very fetcher (which holds its mutex).
    for (const XFetchFrame * frame = tThread.itsFetching; frame != nullptr;
         frame = frame->itsPrevious)
    {
        if (frame->itsFetcher == fetcher.Get())
            return false;
    }
    std::unique_lock<std::mutex> loading(fetcher->itsLoadMutex, std::try_to_lock);
    if (!loading.owns_lock())
        return false; // a fetch is running
    {
        std::lock_guard<std::mutex> guard(GuardFor(this));
        if (itsFetcher.Get() != fetcher.Get() || !itsFetched.load(std::memory_order_acquire))
            return false;
    }
    aDrop(*this);
    SetDataFetched(false);
    return true;
}

void XLockable::FetchData() const
{
    if (itsFetched.load(std::memory_order_acquire))
        return;
    if (IsFetchingOnCurrentThread())
        return;
    for (int round = 0; round < kMaxFetchRounds; ++round)
    {
        XRefPtr<XDataFetcher> fetcher;
        bool fetched = true;
        CopyFetchState(fetcher, fetched);
        if (fetched)
            return;
        if (!fetcher)
        {
            SetDataFetched(true);
            return;
        }
        std::lock_guard<std::mutex> loading(fetcher->itsLoadMutex);
        // Another thread may have fetched, or replaced the fetcher, while this one waited.
        {
            std::lock_guard<std::mutex> guard(GuardFor(this));
            if (itsFetched.load(std::memory_order_acquire))
                return;
            if (itsFetcher.Get() != fetcher.Get())
                continue;
        }
        {
            XFetchScope scope(this, fetcher.Get());
            fetcher->LoadDataSelf(const_cast<XLockable &>(*this));
        }
        std::lock_guard<std::mutex> guard(GuardFor(this));
        // The fetcher may have detached itself (done) or attached another one (run that next).
        if (itsFetcher.Get() == fetcher.Get() || !itsFetcher)
        {
            itsFetched.store(true, std::memory_order_release);
            return;
        }
    }
    XAssertText(false, "data fetchers keep replacing each other");
}

void XLockable::LockSelf(XLockMode) const {}

void XLockable::UnlockSelf(XLockMode) const {}

void XLockable::LockFor(const XLockable & aLockable, XLockMode aMode)
{
    aLockable.LockSelf(aMode);
}

void XLockable::UnlockFor(const XLockable & aLockable, XLockMode aMode)
{
    aLockable.UnlockSelf(aMode);
}

bool XLockable::IsLocked() const
{
    return (itsState.load(std::memory_order_acquire) & ~kWaitersBit) != 0;
}

bool XLockable::IsWriteLockedByCurrentThread() const
{
    return Writer(itsState.load(std::memory_order_acquire)) == CurrentThreadBits();
}

bool XLockable::TryAcquireState(XLockMode aMode, UInt64 aThreadBits) const
{
    UInt64 state = itsState.load(std::memory_order_relaxed);
    if (aMode == kLockRead)
    {
        while (Writer(state) == 0)
        {
            XAssertText(Readers(state) < kReaderMask, "too many readers of one lockable");
            if (itsState.compare_exchange_weak(state, state + 1, std::memory_order_acquire,
                                               std::memory_order_relaxed))
                return true;
        }
        return false;
    }
    while ((state & ~kWaitersBit) == 0)
    {
        if (itsState.compare_exchange_weak(state, state | aThreadBits, std::memory_order_acquire,
                                           std::memory_order_relaxed))
            return true;
    }
    return false;
}

void XLockable::Acquire(XLockMode aMode) const
{
    XAssertText(aMode == kLockReadWrite || aMode == kLockRead || aMode == kLockWrite,
                "lock mode 1, 2 or 3");
    UInt64 me = CurrentThreadBits();
    UInt64 state = itsState.load(std::memory_order_relaxed);
    if (aMode == kLockRead)
    {
        if (Writer(state) == 0 &&
            itsState.compare_exchange_strong(state, state + 1, std::memory_order_acquire,
                                             std::memory_order_relaxed))
        {
            NoteRead(this);
            return;
        }
        if (Writer(state) == me)
        {
            ++itsOwnerDepth; // a read inside one's own write
            return;
        }
        if (!TryAcquireState(aMode, me))
            AcquireSlow(aMode, me);
        NoteRead(this);
        return;
    }
    if ((state & ~kWaitersBit) == 0 &&
        itsState.compare_exchange_strong(state, state | me, std::memory_order_acquire,
                                         std::memory_order_relaxed))
        return;
    if (Writer(state) == me)
    {
        ++itsOwnerDepth; // a write inside one's own write
        return;
    }
    if (Readers(state) > 0 && HoldsRead(this))
        BrindleInternalError("write lock asked by a thread that holds a read lock on the same data",
                             __FILE__, __LINE__);
    if (!TryAcquireState(aMode, me))
        AcquireSlow(aMode, me);
}

void XLockable::AcquireSlow(XLockMode aMode, UInt64 aThreadBits) const
{
    XWaitSlot & slot = WaitSlotFor(this);
    std::unique_lock<std::mutex> lock(slot.itsMutex);
    ++itsWaiters;
    // Set under the mutex: a releaser that sees the flag takes the mutex before it notifies, so
    // it cannot notify between this thread's last try and its wait.
    itsState.fetch_or(kWaitersBit, std::memory_order_acq_rel);
    while (!TryAcquireState(aMode, aThreadBits))
        slot.itsCondition.wait(lock);
    if (--itsWaiters == 0)
        itsState.fetch_and(~kWaitersBit, std::memory_order_acq_rel);
}

void XLockable::WakeWaiters() const
{
    XWaitSlot & slot = WaitSlotFor(this);
    std::lock_guard<std::mutex> lock(slot.itsMutex);
    slot.itsCondition.notify_all();
}

void XLockable::Release(XLockMode) const
{
    UInt64 me = CurrentThreadBits();
    UInt64 state = itsState.load(std::memory_order_relaxed);
    if (Writer(state) == me)
    {
        if (itsOwnerDepth > 0)
        {
            --itsOwnerDepth;
            return;
        }
        UInt64 old = itsState.fetch_and(~kWriterMask, std::memory_order_release);
        if (old & kWaitersBit)
            WakeWaiters();
        return;
    }
    XAssertText(Readers(state) > 0, "unlock of a lockable that is not locked");
    ForgetRead(this);
    UInt64 old = itsState.fetch_sub(1, std::memory_order_release);
    // Only writers wait for readers, and only the last reader can let one in.
    if ((old & kWaitersBit) && Readers(old) == 1)
        WakeWaiters();
}
