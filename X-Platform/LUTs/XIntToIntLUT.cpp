#include "XIntToIntLUT.h"

#include <memory>
#include <mutex>

#include "XAssert.h"
#include "XLock.h"
#include "XMemoryHandle.h"
#include "XStream.h"

namespace
{
std::mutex & StandardLUTsMutex()
{
    static std::mutex sMutex;
    return sMutex;
}
} // namespace

XIntToIntLUT * XIntToIntLUT::sStandardLUTs[16] = {};

XIntToIntLUT::XIntToIntLUT(XStream & aStream) : XLUT<UInt8>(0)
{
    ReadStream2_XIntToIntLUT(aStream, kNormal);
}

const XIntToIntLUT & XIntToIntLUT::GetStandardLUT(UInt32 aBitDepth)
{
    XAssertText(aBitDepth > 0, "bitDepth > 0");
    XAssertText(aBitDepth <= 16, "bitDepth <= 16");
    std::lock_guard<std::mutex> guard(StandardLUTsMutex());
    XIntToIntLUT *& slot = sStandardLUTs[aBitDepth - 1];
    if (slot == nullptr)
    {
        const UInt32 last = (UInt32(1) << aBitDepth) - 1;
        auto table = std::make_unique<XIntToIntLUT>(last < 256 ? 256 : 65536);
        table->MakeLinearLUT(0, last, 0, 255);
        slot = table.release();
    }
    return *slot;
}

void XIntToIntLUT::DisposeStandardLUTs()
{
    std::lock_guard<std::mutex> guard(StandardLUTsMutex());
    for (XIntToIntLUT *& slot : sStandardLUTs)
    {
        delete slot;
        slot = nullptr;
    }
}

void XIntToIntLUT::Blend(UInt32 aFirst, UInt32 aLast)
{
    if (!ClampRange(aFirst, aLast))
        return;
    XLock lock(*this, kLockReadWrite);
    const UInt8 c0 = IndexToValue(aFirst);
    const UInt64 d = UInt8(IndexToValue(aLast) - c0);
    const UInt64 n = aLast - aFirst;
    for (UInt64 k = 1; k <= n; ++k)
        SetValue(UInt32(aFirst + k), UInt8(c0 + k * d / n));
}

void XIntToIntLUT::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XIntToIntLUT(aStream, anOptions);
}

void XIntToIntLUT::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XIntToIntLUT(aStream, anOptions);
}

void XIntToIntLUT::ReadStream2_XIntToIntLUT(XStream & aStream, XOptions anOptions)
{
    const XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, anOptions);
}

void XIntToIntLUT::WriteStream2_XIntToIntLUT(XStream & aStream, XOptions anOptions) const
{
    XLock lock(*this, kLockRead);
    aStream.WriteVersion(GetClassVersion());
    WriteStreamSelf(aStream, anOptions);
}

void XIntToIntLUT::ReadStreamSelf(XStream & aStream, const XVersion &, XOptions anOptions)
{
    const UInt32 count = aStream.Read32();
    ReplaceData(ReadEntries(aStream, count, 1, anOptions), count);
}

void XIntToIntLUT::WriteStreamSelf(XStream & aStream, XOptions anOptions) const
{
    aStream.Write32(GetSize());
    aStream.WriteObject(GetHandle(), anOptions);
}
