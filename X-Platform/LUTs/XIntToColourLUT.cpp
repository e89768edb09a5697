#include "XIntToColourLUT.h"

#include <algorithm>
#include <memory>
#include <mutex>

#include "XARGB32Volume.h"
#include "XAssert.h"
#include "XLock.h"
#include "XMemoryHandle.h"
#include "XStream.h"
#include "XThreadLock.h"

namespace
{
std::mutex & StandardLUTsMutex()
{
    static std::mutex sMutex;
    return sMutex;
}
} // namespace

XIntToColourLUT * XIntToColourLUT::sStandardLUTs[16] = {};

XIntToColourLUT::XIntToColourLUT(UInt32 aSize)
    : XLUT<XARGB32Colour>(aSize), itsTrueDepth(DepthForSize(aSize)), itsLastTrueValue(GetLastEntry())
{
}

XIntToColourLUT::XIntToColourLUT(XStream & aStream) : XIntToColourLUT(0)
{
    ReadStream2_XIntToColourLUT(aStream, kNormal);
}

XIntToColourLUT::XIntToColourLUT(const XIntToColourLUT & anOther)
    : XStorable(anOther), XLUT<XARGB32Colour>(anOther), itsTrueDepth(anOther.itsTrueDepth),
      itsLastTrueValue(anOther.itsLastTrueValue)
{
    CopyMonotonicityFrom(anOther);
}

XIntToColourLUT::~XIntToColourLUT() = default;

XIntToColourLUT & XIntToColourLUT::operator=(const XIntToColourLUT & anOther)
{
    if (this == &anOther)
        return *this;
    if (GetLastEntry() == anOther.GetLastEntry())
    {
        XLUT<XARGB32Colour>::operator=(anOther);
        itsTrueDepth = anOther.itsTrueDepth;
        itsLastTrueValue = anOther.itsLastTrueValue;
    }
    else if (!IsEmpty())
    {
        const UInt32 own = GetLastValueForDepth();
        ResampleFrom(anOther, anOther.GetLastValueForDepth(), own, own);
        if (own < GetLastEntry())
        {
            XLock lock(*this, kLockReadWrite);
            Fill(own + 1, GetLastEntry(), IndexToValue(own));
        }
        LUTChanged();
    }
    EmptySearchCache();
    CopyMonotonicityFrom(anOther);
    return *this;
}

void XIntToColourLUT::CopyMonotonicityFrom(const XIntToColourLUT & anOther)
{
    XThreadLock guard(anOther.itsMonotonicityMutex);
    XThreadLock ownGuard(itsMonotonicityMutex);
    if (!ownGuard.IsLocked())
        return;
    // An answer that cannot be read safely is not taken: the cache starts empty instead.
    const bool taken = guard.IsLocked();
    itsMonotonicAnswer = taken && anOther.itsMonotonicAnswer;
    itsMonotonicDirection = taken ? anOther.itsMonotonicDirection : 3;
    itsMonotonicSeed = taken ? anOther.itsMonotonicSeed : 0;
}

const XIntToColourLUT & XIntToColourLUT::GetStandardLUT(UInt32 aBitDepth)
{
    XAssertText(aBitDepth > 0, "bitDepth > 0");
    if (aBitDepth > 16)
        aBitDepth = 8;
    std::lock_guard<std::mutex> guard(StandardLUTsMutex());
    XIntToColourLUT *& slot = sStandardLUTs[aBitDepth - 1];
    if (slot == nullptr)
    {
        const UInt32 last = LastValueForDepth(aBitDepth);
        auto table = std::make_unique<XIntToColourLUT>(last < 256 ? 256 : 65536);
        table->MakeLinearLUT(0, last, XARGB32Colour::kBlack, XARGB32Colour::kWhite);
        table->Fill(last + 1, table->GetLastEntry(), XARGB32Colour::kWhite);
        table->itsTrueDepth = aBitDepth;
        table->itsLastTrueValue = last;
        slot = table.release();
    }
    return *slot;
}

void XIntToColourLUT::DisposeStandardLUTs()
{
    std::lock_guard<std::mutex> guard(StandardLUTsMutex());
    for (XIntToColourLUT *& slot : sStandardLUTs)
    {
        delete slot;
        slot = nullptr;
    }
}

UInt32 XIntToColourLUT::LastValueForDepth(UInt32 aDepth)
{
    return aDepth >= 32 ? 0xFFFFFFFFu : (UInt32(1) << aDepth) - 1;
}

UInt32 XIntToColourLUT::DepthForSize(UInt32 aSize)
{
    UInt32 depth = 0;
    for (UInt32 shift : {16u, 8u, 4u, 2u, 1u})
        if ((aSize >> shift) != 0)
        {
            aSize >>= shift;
            depth += shift;
        }
    return depth;
}

void XIntToColourLUT::SetTrueDepth(UInt32 aDepth)
{
    itsTrueDepth = aDepth;
    itsLastTrueValue = LastValueForDepth(aDepth);
}

void XIntToColourLUT::MakeChannelLUT(UInt32 aChannels)
{
    if (IsEmpty())
        return;
    const UInt32 l = GetLastValueForDepth();
    XAssertText(l > 0, "GetLastValueForDepth() > 0");
    XLock lock(*this, kLockReadWrite);
    const UInt32 end = std::min(l, GetLastEntry());
    for (UInt64 i = 0; i <= end; ++i)
    {
        const UInt8 v = UInt8(255 * i / l);
        SetValue(UInt32(i), XARGB32Colour(255, (aChannels & kRedChannel) != 0 ? v : 0,
                                          (aChannels & kGreenChannel) != 0 ? v : 0,
                                          (aChannels & kBlueChannel) != 0 ? v : 0));
    }
}

void XIntToColourLUT::MakeWavelengthLUT(double aWavelength)
{
    Wavelength(aWavelength, 0, GetLastValueForDepth());
}

void XIntToColourLUT::Wavelength(double aWavelength, UInt32 aFirst, UInt32 aLast)
{
    if (IsEmpty())
        return;
    XLock lock(*this, kLockReadWrite);
    aFirst = std::min(aFirst, GetLastEntry());
    aLast = std::min(aLast, GetLastEntry());
    SetValue(aFirst, XARGB32Colour::kBlack);
    XARGB32Colour colour = XARGB32Colour::kBlack;
    colour.SetWavelength(aWavelength);
    SetValue(aLast, colour);
    Blend(aFirst, aLast);
}

bool XIntToColourLUT::IsMonotonic(UInt32 aDirection) const
{
    XAssertText(aDirection < 3, "direction < 3");
    XThreadLock guard(itsMonotonicityMutex);
    const bool cached = guard.IsLocked();
    if (cached && itsMonotonicSeed == GetSeed() && itsMonotonicDirection == aDirection)
        return itsMonotonicAnswer;

    bool answer = true;
    UInt32 direction = aDirection;
    if (!IsEmpty())
    {
        XLock lock(*this, kLockRead);
        const XARGB32Colour * entries = Entries();
        UInt32 level = entries[0].GetIntensity();
        const UInt32 last = GetLastEntry();
        for (UInt64 i = 1; answer && i <= last; ++i)
        {
            const UInt32 next = entries[i].GetIntensity();
            if (next == level)
                continue;
            const UInt32 sense = next > level ? kIncreasing : kDecreasing;
            if (direction == kEitherDirection)
                direction = sense;
            answer = sense == direction;
            level = next;
        }
    }
    if (cached)
    {
        itsMonotonicAnswer = answer;
        itsMonotonicSeed = GetSeed();
        itsMonotonicDirection = direction;
    }
    return answer;
}

XARGB32Volume * XIntToColourLUT::GetImageOfLUT(UInt32 aWidth, UInt32 aHeight) const
{
    XAssertText(!IsEmpty(), "GetSize() > 0");
    auto image = std::make_unique<XARGB32Volume>(aWidth, aHeight, 1);
    XLock imageLock(*image, kLockWrite);
    XLock lock(*this, kLockRead);
    const double step = (double(GetLastEntry()) + 1.0) / aWidth;
    for (UInt32 x = 0; x < aWidth; ++x)
    {
        const XARGB32Colour colour = IndexToValue(std::min(UInt32(step * x), GetLastEntry()));
        for (UInt32 y = 0; y < aHeight; ++y)
            image->SetVoxel(SInt32(x), SInt32(y), 0, colour);
    }
    return image.release();
}

XVector<XARGB32Colour> XIntToColourLUT::GetVectorOfColours() const
{
    XLock lock(*this, kLockRead);
    const UInt32 count = std::min(GetSize(), 256u);
    return XVector<XARGB32Colour>(Entries(), Entries() + count);
}

void XIntToColourLUT::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XIntToColourLUT(aStream, anOptions);
}

void XIntToColourLUT::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XIntToColourLUT(aStream, anOptions);
}

void XIntToColourLUT::ReadStream2_XIntToColourLUT(XStream & aStream, XOptions anOptions)
{
    const XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, anOptions);
}

void XIntToColourLUT::WriteStream2_XIntToColourLUT(XStream & aStream, XOptions anOptions) const
{
    XLock lock(*this, kLockRead);
    aStream.WriteVersion(GetClassVersion());
    WriteStreamSelf(aStream, anOptions);
}

void XIntToColourLUT::ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions)
{
    const UInt32 count = aStream.Read32();
    std::unique_ptr<XMemoryHandle> entries(ReadEntries(aStream, count, sizeof(XARGB32Colour), anOptions));
    const UInt32 depth = aVersion.GetClass() == kClassID ? aStream.Read32() : DepthForSize(count);
    const UInt32 lastTrueValue = aVersion.GetVersion() == 0 ? LastValueForDepth(depth) : aStream.Read32();
    ReplaceData(entries.release(), count);
    itsTrueDepth = depth;
    itsLastTrueValue = lastTrueValue;
}

void XIntToColourLUT::WriteStreamSelf(XStream & aStream, XOptions anOptions) const
{
    aStream.Write32(GetSize());
    aStream.WriteObject(GetHandle(), anOptions);
    aStream.Write32(itsTrueDepth);
    aStream.Write32(itsLastTrueValue);
}
