// Recursive mutexes with time-outs, their scoped holder, and reader-writer mutexes.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "XException.h"
#include "XInternalError.h"
#include "XMutex.h"
#include "XRWMutex.h"
#include "XTestSupport.h"
#include "XThreadLock.h"

namespace
{
constexpr UInt32 kBoundMs = 10000;

template <typename TWork>
void OnOtherThread(TWork aWork)
{
    std::thread(aWork).join();
}
} // namespace

TEST(MutexTest, SameThreadNestsOthersWaitAndTimeOut)
{
    XMutex mutex;
    EXPECT_TRUE(mutex.Lock());
    EXPECT_TRUE(mutex.Lock(0, true));
    EXPECT_TRUE(mutex.TryLock());
    EXPECT_EQ(mutex.GetLockDepth(), 3u);
    EXPECT_TRUE(mutex.IsLockedByCurrentThread());
    OnOtherThread([&] {
        EXPECT_EQ(mutex.GetLockDepth(), 0u);
        EXPECT_FALSE(mutex.TryLock());
        EXPECT_FALSE(mutex.Lock(20, false));
        EXPECT_EQ(ErrorOf([&] { mutex.Lock(20, true); }), UInt32(kErrTimeOut));
        EXPECT_THROW(mutex.Unlock(), XInternalError); // not the holder
    });
    mutex.Unlock();
    mutex.Unlock();
    OnOtherThread([&] { EXPECT_FALSE(mutex.TryLock()); }); // still held once
    mutex.Unlock();
    EXPECT_THROW(mutex.Unlock(), XInternalError);

    // A waiting locker gets the mutex when it is free.
    XTestGate asking;
    std::atomic<bool> got{false};
    mutex.Lock();
    std::thread other([&] {
        asking.Arrive();
        got = mutex.Lock(kBoundMs, false);
        if (got)
            mutex.Unlock();
    });
    ASSERT_TRUE(asking.WaitFor(1));
    mutex.Unlock();
    other.join();
    EXPECT_TRUE(got);

    // The constructor sets what Lock() without arguments does on a time-out.
    XMutex throwing(20, true);
    XMutex quiet(20, false);
    throwing.Lock();
    quiet.Lock();
    OnOtherThread([&] {
        EXPECT_EQ(ErrorOf([&] { throwing.Lock(); }), UInt32(kErrTimeOut));
        EXPECT_FALSE(quiet.Lock());
        XThreadLock holder(quiet);
        EXPECT_FALSE(holder.IsLocked()); // a failed lock holds nothing and unlocks nothing
    });
    throwing.Unlock();
    quiet.Unlock();
}

TEST(MutexTest, ThreadLockReleasesAtScopeEndAndOnExceptions)
{
    XMutex mutex;
    {
        XThreadLock holder(mutex);
        {
            XThreadLock nested(mutex, 0, true);
            EXPECT_EQ(mutex.GetLockDepth(), 2u);
        }
        EXPECT_EQ(mutex.GetLockDepth(), 1u);
        holder.Unlock();
        EXPECT_FALSE(holder.IsLocked());
        EXPECT_EQ(mutex.GetLockDepth(), 0u);
        holder.Unlock(); // nothing held: nothing happens
        EXPECT_TRUE(holder.Relock(0, true));
        EXPECT_THROW(holder.Relock(0, true), XInternalError);
    }
    EXPECT_EQ(mutex.GetLockDepth(), 0u);
    EXPECT_EQ(ErrorOf([&] {
                  XThreadLock holder(mutex);
                  throw XException(kErrGeneric);
              }),
              UInt32(kErrGeneric));
    OnOtherThread([&] {
        EXPECT_TRUE(mutex.TryLock());
        mutex.Unlock();
    });
}

TEST(MutexTest, ExcludesConcurrentWriters)
{
    XMutex mutex;
    UInt64 total = 0;
    constexpr int kRounds = 20000;
    auto add = [&] {
        for (int round = 0; round < kRounds; ++round)
        {
            XThreadLock holder(mutex);
            XThreadLock again(mutex); // nesting under contention
            total += 1;
        }
    };
    std::thread first(add);
    std::thread second(add);
    first.join();
    second.join();
    EXPECT_EQ(total, 2u * kRounds);
}

TEST(RWMutexTest, ReadersHoldTheLockTogether)
{
    XRWMutex mutex;
    constexpr int kReaders = 3;
    XTestGate inside;
    XTestGate release;
    std::atomic<int> allInside{0};
    std::vector<std::thread> readers;
    for (int reader = 0; reader < kReaders; ++reader)
        readers.emplace_back([&] {
            if (!mutex.Lock(kRWLockRead, kBoundMs, false))
                return;
            inside.Arrive();
            if (inside.WaitFor(kReaders)) // only possible if all readers are inside at once
                ++allInside;
            release.WaitFor(1);
            mutex.Unlock(kRWLockRead);
        });
    ASSERT_TRUE(inside.WaitFor(kReaders));
    EXPECT_EQ(mutex.GetReaderCount(), UInt32(kReaders));
    EXPECT_FALSE(mutex.IsWriteLocked());
    EXPECT_FALSE(mutex.Lock(kRWLockWrite, 0, false));
    EXPECT_FALSE(mutex.Lock(kRWLockWrite, 20, false));
    EXPECT_EQ(ErrorOf([&] { mutex.Lock(kRWLockWrite, 20, true); }), UInt32(kErrTimeOut));
    // A writer that gave up holds back no reader.
    EXPECT_TRUE(mutex.Lock(kRWLockRead, 0, false));
    mutex.Unlock(kRWLockRead);
    release.Arrive();
    for (std::thread & reader : readers)
        reader.join();
    EXPECT_EQ(allInside.load(), kReaders);
    EXPECT_EQ(mutex.GetReaderCount(), 0u);
    EXPECT_TRUE(mutex.Lock(kRWLockWrite, 0, false));
    mutex.Unlock(kRWLockWrite);
}

TEST(RWMutexTest, WriterIsAloneAndMayNest)
{
    XRWMutex mutex;
    ASSERT_TRUE(mutex.Lock(kRWLockWrite));
    EXPECT_TRUE(mutex.IsWriteLockedByCurrentThread());
    OnOtherThread([&] {
        EXPECT_FALSE(mutex.IsWriteLockedByCurrentThread());
        EXPECT_FALSE(mutex.Lock(kRWLockRead, 0, false));
        EXPECT_FALSE(mutex.Lock(kRWLockRead, 20, false));
        EXPECT_FALSE(mutex.Lock(kRWLockWrite, 20, false));
        EXPECT_EQ(ErrorOf([&] { mutex.Lock(kRWLockRead, 20, true); }), UInt32(kErrTimeOut));
        EXPECT_THROW(mutex.Unlock(kRWLockWrite), XInternalError); // not the writer
    });

    // The writer nests, for writing and for reading.
    EXPECT_TRUE(mutex.Lock(kRWLockWrite, 0, true));
    EXPECT_TRUE(mutex.Lock(kRWLockRead, 0, true));
    EXPECT_EQ(mutex.GetReaderCount(), 0u);
    mutex.Unlock(kRWLockRead);
    mutex.Unlock(kRWLockWrite);
    OnOtherThread([&] { EXPECT_FALSE(mutex.Lock(kRWLockRead, 0, false)); });
    mutex.Unlock(kRWLockWrite);
    EXPECT_FALSE(mutex.IsWriteLocked());
    EXPECT_THROW(mutex.Unlock(kRWLockRead), XInternalError); // nothing held

    OnOtherThread([&] {
        XRWMutex::XScopedLock reading(mutex, kRWLockRead, 0, false);
        EXPECT_TRUE(reading.IsLocked());
        EXPECT_EQ(mutex.GetReaderCount(), 1u);
    });
    EXPECT_EQ(mutex.GetReaderCount(), 0u);
}

TEST(RWMutexTest, ReadersNeverSeeAHalfWrite)
{
    XRWMutex mutex;
    UInt64 first = 0;
    UInt64 second = 0;
    std::atomic<int> torn{0};
    constexpr int kRounds = 5000;
    auto write = [&] {
        for (int round = 0; round < kRounds; ++round)
        {
            XRWMutex::XScopedLock writing(mutex, kRWLockWrite);
            ++first;
            ++second;
        }
    };
    auto read = [&] {
        for (int round = 0; round < kRounds; ++round)
        {
            XRWMutex::XScopedLock reading(mutex, kRWLockRead);
            torn += first != second;
        }
    };
    std::thread threads[] = {std::thread(write), std::thread(write), std::thread(read), std::thread(read)};
    for (std::thread & thread : threads)
        thread.join();
    EXPECT_EQ(torn.load(), 0);
    EXPECT_EQ(first, 2u * kRounds);
    EXPECT_EQ(second, 2u * kRounds);
}
