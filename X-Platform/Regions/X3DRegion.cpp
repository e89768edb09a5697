#include "X3DRegion.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

#include "XBooleanVolumeTool.h"
#include "XException.h"
#include "XGrey8Volume.h"
#include "XLock.h"
#include "XMaskBits.h"
#include "XMaskRowWriter.h"
#include "XMaskVolume.h"
#include "XProgress.h"
#include "XStream.h"
#include "XThread.h"
#include "XVolumeScanner.h"
#include "XWidestKernel.h"

void X3DRegion::XCropHelper::SetupForScan(XVolume & aVolume)
{
    const X3DRect & bounds = aVolume.GetBounds();
    itsMinX = bounds.GetRight();
    itsMaxX = bounds.GetLeft();
    itsMinY = bounds.GetBottom();
    itsMaxY = bounds.GetTop();
    itsMinZ = bounds.GetBack();
    itsMaxZ = bounds.GetFront();
    itsCount = 0;
    itsEmpty = true;
}

void X3DRegion::XPixelCountHelper::ScanRow(const UInt8 * aRow, XVolume & aVolume, SInt32 aX, UInt32 aCount,
                                           SInt32 aY, SInt32 aZ, const UInt8 * aMask)
{
    UInt32 i = 0;
    if constexpr (XMaskBits::kUsable)
        for (; i + 8 <= aCount; i += 8)
            itsCount += XMaskBits::Count(XMaskBits::Of(aRow + i) & (aMask != nullptr ? XMaskBits::Of(aMask + i) : ~0ull));
    for (; i < aCount; ++i)
        if (aMask == nullptr || aMask[i] > 127)
            ScanPixel(aRow + i, aVolume, aX + SInt32(i), aY, aZ);
}

void X3DRegion::XCropHelper::ScanRow(const UInt8 * aRow, XVolume & aVolume, SInt32 aX, UInt32 aCount, SInt32 aY,
                                     SInt32 aZ, const UInt8 * aMask)
{
    UInt32 i = 0;
    if constexpr (XMaskBits::kUsable)
    {
        SInt64 first = -1, last = -1;
        UInt32 count = 0;
        for (; i + 8 <= aCount; i += 8)
        {
            // Mostly clear masks go by 32 bytes at a time.
            if (aMask == nullptr && (i & 31) == 0 && i + 32 <= aCount &&
                (XMaskBits::Of(aRow + i) | XMaskBits::Of(aRow + i + 8) | XMaskBits::Of(aRow + i + 16) |
                 XMaskBits::Of(aRow + i + 24)) == 0)
            {
                i += 24;
                continue;
            }
            const UInt64 bits = XMaskBits::Of(aRow + i) & (aMask != nullptr ? XMaskBits::Of(aMask + i) : ~0ull);
            if (bits == 0)
                continue;
            count += XMaskBits::Count(bits);
            if (first < 0)
                first = i + XMaskBits::First(bits);
            last = i + XMaskBits::Last(bits);
        }
        if (count != 0)
        {
            // The set voxels of the run widen the limits as one by one they would.
            ScanPixel(aRow + first, aVolume, aX + SInt32(first), aY, aZ);
            ScanPixel(aRow + last, aVolume, aX + SInt32(last), aY, aZ);
            itsCount += count - (first == last ? 1 : 2);
        }
    }
    for (; i < aCount; ++i)
        if (aMask == nullptr || aMask[i] > 127)
            ScanPixel(aRow + i, aVolume, aX + SInt32(i), aY, aZ);
}

X3DRect X3DRegion::XCropHelper::GetLimit() const
{
    if (itsEmpty)
        return X3DRect();
    return X3DRect(itsMinX, itsMinY, itsMinZ, itsMaxX, itsMaxY, itsMaxZ);
}

X3DRegion::X3DRegion() = default;

X3DRegion::X3DRegion(const X3DRect & aBox) : itsBounds(aBox)
{
}

X3DRegion::X3DRegion(const X3DRegion & aRegion)
    : XStorable(aRegion), XLockable(), itsBounds(aRegion.itsBounds),
      itsMask(aRegion.itsMask != nullptr ? static_cast<XMaskVolume *>(aRegion.itsMask->Clone()) : nullptr)
{
}

X3DRegion::X3DRegion(const XMaskVolume & aMask)
    : itsBounds(aMask.GetBounds()), itsMask(static_cast<XMaskVolume *>(aMask.Clone()))
{
    CropToFitVolume();
}

X3DRegion::X3DRegion(const XMaskVolume & aMask, const X3DRect & aBox) : itsBounds(aBox)
{
    itsBounds &= aMask.GetBounds();
    std::unique_ptr<XMaskVolume> mask(new XMaskVolume(itsBounds));
    mask->CopyIn(aMask, itsBounds, itsBounds, nullptr);
    itsMask = mask.release();
    CropToFitVolume();
}

X3DRegion::X3DRegion(XStream & aStream)
{
    XVersion word = ReadClassVersion(aStream, GetClassVersion());
    CheckClassVersion(word, GetClassVersion());
    ReadStreamSelf(aStream, word, kNormal);
}

X3DRegion::~X3DRegion()
{
    delete itsMask;
}

X3DRegion & X3DRegion::operator=(const X3DRegion & aRegion)
{
    if (this == &aRegion)
        return *this;
    std::unique_ptr<XMaskVolume> mask(
        aRegion.itsMask != nullptr ? static_cast<XMaskVolume *>(aRegion.itsMask->Clone()) : nullptr);
    itsBounds = aRegion.itsBounds;
    SetMask(mask.release());
    return *this;
}

X3DRegion & X3DRegion::operator=(const X3DRect & aBox)
{
    itsBounds = aBox;
    SetMask(nullptr);
    return *this;
}

X3DRegion & X3DRegion::operator=(const XMaskVolume & aMask)
{
    std::unique_ptr<XMaskVolume> mask(static_cast<XMaskVolume *>(aMask.Clone()));
    itsBounds = aMask.GetBounds();
    SetMask(mask.release());
    CropToFitVolume();
    return *this;
}

void X3DRegion::SetMask(XMaskVolume * aMask)
{
    if (aMask != itsMask)
        delete itsMask;
    itsMask = aMask;
}

UInt64 X3DRegion::GetStreamUsage() const
{
    return (itsMask != nullptr ? itsMask->GetStreamUsage() : 0) + itsBounds.GetStreamUsage() + 1;
}

XMaskVolume X3DRegion::GetMaskVolume() const
{
    if (itsMask != nullptr)
        return *itsMask;
    XMaskVolume mask(itsBounds);
    mask.Fill(255);
    return mask;
}

void X3DRegion::UnlockCrop()
{
    XAssert(itsCropLockCount > 0);
    if (--itsCropLockCount == 0)
        CropToFitVolume();
}

void X3DRegion::FetchData() const
{
    XLockable::FetchData();
    if (itsMask != nullptr)
        itsMask->FetchData();
}

void X3DRegion::LockSelf(XLockMode aMode) const
{
    if (itsMask == nullptr)
        return;
    LockFor(*itsMask, aMode);
    itsLockedBase = static_cast<const UInt8 *>(itsMask->GetBasePtr());
    itsLockedOrigin = itsMask->GetBounds().GetOrigin();
    itsLockedRowBytes = itsMask->GetRowBytes();
    itsLockedPlaneBytes = itsMask->GetPlaneBytes();
}

void X3DRegion::UnlockSelf(XLockMode aMode) const
{
    itsLockedBase = nullptr;
    itsLockedRowBytes = 0;
    itsLockedPlaneBytes = 0;
    if (itsMask != nullptr)
        UnlockFor(*itsMask, aMode);
}

void X3DRegion::CropToFitVolume()
{
    if (itsMask == nullptr || itsCropLockCount > 0)
        return;
    XCropHelper helper;
    XScanVolume(*itsMask, helper, nullptr, kLockReadWrite);
    ApplyCrop(helper.GetLimit(), helper.IsRect());
}

void X3DRegion::ApplyCrop(const X3DRect & aLimit, bool aFills)
{
    if (aFills)
    {
        itsBounds = aLimit;
        SetMask(nullptr);
        return;
    }
    // The mask is compared rather than the bounds: after Xor under a crop lock the mask can be
    // larger than the bounds, and the crop brings the two together again.
    if (aLimit != itsMask->GetBounds())
    {
        std::unique_ptr<XVolume> mask(itsMask->Clone(aLimit));
        SetMask(static_cast<XMaskVolume *>(mask.release()));
    }
    itsBounds = aLimit;
}

// ---------------------------------------------------------------------------------------------
// Queries

template <typename Test>
bool X3DRegion::AnyVoxel(const X3DRegion & anOther, const X3DRect & aBox, Test aTest) const
{
    XLock lock(*this, kLockRead);
    XLock otherLock(anOther, kLockRead);
    for (SInt32 z = aBox.GetFront(); z < aBox.GetBack(); ++z)
        for (SInt32 y = aBox.GetTop(); y < aBox.GetBottom(); ++y)
            for (SInt32 x = aBox.GetLeft(); x < aBox.GetRight(); ++x)
                if (aTest(Contains(x, y, z), anOther.Contains(x, y, z)))
                    return true;
    return false;
}

bool X3DRegion::Contains(const X3DRegion & aRegion) const
{
    if (!itsBounds.Contains(aRegion.GetBounds()))
        return false;
    if (IsSimple())
        return true;
    // Not contained where a voxel of the other is missing here.
    return !AnyVoxel(aRegion, aRegion.GetBounds(), [](bool inThis, bool inOther) { return !inThis && inOther; });
}

bool X3DRegion::DoesTouch(const X3DRegion & aRegion) const
{
    X3DRect box = itsBounds;
    box.Sect(aRegion.GetBounds());
    if (box.IsEmpty())
        return false;
    if (IsSimple() && aRegion.IsSimple())
        return true;
    return AnyVoxel(aRegion, box, [](bool inThis, bool inOther) { return inThis && inOther; });
}

UInt32 X3DRegion::GetVolume() const
{
    if (IsSimple())
        return itsBounds.GetWidth() * itsBounds.GetHeight() * itsBounds.GetDepth();
    XPixelCountHelper helper;
    XScanVolume(*itsMask, helper, nullptr, kLockReadWrite);
    return helper.GetPixelCount();
}

bool X3DRegion::IsVolumeGreaterThanOrEqualTo(UInt32 aCount) const
{
    if (IsSimple())
        return itsBounds.GetVolume() > aCount;
    if (itsBounds.GetVolume() < aCount)
        return false;
    XLock lock(*itsMask, kLockRead);
    UInt64 count = 0;
    for (SInt32 z = itsBounds.GetFront(); z < itsBounds.GetBack(); ++z)
        for (SInt32 y = itsBounds.GetTop(); y < itsBounds.GetBottom(); ++y)
        {
            const UInt8 * row = itsMask->GetVoxelPtr(itsBounds.GetLeft(), y, z);
            for (UInt32 x = 0; x < itsBounds.GetWidth(); ++x)
                if (row[x] > 127 && ++count >= aCount)
                    return true;
        }
    return false;
}

bool X3DRegion::IsEqual(const X3DRegion & aRegion) const
{
    if (IsSimple() != aRegion.IsSimple() || itsBounds != aRegion.GetBounds())
        return false;
    return IsSimple() || itsMask->operator==(*aRegion.itsMask);
}

bool X3DRegion::FastButInaccurateIsEqualTo(const X3DRegion & aRegion) const
{
    if (IsComplex() && aRegion.IsComplex())
        return false;
    return IsEqual(aRegion);
}

void X3DRegion::CalculateCentroid(X3DPointF & outCentre) const
{
    X3DPointF scaled;
    CalculateCentroid(X3DPointF(1.0f, 1.0f, 1.0f), outCentre, scaled);
}

void X3DRegion::CalculateCentroid(const X3DPointF & aScale, X3DPointF & outVoxelCentre,
                                  X3DPointF & outScaledCentre) const
{
    if (IsSimple())
    {
        const X3DRect & b = itsBounds;
        outVoxelCentre = X3DPointF(float((double(b.GetLeft()) + b.GetRight() - 1) * 0.5),
                                   float((double(b.GetTop()) + b.GetBottom() - 1) * 0.5),
                                   float((double(b.GetFront()) + b.GetBack() - 1) * 0.5));
        outScaledCentre = X3DPointF(outVoxelCentre.x * aScale.x, outVoxelCentre.y * aScale.y, outVoxelCentre.z * aScale.z);
        return;
    }
    SInt64 sumX = 0, sumY = 0, sumZ = 0, voxelCount = 0;
    double scaledX = 0.0, scaledY = 0.0, scaledZ = 0.0;
    {
        XLock lock(*itsMask, kLockRead);
        for (SInt32 z = itsBounds.GetFront(); z < itsBounds.GetBack(); ++z)
            for (SInt32 y = itsBounds.GetTop(); y < itsBounds.GetBottom(); ++y)
            {
                const UInt8 * row = itsMask->GetVoxelPtr(itsBounds.GetLeft(), y, z);
                for (SInt32 x = itsBounds.GetLeft(); x < itsBounds.GetRight(); ++x)
                    if (row[x - itsBounds.GetLeft()] != 0)
                    {
                        sumX += x, sumY += y, sumZ += z, ++voxelCount;
                        scaledX += double(x) * aScale.x;
                        scaledY += double(y) * aScale.y;
                        scaledZ += double(z) * aScale.z;
                    }
            }
    }
    XAssertText(voxelCount > 0, "voxelCount > 0");
    const double count = double(voxelCount);
    outVoxelCentre = X3DPointF(float(double(sumX) / count), float(double(sumY) / count), float(double(sumZ) / count));
    outScaledCentre = X3DPointF(float(scaledX / count), float(scaledY / count), float(scaledZ / count));
}

// ---------------------------------------------------------------------------------------------
// Set operations

std::unique_ptr<XMaskVolume> X3DRegion::MakeMask() const
{
    if (itsMask != nullptr)
        return std::unique_ptr<XMaskVolume>(itsMask->Clone());
    std::unique_ptr<XMaskVolume> mask(new XMaskVolume(itsBounds));
    mask->Fill(255);
    return mask;
}

namespace
{
// Where a region holds voxels along one row: the run [x0, x1) of its box, and the mask bytes of
// the run (null for a plain box). An empty run when the row misses the box.
struct XRegionRow
{
    SInt32 x0 = 0, x1 = 0;
    const UInt8 * bytes = nullptr;

    bool Holds(SInt32 anX) const { return anX >= x0 && anX < x1 && (bytes == nullptr || bytes[anX - x0] > 127); }
    // The byte that a mask of the region has at anX: 255 for a plain box.
    UInt8 ByteAt(SInt32 anX) const { return bytes == nullptr ? 255 : bytes[anX - x0]; }
};

XRegionRow RowOf(const X3DRegion & aRegion, SInt32 aY, SInt32 aZ)
{
    const X3DRect & b = aRegion.GetBounds();
    XRegionRow row;
    if (aY < b.GetTop() || aY >= b.GetBottom() || aZ < b.GetFront() || aZ >= b.GetBack())
        return row;
    row.x0 = b.GetLeft();
    row.x1 = b.GetRight();
    row.bytes = aRegion.GetLockedBase() != nullptr ? aRegion.GetLockedVoxel(b.GetLeft(), aY, aZ) : nullptr;
    return row;
}

// Sets the bytes of anOut (the row from aLeft to aRight) to aValue where aRow holds voxels.
void MarkRow(UInt8 * anOut, SInt32 aLeft, SInt32 aRight, const XRegionRow & aRow, UInt8 aValue)
{
    const SInt32 x0 = std::max(aLeft, aRow.x0), x1 = std::min(aRight, aRow.x1);
    if (x0 >= x1)
        return;
    UInt8 * out = anOut + (x0 - aLeft);
    const UInt32 count = UInt32(x1 - x0);
    if (aRow.bytes == nullptr)
        std::memset(out, aValue, count);
    else
    {
        const UInt8 * __restrict bytes = aRow.bytes + (x0 - aRow.x0);
        UInt8 * __restrict row = out;
        const UInt8 value = aValue;
        for (UInt32 i = 0; i < count; ++i)
            row[i] = bytes[i] > 127 ? value : row[i];
    }
}

// 255 for a set mask byte, else 0.
UInt8 Spread(UInt8 aByte)
{
    return UInt8(0 - (aByte >> 7));
}

// Writes aRule(aFirst[i], aSecond[i]) over a row of aCount bytes in one pass, and tells whether
// it wrote a set byte. The rule is inlined and the loop widened to the vector unit.
template <typename ByteRule>
bool WriteRow(UInt8 * anOut, const UInt8 * aFirst, const UInt8 * aSecond, UInt32 aCount, ByteRule aRule)
{
    UInt8 * __restrict out = anOut;
    const UInt8 * __restrict first = aFirst;
    const UInt8 * __restrict second = aSecond;
    UInt8 bits = 0;
    for (UInt32 i = 0; i < aCount; ++i)
    {
        const UInt8 byte = aRule(first[i], second[i]);
        out[i] = byte;
        bits |= byte;
    }
    return bits > 127;
}

// The box of the set bytes of a mask over aBox whose rows are handed in one at a time, each
// with whether it holds a set byte. The x limits are looked for only outside the run already
// known, which soon covers most of the row.
class XRowLimits
{
public:
    explicit XRowLimits(const X3DRect & aBox) : itsLeft(aBox.GetLeft()), itsWidth(aBox.GetWidth()) {}

    void AddRow(const UInt8 * aRow, bool aHoldsSet, SInt32 aY, SInt32 aZ)
    {
        if (!aHoldsSet)
            return;
        const UInt64 width = itsWidth;
        if (itsFirst > 0 && XMaskBits::AnySet(aRow, itsFirst))
            itsFirst = XMaskBits::FirstSet(aRow, itsFirst);
        if (itsEnd < width && XMaskBits::AnySet(aRow + itsEnd, width - itsEnd))
            itsEnd += XMaskBits::LastSet(aRow + itsEnd, width - itsEnd) + 1;
        itsMinY = std::min(itsMinY, aY);
        itsMaxY = std::max(itsMaxY, aY + 1);
        itsMinZ = std::min(itsMinZ, aZ);
        itsMaxZ = std::max(itsMaxZ, aZ + 1);
    }
    // All zero when no row held a set byte.
    X3DRect GetLimit() const
    {
        if (itsEnd == 0)
            return X3DRect();
        return X3DRect(itsLeft + SInt32(itsFirst), itsMinY, itsMinZ, itsLeft + SInt32(itsEnd), itsMaxY, itsMaxZ);
    }

private:
    SInt32 itsLeft;
    UInt64 itsWidth;
    // The run [itsFirst, itsEnd) of the row, empty until a row holds a set byte.
    UInt64 itsFirst = itsWidth, itsEnd = 0;
    SInt32 itsMinY = std::numeric_limits<SInt32>::max(), itsMaxY = std::numeric_limits<SInt32>::min();
    SInt32 itsMinZ = std::numeric_limits<SInt32>::max(), itsMaxZ = std::numeric_limits<SInt32>::min();
};

// Every voxel of aBox (inside the locked mask) is set; true for an empty box. Stops at the
// first row that is not full, which for a region that does not fill its box is soon.
bool FillsBox(const XMaskVolume & aMask, const X3DRect & aBox)
{
    bool fills = true;
    XRunWidestKernel([&] {
        for (SInt32 z = aBox.GetFront(); z < aBox.GetBack() && fills; ++z)
            for (SInt32 y = aBox.GetTop(); y < aBox.GetBottom() && fills; ++y)
                fills = XMaskBits::AllSet(aMask.GetVoxelPtr(aBox.GetLeft(), y, z), aBox.GetWidth());
    });
    return fills;
}
} // namespace

template <typename RowRule>
void X3DRegion::CombineInto(const X3DRegion & anOther, const X3DRect & aBox, RowRule aRule)
{
    // Every byte of the new mask is written by the rule.
    std::unique_ptr<XMaskVolume> mask(new XMaskVolume());
    mask->Reshape(aBox, false);
    XRowLimits limits(aBox);
    bool fills = false;
    {
        XLock lock(*this, kLockRead);
        XLock otherLock(anOther, kLockRead);
        XLock maskLock(*mask, kLockReadWrite);
        {
            XMaskRowWriter writer(aBox.GetWidth(), mask->GetVolumeBytes());
            XProgress progress(aBox.GetDepth(), XProgress::kProgressWithEstimate, 2000, false);
            for (SInt32 z = aBox.GetFront(); z < aBox.GetBack(); ++z)
            {
                XThread::TestCancelCurrentThread();
                XRunWidestKernel([&] {
                    for (SInt32 y = aBox.GetTop(); y < aBox.GetBottom() && aBox.GetWidth() > 0; ++y)
                    {
                        UInt8 * out = mask->GetVoxelPtr(aBox.GetLeft(), y, z);
                        UInt8 * row = writer.Begin(out);
                        limits.AddRow(row, aRule(row, y, z), y, z);
                        writer.End(out);
                    }
                });
                progress.Increment();
            }
        }
        if (itsCropLockCount == 0)
            fills = FillsBox(*mask, limits.GetLimit());
    }
    SetMask(mask.release());
    itsBounds = aBox;
    if (itsCropLockCount == 0)
        ApplyCrop(limits.GetLimit(), fills);
}

X3DRegion & X3DRegion::Union(const X3DRegion & aRegion)
{
    // The box of both, empty ones included: an empty region at the origin pulls it there until
    // the crop.
    X3DRect box = itsBounds;
    box |= aRegion.GetBounds();
    const SInt32 left = box.GetLeft(), right = box.GetRight();
    const UInt32 width = box.GetWidth();
    if (IsComplex() && itsMask->GetBounds() == box)
    {
        // The other region painted into this mask: this mask's bytes stay where it is not.
        CombineInto(aRegion, box, [&](UInt8 * anOut, SInt32 aY, SInt32 aZ) {
            const UInt8 * own = GetLockedVoxel(left, aY, aZ);
            const XRegionRow other = RowOf(aRegion, aY, aZ);
            if (other.x0 == other.x1)
                return WriteRow(anOut, own, own, width, [](UInt8 a, UInt8) { return a; });
            if (other.bytes != nullptr && other.x0 == left && other.x1 == right)
                return WriteRow(anOut, own, other.bytes, width, [](UInt8 a, UInt8 b) { return UInt8(a | Spread(b)); });
            std::memcpy(anOut, own, width);
            MarkRow(anOut, left, right, other, 255);
            return XMaskBits::AnySet(anOut, width);
        });
        return *this;
    }
    // Both painted into a cleared mask.
    CombineInto(aRegion, box, [&](UInt8 * anOut, SInt32 aY, SInt32 aZ) {
        const XRegionRow own = RowOf(*this, aY, aZ), other = RowOf(aRegion, aY, aZ);
        if (own.bytes != nullptr && other.bytes != nullptr && own.x0 == left && other.x0 == left &&
            own.x1 == right && other.x1 == right)
            return WriteRow(anOut, own.bytes, other.bytes, width, [](UInt8 a, UInt8 b) { return Spread(a | b); });
        std::memset(anOut, 0, width);
        MarkRow(anOut, left, right, own, 255);
        MarkRow(anOut, left, right, other, 255);
        return XMaskBits::AnySet(anOut, width);
    });
    return *this;
}

X3DRegion & X3DRegion::Sect(const X3DRegion & aRegion)
{
    if (&aRegion == this || (aRegion.IsSimple() && aRegion.GetBounds().Contains(itsBounds)))
        return *this;
    X3DRect box = itsBounds;
    box.Sect(aRegion.GetBounds());
    if (box.IsEmpty())
    {
        // The collapsed box stays; nothing is cropped.
        itsBounds = box;
        SetMask(nullptr);
        return *this;
    }
    if (IsSimple() && aRegion.IsSimple())
    {
        itsBounds = box;
        return *this;
    }
    // This region's bytes (255 for a plain box) where the other holds voxels, else 0: the mask
    // of the box masked with the other's. Both regions cover every row of the box.
    const SInt32 left = box.GetLeft();
    const UInt32 width = box.GetWidth();
    CombineInto(aRegion, box, [&](UInt8 * anOut, SInt32 aY, SInt32 aZ) {
        const XRegionRow own = RowOf(*this, aY, aZ), other = RowOf(aRegion, aY, aZ);
        const UInt8 * mine = own.bytes != nullptr ? own.bytes + (left - own.x0) : nullptr;
        const UInt8 * theirs = other.bytes != nullptr ? other.bytes + (left - other.x0) : nullptr;
        if (theirs == nullptr)
            return WriteRow(anOut, mine, mine, width, [](UInt8 a, UInt8) { return a; });
        if (mine == nullptr)
            return WriteRow(anOut, theirs, theirs, width, [](UInt8 b, UInt8) { return Spread(b); });
        return WriteRow(anOut, mine, theirs, width, [](UInt8 a, UInt8 b) { return UInt8(a & Spread(b)); });
    });
    return *this;
}

X3DRegion & X3DRegion::Difference(const X3DRegion & aRegion)
{
    X3DRect box = itsBounds;
    box.Sect(aRegion.GetBounds());
    if (box.IsEmpty())
        return *this;
    // The other region painted out of this one's mask (255 throughout for a plain box).
    const X3DRect bounds = itsBounds;
    const SInt32 left = bounds.GetLeft(), right = bounds.GetRight();
    const UInt32 width = bounds.GetWidth();
    CombineInto(aRegion, bounds, [&](UInt8 * anOut, SInt32 aY, SInt32 aZ) {
        const XRegionRow own = RowOf(*this, aY, aZ), other = RowOf(aRegion, aY, aZ);
        if (other.bytes != nullptr && other.x0 == left && other.x1 == right)
        {
            if (own.bytes == nullptr)
                return WriteRow(anOut, other.bytes, other.bytes, width, [](UInt8 b, UInt8) { return UInt8(~Spread(b)); });
            return WriteRow(anOut, own.bytes, other.bytes, width, [](UInt8 a, UInt8 b) { return UInt8(a & ~Spread(b)); });
        }
        if (own.bytes != nullptr)
            std::memcpy(anOut, own.bytes, width);
        else
            std::memset(anOut, 255, width);
        MarkRow(anOut, left, right, other, 0);
        return XMaskBits::AnySet(anOut, width);
    });
    return *this;
}

X3DRegion & X3DRegion::Xor(const X3DRegion & aRegion)
{
    if (aRegion.IsEmpty())
        return *this;
    if (IsEmpty())
        return *this = aRegion;
    if (IsSimple() && aRegion.IsSimple() && IsEqual(aRegion))
        return *this = X3DRegion();
    X3DRect box = itsBounds;
    box |= aRegion.GetBounds();
    // The result starts as the union, this region winning where both are.
    std::unique_ptr<XMaskVolume> result(new XMaskVolume(box));
    std::unique_ptr<XMaskVolume> other = aRegion.MakeMask();
    std::unique_ptr<XMaskVolume> own = MakeMask();
    result->CopyIn(*other, other->GetBounds(), other->GetBounds(), nullptr);
    result->CopyIn(*own, own->GetBounds(), own->GetBounds(), nullptr);
    // Where both are, the exclusive or of the two masks.
    XBooleanVolumeTool().XorVolumes(*own, *other, *own);
    X3DRect common = itsBounds;
    common.Sect(aRegion.GetBounds());
    if (!common.IsEmpty())
        result->CopyIn(*own, common, common, nullptr);
    // The bounds come from the crop: under a crop lock they stay as they were.
    SetMask(result.release());
    CropToFitVolume();
    return *this;
}

X3DRegion operator+(const X3DRegion & a, const X3DRegion & b)
{
    return X3DRegion(a) += b;
}

X3DRegion operator|(const X3DRegion & a, const X3DRegion & b)
{
    return X3DRegion(a) |= b;
}

X3DRegion operator&(const X3DRegion & a, const X3DRegion & b)
{
    return X3DRegion(a) &= b;
}

X3DRegion operator-(const X3DRegion & a, const X3DRegion & b)
{
    return X3DRegion(a) -= b;
}

X3DRegion operator^(const X3DRegion & a, const X3DRegion & b)
{
    return X3DRegion(a) ^= b;
}

bool operator==(const X3DRegion & a, const X3DRegion & b)
{
    return a.IsEqual(b);
}

bool operator!=(const X3DRegion & a, const X3DRegion & b)
{
    return !a.IsEqual(b);
}

void X3DRegion::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_X3DRegion(aStream, anOptions);
}

void X3DRegion::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_X3DRegion(aStream, anOptions);
}

void X3DRegion::ReadStream2_X3DRegion(XStream & aStream, XOptions anOptions)
{
    XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, anOptions);
}

void X3DRegion::WriteStream2_X3DRegion(XStream & aStream, XOptions anOptions) const
{
    aStream.WriteVersion(GetClassVersion());
    WriteStreamSelf(aStream, anOptions);
}

void X3DRegion::ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions)
{
    std::unique_ptr<X3DRect> bounds(aStream.ReadObjectAs<X3DRect>(anOptions));
    if (!bounds)
        throw XException(kErrWrongClass, "region without its bounds");
    itsBounds = *bounds;
    if (aStream.Read8() == 0)
        return;
    if (aVersion.GetVersion() >= 1)
    {
        itsMask = aStream.ReadObjectAs<XMaskVolume>(anOptions);
    }
    else
    {
        std::unique_ptr<XGrey8Volume> grey(aStream.ReadObjectAs<XGrey8Volume>(anOptions));
        if (grey)
        {
            std::unique_ptr<XMaskVolume> mask(new XMaskVolume(grey->GetBounds()));
            grey->CopyOut(*mask, grey->GetBounds(), grey->GetBounds(), nullptr);
            itsMask = mask.release();
        }
    }
    if (itsMask != nullptr && itsMask->GetBounds() != itsBounds)
    {
        SetMask(nullptr);
        throw XException(kErrDamagedStream, "region whose mask does not cover its bounds");
    }
}

void X3DRegion::WriteStreamSelf(XStream & aStream, XOptions) const
{
    aStream.WriteObject(itsBounds, kNormal);
    aStream.Write8(itsMask != nullptr ? 1 : 0);
    if (itsMask != nullptr)
        aStream.WriteObject(*itsMask, kNormal);
}
