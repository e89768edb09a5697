#include "XHandleStream.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "XAssert.h"
#include "XByteSwap.h"
#include "XException.h"
#include "XLock.h"

namespace
{
constexpr UInt64 kWindowSize = 0x1000;
}

XHandleStream::XHandleStream(XMemoryHandle & aHandle, UInt64 aGrowBy)
    : XStream(GetByteOrderFromPlatform(), kWindowSize), itsHandle(aHandle),
      itsGrowBy(std::max<UInt64>(aGrowBy, 1))
{
}

XHandleStream::~XHandleStream()
{
    try
    {
        Flush();
    }
    catch (...)
    {
        // A destructor must not throw; Flush() beforehand reports such failures.
    }
}

SInt64 XHandleStream::GetExtentSelf() const
{
    return SInt64(itsHandle.GetDataSize());
}

void XHandleStream::SetExtentSelf(SInt64 anExtent)
{
    XAssertText(anExtent >= 0, "stream extent >= 0");
    itsHandle.Resize(UInt64(anExtent));
}

void XHandleStream::SetPhysicalSizeSelf(SInt64 aSize)
{
    if (aSize > 0 && UInt64(aSize) > itsHandle.GetPaddedSize())
        itsHandle.Reserve(UInt64(aSize));
}

UInt64 XHandleStream::ReadMediumSelf(SInt64 anOffset, void * aBuffer, UInt64 aByteCount)
{
    UInt64 size = itsHandle.GetDataSize();
    if (anOffset < 0 || UInt64(anOffset) >= size || aByteCount == 0)
        return 0;
    UInt64 count = std::min(aByteCount, size - UInt64(anOffset));
    XLock lock(itsHandle, kLockRead);
    std::memcpy(aBuffer, static_cast<const UInt8 *>(itsHandle.GetData()) + anOffset, count);
    return count;
}

void XHandleStream::WriteMediumSelf(SInt64 anOffset, const void * aBuffer, UInt64 aByteCount)
{
    if (aByteCount == 0)
        return;
    XAssertText(anOffset >= 0, "stream offset >= 0");
    UInt64 end = UInt64(anOffset) + aByteCount;
    if (end > itsHandle.GetDataSize())
    {
        UInt64 padded = itsHandle.GetPaddedSize();
        if (end > padded)
            itsHandle.Reserve(std::max(end, padded + std::max(itsGrowBy, padded)));
        itsHandle.GrowForWrite(end, UInt64(anOffset));
    }
    XLock lock(itsHandle, kLockReadWrite);
    std::memcpy(static_cast<UInt8 *>(itsHandle.GetData()) + anOffset, aBuffer, aByteCount);
}
