#include "XSelfCheck.h"

#include <atomic>
#include <cstring>
#include <memory>
#include <ostream>
#include <thread>

#include "BrindleImaging.h"

namespace
{
// A failed check: the reason goes to the report line.
[[noreturn]] void Fail(const std::string & aReason)
{
    throw std::runtime_error(aReason);
}

void Expect(bool aCondition, const char * aReason)
{
    if (!aCondition)
        Fail(aReason);
}
} // namespace

bool XSelfCheck::Run(std::ostream & anOut)
{
    struct XCheck
    {
        const char * itsName;
        void (*itsBody)();
    };
    const XCheck checks[] = {{"stream round trip", &CheckStreamRoundTrip},
                             {"locks", &CheckLocks},
                             {"memory handles", &CheckHandles}};
    bool allPassed = true;
    for (const XCheck & check : checks)
    {
        try
        {
            check.itsBody();
            anOut << "  " << check.itsName << ": ok\n";
        }
        catch (const std::exception & anError)
        {
            anOut << "  " << check.itsName << ": FAILED (" << anError.what() << ")\n";
            allPassed = false;
        }
    }
    return allPassed;
}

// Numbers, a text and a deflated memory handle, written big-endian to a handle stream and read
// back through the stream header.
void XSelfCheck::CheckStreamRoundTrip()
{
    XMemoryHandle::RegisterClass();
    XMemoryHandle payload(100000);
    {
        XLock lock(payload, kLockWrite);
        auto * bytes = static_cast<UInt8 *>(payload.GetData());
        for (UInt32 i = 0; i < 100000; ++i)
            bytes[i] = static_cast<UInt8>(i % 251);
    }
    payload.SetCompression(XMemoryHandle::kDeflate);

    XMemoryHandle storage;
    {
        XHandleStream stream(storage);
        stream.SetByteOrder(kBigEndian);
        stream.WriteStreamInfo();
        stream.Write32(0xB121D1E5);
        stream.WriteFloat64S(0.1);
        stream.WriteString(XString("stack \xC2\xB5m"));
        stream.WriteObject(payload);
    }
    Expect(storage.GetDataSize() < 10000, "the deflated handle did not shrink");

    XHandleStream stream(storage);
    stream.ReadStreamInfo();
    Expect(stream.GetByteOrder() == kBigEndian, "byte order lost");
    Expect(stream.Read32() == 0xB121D1E5, "32-bit number changed");
    Expect(stream.ReadFloat64S() == 0.1, "64-bit float changed");
    Expect(stream.ReadString() == XString("stack \xC2\xB5m"), "text changed");
    std::unique_ptr<XMemoryHandle> back(stream.ReadObjectAs<XMemoryHandle>());
    Expect(back && *back == payload, "memory handle changed");
}

// Two readers hold a lock together; a writer waits for both; a thread nests a read in its write.
void XSelfCheck::CheckLocks()
{
    XMemoryHandle shared(16);
    std::atomic<int> readersInside{0};
    std::atomic<int> mostReadersTogether{0};
    std::atomic<bool> release{false};
    auto reader = [&] {
        XLock lock(shared, kLockRead);
        int inside = ++readersInside;
        int seen = mostReadersTogether.load();
        while (inside > seen && !mostReadersTogether.compare_exchange_weak(seen, inside))
        {
        }
        for (int spin = 0; spin < 2000000 && !release.load(); ++spin)
        {
            if (readersInside.load() == 2)
                release = true;
            std::this_thread::yield();
        }
        --readersInside;
    };
    std::thread one(reader);
    std::thread two(reader);
    one.join();
    two.join();
    Expect(mostReadersTogether.load() == 2, "two readers could not hold the lock together");

    XLock write(shared, kLockReadWrite);
    {
        XLock nested(shared, kLockRead);
        Expect(shared.GetData() != nullptr, "no data under a nested lock");
    }
}

// A copy shares the block until one side is locked for writing; then the sides differ.
void XSelfCheck::CheckHandles()
{
    XMemoryHandle original(4096);
    original.Clear(5);
    XMemoryHandle copy(original);
    {
        XLock lock(copy, kLockReadWrite);
        static_cast<UInt8 *>(copy.GetData())[0] = 9;
    }
    Expect(original.GetByte(0) == 5, "a write to a copy showed in the original");
    Expect(copy.GetByte(0) == 9 && copy.GetByte(1) == 5, "a copy lost its contents");
    Expect(original.GetPaddedSize() >= original.GetDataSize(), "padded size below data size");
}
