// Locks on data: shared and exclusive modes across threads, nesting, the write-inside-own-read
// report, fetchers and the passing of locks to owned lockables.

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "XException.h"
#include "XFileDataFetcher.h"
#include "XLock.h"
#include "XMemoryHandle.h"
#include "XFoundationTestSupport.h"

namespace
{
// A plain lockable with counting hooks.
class XTestLockable : public XLockable
{
public:
    mutable std::atomic<int> itsLocks{0};
    mutable std::atomic<int> itsUnlocks{0};
    bool itsThrowInLockSelf = false;

protected:
    void LockSelf(XLockMode) const override
    {
        if (itsThrowInLockSelf)
            throw XException(kErrGeneric, "refused");
        ++itsLocks;
    }
    void UnlockSelf(XLockMode) const override { ++itsUnlocks; }
};

// Fills a memory handle with the bytes aSeed, aSeed + 1, ...; counts its runs and can fail first.
class XPatternFetcher : public XDataFetcher
{
public:
    XPatternFetcher(UInt64 aSize, UInt8 aSeed) : itsSize(aSize), itsSeed(aSeed) {}
    std::atomic<int> itsRuns{0};
    std::atomic<int> itsFailuresLeft{0};

protected:
    void LoadDataSelf(XLockable & aTarget) override
    {
        ++itsRuns;
        if (itsFailuresLeft > 0)
        {
            --itsFailuresLeft;
            throw XException(kErrFileIO, "not yet");
        }
        XMemoryHandle loaded(itsSize);
        for (UInt64 i = 0; i < itsSize; ++i)
            loaded.SetByte(i, UInt8(itsSeed + i));
        dynamic_cast<XMemoryHandle &>(aTarget) = loaded;
    }

private:
    UInt64 itsSize;
    UInt8 itsSeed;
};

// A lockable that owns a handle and passes its locks on, as a volume does.
class XOwner : public XLockable
{
public:
    XMemoryHandle itsStorage;

    void FetchData() const override
    {
        XLockable::FetchData();
        itsStorage.FetchData();
    }

protected:
    void LockSelf(XLockMode aMode) const override { LockFor(itsStorage, aMode); }
    void UnlockSelf(XLockMode aMode) const override { UnlockFor(itsStorage, aMode); }
};

const UInt8 * Bytes(const XMemoryHandle & aHandle)
{
    return static_cast<const UInt8 *>(aHandle.GetData());
}
} // namespace

TEST(LockTest, NestingOnOneThreadAndTheWriteInsideOwnRead)
{
    XTestLockable data;
    {
        XLock write(data, kLockReadWrite);
        {
            XLock readInsideWrite(data, kLockRead);
            XLock writeInsideWrite(data, kLockWrite);
            XLock again(data, kLockReadWrite);
        }
        EXPECT_TRUE(data.IsWriteLockedByCurrentThread());
    }
    EXPECT_FALSE(data.IsLocked());
    {
        XLock read(data, kLockRead);
        XLock readInsideRead(data, kLockRead);
        EXPECT_FALSE(data.IsWriteLockedByCurrentThread());
    }
    EXPECT_FALSE(data.IsLocked());
    EXPECT_EQ(data.itsLocks.load(), 6);
    EXPECT_EQ(data.itsUnlocks.load(), 6);

    // A write asked inside one's own read would wait for ever: it is reported instead.
    XLock read(data, kLockRead);
    EXPECT_EQ(AssertionOf([&] { XLock write(data, kLockReadWrite); }),
              "write lock asked by a thread that holds a read lock on the same data");
    EXPECT_THROW(XLock(data, kLockWrite), XInternalError);
    EXPECT_TRUE(data.IsLocked()); // the read is still held and ends normally
    XLock second(data, kLockRead);
}

TEST(LockTest, ReadersShareWritersWaitForOtherThreads)
{
    // Every reader is inside at the same time.
    XTestLockable data;
    constexpr int kReaders = 4;
    XTestGate inside;
    XTestGate release;
    std::vector<std::thread> threads;
    for (int i = 0; i < kReaders; ++i)
        threads.emplace_back([&] {
            XLock lock(data, kLockRead);
            inside.Arrive();
            release.WaitFor(1);
        });
    EXPECT_TRUE(inside.WaitFor(kReaders));
    release.Arrive();
    for (std::thread & thread : threads)
        thread.join();

    // A writer waits for another thread's read, without a report.
    int value = 0;
    int seenByWriter = -1;
    XTestGate readerIn;
    XTestGate writerAsking;
    std::thread reader([&] {
        XLock lock(data, kLockRead);
        readerIn.Arrive();
        writerAsking.WaitFor(1);
        value = 7; // still inside the read: the writer cannot be in yet
    });
    ASSERT_TRUE(readerIn.WaitFor(1));
    std::thread writer([&] {
        writerAsking.Arrive();
        XLock lock(data, kLockReadWrite);
        seenByWriter = value;
    });
    reader.join();
    writer.join();
    EXPECT_EQ(seenByWriter, 7);

    // A reader is let in after the writer.
    XMemoryHandle handle(4);
    XTestGate readerAsking;
    UInt8 seen = 0;
    {
        XLock write(handle, kLockReadWrite);
        reader = std::thread([&] {
            readerAsking.Arrive();
            XLock read(handle, kLockRead);
            seen = Bytes(handle)[0];
        });
        ASSERT_TRUE(readerAsking.WaitFor(1));
        static_cast<UInt8 *>(handle.GetData())[0] = 42; // the reader cannot have read yet
    }
    reader.join();
    EXPECT_EQ(seen, 42);
}

TEST(LockTest, WritersExcludeEveryone)
{
    XTestLockable data;
    std::atomic<int> writersInside{0};
    std::atomic<int> readersInside{0};
    std::atomic<int> violations{0};
    UInt64 counter = 0; // changed only under the write lock
    std::atomic<UInt64> writes{0};
    constexpr int kRounds = 2000;
    RunOnThreads(4, [&](int t) {
        for (int i = 0; i < kRounds; ++i)
        {
            if ((i + t) % 3 == 0)
            {
                XLock lock(data, kLockRead);
                ++readersInside;
                violations += writersInside.load() != 0;
                --readersInside;
                continue;
            }
            XLock lock(data, (i & 1) ? kLockReadWrite : kLockWrite);
            violations += writersInside.fetch_add(1) != 0 || readersInside.load() != 0;
            ++counter;
            ++writes;
            XLock nested(data, kLockRead); // nesting under contention
            --writersInside;
        }
    });
    EXPECT_EQ(violations.load(), 0);
    EXPECT_EQ(counter, writes.load());
    EXPECT_FALSE(data.IsLocked());
}

TEST(LockTest, FetcherRunsOnceRetriesAfterAFailureAndAgainAfterPurge)
{
    XTestLockable refusing;
    refusing.itsThrowInLockSelf = true;
    EXPECT_THROW(XLock(refusing, kLockReadWrite), XException);
    EXPECT_FALSE(refusing.IsLocked());

    XMemoryHandle handle;
    XRefPtr<XPatternFetcher> fetcher(new XPatternFetcher(100, 10));
    fetcher->itsFailuresLeft = 1;
    handle.SetDataFetcher(fetcher.Get());
    EXPECT_THROW(XLock(handle, kLockRead), XException);
    EXPECT_FALSE(handle.IsLocked());
    EXPECT_FALSE(handle.IsDataFetched());
    {
        XLock lock(handle, kLockRead); // tries again
        EXPECT_EQ(handle.GetDataSize(), 100u);
        EXPECT_EQ(Bytes(handle)[5], 15);
    }
    {
        XLock lock(handle, kLockRead);
        EXPECT_FALSE(handle.Purge()); // locked
    }
    EXPECT_EQ(fetcher->itsRuns.load(), 2);
    EXPECT_EQ(handle.GetDataFetcher(), fetcher.Get()); // filling by assignment kept it

    EXPECT_TRUE(handle.Purge());
    EXPECT_FALSE(handle.HasBlock());
    EXPECT_EQ(handle.GetDataSize(), 100u);
    EXPECT_EQ(handle.GetByte(99), UInt8(10 + 99));
    EXPECT_EQ(fetcher->itsRuns.load(), 3);

    // A write makes the bytes the handle's own: the fetcher goes and Purge refuses.
    handle.SetByte(0, 0xEE);
    EXPECT_EQ(handle.GetDataFetcher(), nullptr);
    EXPECT_FALSE(handle.Purge());
    EXPECT_EQ(handle.GetByte(0), 0xEE);
}

TEST(LockTest, PurgeLeavesARunningFetchAlone)
{
    // A fetcher shared by two handles; its second load waits inside until told to go on.
    class XSlowFetcher : public XDataFetcher
    {
    public:
        XTestGate itsInside;
        XTestGate itsGo;
        std::atomic<int> itsRuns{0};

    protected:
        void LoadDataSelf(XLockable & aTarget) override
        {
            if (++itsRuns == 2)
            {
                itsInside.Arrive();
                itsGo.WaitFor(1);
            }
            XMemoryHandle loaded(2);
            loaded.SetByte(0, 5);
            dynamic_cast<XMemoryHandle &>(aTarget) = loaded;
        }
    };
    XRefPtr<XSlowFetcher> fetcher(new XSlowFetcher);
    XMemoryHandle first;
    XMemoryHandle second;
    first.SetDataFetcher(fetcher.Get());
    second.SetDataFetcher(fetcher.Get());
    EXPECT_EQ(first.GetByte(0), 5);
    std::thread loader([&] { EXPECT_EQ(second.GetByte(0), 5); });
    ASSERT_TRUE(fetcher->itsInside.WaitFor(1));
    EXPECT_FALSE(first.Purge()); // a load through its fetcher is running
    fetcher->itsGo.Arrive();
    loader.join();
    EXPECT_TRUE(first.Purge());
    EXPECT_EQ(first.GetByte(0), 5);
    EXPECT_EQ(fetcher->itsRuns.load(), 3);
}

TEST(LockTest, FirstLocksOnManyThreadsFetchOnceAndCopiesShareTheFetcher)
{
    XMemoryHandle shared;
    XRefPtr<XPatternFetcher> once(new XPatternFetcher(4096, 0));
    shared.SetDataFetcher(once.Get());
    std::atomic<int> wrong{0};
    RunOnThreads(4, [&](int) {
        XLock lock(shared, kLockRead);
        for (UInt64 i = 0; i < 4096; ++i)
            wrong += Bytes(shared)[i] != UInt8(i);
    });
    EXPECT_EQ(once->itsRuns.load(), 1);
    EXPECT_EQ(wrong.load(), 0);

    XMemoryHandle handle;
    XRefPtr<XPatternFetcher> fetcher(new XPatternFetcher(16, 100));
    handle.SetDataFetcher(fetcher.Get());
    XMemoryHandle copy(handle); // not fetched yet: the copy fetches on its own
    EXPECT_EQ(fetcher->GetReferenceCount(), 3u);
    EXPECT_EQ(copy.GetByte(3), 103);
    EXPECT_EQ(handle.GetByte(3), 103);
    EXPECT_EQ(fetcher->itsRuns.load(), 2);

    XMemoryHandle plain(4);
    plain = handle; // assignment takes the source's fetcher as well
    EXPECT_EQ(plain.GetDataFetcher(), fetcher.Get());
    handle.SetDataFetcher(nullptr);
    EXPECT_TRUE(handle.IsDataFetched());
    EXPECT_EQ(fetcher->GetReferenceCount(), 3u);
}

TEST(LockTest, FileDataFetcherAsksItsCacheBeforeTheFile)
{
    // Its file "holds" three bytes; what it read once it keeps as its cache.
    class XCachingFetcher : public XFileDataFetcher
    {
    public:
        XCachingFetcher() : XFileDataFetcher(XFileSpec("/nonexistent/data.bin")) {}
        std::string itsFilesRead;
        XMemoryHandle itsCache;

    protected:
        bool LoadDataFromCache(XLockable & aTarget) override
        {
            if (itsCache.GetDataSize() != 0)
                dynamic_cast<XMemoryHandle &>(aTarget) = itsCache;
            return itsCache.GetDataSize() != 0;
        }
        void LoadFromFile(const XFileSpec & aFileSpec, XLockable & aTarget) override
        {
            itsFilesRead += aFileSpec.GetPath().GetStdString();
            itsCache = XMemoryHandle(3);
            itsCache.SetByte(2, 9);
            dynamic_cast<XMemoryHandle &>(aTarget) = itsCache;
        }
    };
    XRefPtr<XCachingFetcher> fetcher(new XCachingFetcher);
    XMemoryHandle first;
    XMemoryHandle second;
    first.SetDataFetcher(fetcher.Get());
    second.SetDataFetcher(fetcher.Get());
    EXPECT_EQ(first.GetByte(2), 9);
    EXPECT_EQ(second.GetByte(2), 9);
    EXPECT_EQ(fetcher->itsFilesRead, "/nonexistent/data.bin"); // once
    EXPECT_TRUE(first.IsShared()); // both share the cached block
}

TEST(LockTest, OwnerPassesItsLockToTheHandle)
{
    XOwner owner;
    owner.itsStorage = XMemoryHandle(8);
    owner.itsStorage.SetByte(0, 5);
    XMemoryHandle outside(owner.itsStorage);
    {
        XLock lock(owner, kLockReadWrite); // unshares the owned handle, contents copied
        EXPECT_FALSE(owner.itsStorage.IsShared());
        static_cast<UInt8 *>(owner.itsStorage.GetData())[0] = 6;
        // A copy taken under the owner's write lock gets bytes of its own.
        XMemoryHandle snapshot(owner.itsStorage);
        static_cast<UInt8 *>(owner.itsStorage.GetData())[0] = 7;
        EXPECT_EQ(snapshot.GetByte(0), 6);
    }
    EXPECT_EQ(outside.GetByte(0), 5);
    EXPECT_EQ(owner.itsStorage.GetByte(0), 7);

    // A lazy handle inside an owner is fetched by the owner's first lock.
    XOwner lazy;
    XRefPtr<XPatternFetcher> fetcher(new XPatternFetcher(4, 20));
    lazy.itsStorage.SetDataFetcher(fetcher.Get());
    {
        XLock lock(lazy, kLockRead);
        EXPECT_EQ(Bytes(lazy.itsStorage)[1], 21);
    }
    EXPECT_EQ(fetcher->itsRuns.load(), 1);
}
