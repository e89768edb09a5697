// Set algebra of regions against a plain set of voxels worked out one voxel at a time, on
// small random boxes and masks, with the canonical form checked after every operation.

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <tuple>

#include "X3DRegion.h"
#include "XIntelCPUInfo.h"
#include "XMaskVolume.h"
#include "XVolumeTestSupport.h"

namespace
{
using XVoxelSet = std::set<std::tuple<SInt32, SInt32, SInt32>>;

XVoxelSet VoxelsOf(const X3DRegion & aRegion)
{
    XVoxelSet voxels;
    XLock lock(aRegion, kLockRead);
    const X3DRect & b = aRegion.GetBounds();
    for (SInt32 z = b.GetFront(); z < b.GetBack(); ++z)
        for (SInt32 y = b.GetTop(); y < b.GetBottom(); ++y)
            for (SInt32 x = b.GetLeft(); x < b.GetRight(); ++x)
                if (aRegion.Contains(x, y, z))
                    voxels.insert({x, y, z});
    return voxels;
}

// Tight bounds, a mask only when the voxels do not fill their box, zero bounds when empty.
void ExpectCanonical(const X3DRegion & aRegion, const XVoxelSet & aVoxels)
{
    if (aVoxels.empty())
    {
        EXPECT_TRUE(aRegion.IsSimple());
        EXPECT_TRUE(aRegion.IsEmpty());
        return;
    }
    SInt32 x0 = 1 << 30, y0 = x0, z0 = x0, x1 = -x0, y1 = -x0, z1 = -x0;
    for (const auto & [x, y, z] : aVoxels)
    {
        x0 = std::min(x0, x), y0 = std::min(y0, y), z0 = std::min(z0, z);
        x1 = std::max(x1, x + 1), y1 = std::max(y1, y + 1), z1 = std::max(z1, z + 1);
    }
    EXPECT_EQ(aRegion.GetBounds(), X3DRect(x0, y0, z0, x1, y1, z1));
    EXPECT_EQ(aRegion.IsSimple(), aRegion.GetBounds().GetVolume() == aVoxels.size());
    EXPECT_EQ(aRegion.GetVolume(), aVoxels.size());
}

// Boxes up to aWidth wide, so that wide ones take the loops that go eight and more bytes at a time.
X3DRegion RandomRegion(std::mt19937 & aRandom, SInt32 aWidth = 5)
{
    std::uniform_int_distribution<SInt32> corner(-2, 4), extent(1, 5), width(1, aWidth);
    const SInt32 x = corner(aRandom) * (aWidth / 5), y = corner(aRandom), z = corner(aRandom) / 2;
    const X3DRect box(x, y, z, x + width(aRandom), y + extent(aRandom), z + extent(aRandom) / 2 + 1);
    const int kind = int(aRandom() % 4);
    if (kind == 0)
        return X3DRegion(box);
    // Masks from sparse to full, with bytes on both sides of 128.
    XMaskVolume mask(box);
    std::vector<UInt8> bytes;
    for (UInt64 i = 0; i < box.GetVolume(); ++i)
    {
        const UInt32 roll = aRandom() % 4;
        bytes.push_back(kind == 3 || roll < UInt32(kind) ? UInt8(128 + aRandom() % 128) : UInt8(aRandom() % 128));
    }
    XSetVoxels(mask, bytes);
    return X3DRegion(mask);
}

// The byte of a locked region's mask at a voxel: 0 outside its box, 255 in a plain box.
UInt8 ByteOf(const X3DRegion & aRegion, SInt32 aX, SInt32 aY, SInt32 aZ)
{
    if (!aRegion.GetBounds().Contains(aX, aY, aZ))
        return 0;
    return aRegion.IsSimple() ? 255 : *aRegion.GetLockedVoxel(aX, aY, aZ);
}

// The mask bytes of a masked result, one voxel at a time against the rule of its operation
// (aRule(x, y, z) with both operands locked).
template <typename Rule>
void ExpectMaskBytes(const X3DRegion & aResult, const X3DRegion & a, const X3DRegion & b, Rule aRule)
{
    if (aResult.IsSimple())
        return;
    XLock lockA(a, kLockRead), lockB(b, kLockRead), lock(aResult, kLockRead);
    const X3DRect & box = aResult.GetBounds();
    UInt64 wrong = 0;
    for (SInt32 z = box.GetFront(); z < box.GetBack(); ++z)
        for (SInt32 y = box.GetTop(); y < box.GetBottom(); ++y)
            for (SInt32 x = box.GetLeft(); x < box.GetRight(); ++x)
                wrong += *aResult.GetLockedVoxel(x, y, z) != aRule(x, y, z);
    EXPECT_EQ(wrong, 0u);
}

// The three operations that write a new mask, each result's bytes against the rules: Union
// paints 255 into this region's own mask when it spans both boxes, else into a cleared mask;
// Sect keeps this region's byte where the other holds the voxel and clears the rest;
// Difference clears where the other holds the voxel.
void ExpectTheBytesOfTheRules(const X3DRegion & a, const X3DRegion & b)
{
    X3DRect both = a.GetBounds();
    both |= b.GetBounds();
    const bool paintsIntoA = a.IsComplex() && a.GetMask()->GetBounds() == both;
    ExpectMaskBytes(a | b, a, b, [&](SInt32 x, SInt32 y, SInt32 z) {
        if (b.Contains(x, y, z))
            return UInt8(255);
        if (paintsIntoA)
            return ByteOf(a, x, y, z);
        return UInt8(a.Contains(x, y, z) ? 255 : 0);
    });
    ExpectMaskBytes(a & b, a, b, [&](SInt32 x, SInt32 y, SInt32 z) {
        return b.Contains(x, y, z) ? ByteOf(a, x, y, z) : UInt8(0);
    });
    ExpectMaskBytes(a - b, a, b, [&](SInt32 x, SInt32 y, SInt32 z) {
        return b.Contains(x, y, z) ? UInt8(0) : ByteOf(a, x, y, z);
    });
}
} // namespace

TEST(RegionAlgebra, MatchesTheVoxelByVoxelReference)
{
    std::mt19937 random(20261125);
    for (int round = 0; round < 400; ++round)
    {
        const SInt32 width = round < 300 ? 5 : 70;
        const X3DRegion a = RandomRegion(random, width), b = RandomRegion(random, width);
        const XVoxelSet va = VoxelsOf(a), vb = VoxelsOf(b);
        ExpectCanonical(a, va);
        XVoxelSet both, either, only, one;
        for (const auto & v : va)
            (vb.count(v) ? both : only).insert(v);
        either = va;
        either.insert(vb.begin(), vb.end());
        for (const auto & v : either)
            if (!both.count(v))
                one.insert(v);

        const X3DRegion sect = a & b, uni = a | b, diff = a - b, exclusive = a ^ b;
        EXPECT_EQ(VoxelsOf(sect), both) << round;
        EXPECT_EQ(VoxelsOf(uni), either) << round;
        EXPECT_EQ(VoxelsOf(diff), only) << round;
        EXPECT_EQ(VoxelsOf(exclusive), one) << round;
        // An intersection that the boxes leave empty keeps its collapsed box.
        X3DRect boxes = a.GetBounds();
        boxes.Sect(b.GetBounds());
        if (!boxes.IsEmpty())
            ExpectCanonical(sect, both);
        ExpectCanonical(uni, either);
        if (!only.empty() || !boxes.IsEmpty())
            ExpectCanonical(diff, only);
        ExpectCanonical(exclusive, one);

        bool contained = true;
        for (const auto & v : vb)
            contained = contained && va.count(v) > 0;
        EXPECT_EQ(a.Contains(b), contained && a.GetBounds().Contains(b.GetBounds())) << round;
        EXPECT_EQ(a.DoesTouch(b), !both.empty()) << round;
        EXPECT_EQ(a.IsEqual(b), va == vb && a.GetBounds() == b.GetBounds()) << round;
        SCOPED_TRACE(round);
        ExpectTheBytesOfTheRules(a, b);
    }
}

TEST(RegionAlgebra, LargeMasksGiveTheSameBytesOnEveryProcessor)
{
    // Over 4 MiB, so that the new mask is streamed where the processor allows, with rows of an
    // odd width that start anywhere against the stores' alignment; bytes on both sides of 128.
    const X3DRect box(0, 0, 0, 257, 128, 128), shifted(5, 1, 0, 262, 129, 128);
    XMaskVolume first(box), second(box), third(shifted);
    {
        XLock lock(first, kLockWrite), lock2(second, kLockWrite), lock3(third, kLockWrite);
        for (SInt32 z = 0; z < 128; ++z)
            for (SInt32 y = 0; y < 128; ++y)
                for (SInt32 x = 0; x < 257; ++x)
                {
                    first.SetVoxel(x, y, z, UInt8(x * 7 + y * 3 + z));
                    second.SetVoxel(x, y, z, UInt8((x ^ y) * 13 + z * 5));
                    third.SetVoxel(x + 5, y + 1, z, UInt8(x * y + z));
                }
    }
    const X3DRegion a(first), b(second), c(third);
    ASSERT_EQ(a.GetBounds(), box);
    ASSERT_EQ(b.GetBounds(), box);
    ASSERT_TRUE(a.IsComplex() && b.IsComplex() && c.IsComplex());
    ExpectTheBytesOfTheRules(a, b);
    ExpectTheBytesOfTheRules(a, c);

    const auto operations = [&] {
        return std::vector<X3DRegion>{a | b, a & b, a - b, a | c, a & c, a - c};
    };
    const std::vector<X3DRegion> widest = operations();
    XIntelCPUInfo::SetFeatureEnabled(kCPUFeatureAVX, false);
    const std::vector<X3DRegion> baseline = operations();
    XIntelCPUInfo::ResetFeatures();
    for (std::size_t i = 0; i < widest.size(); ++i)
        EXPECT_TRUE(widest[i] == baseline[i]) << i;
}

TEST(RegionAlgebra, CanonicalFormsOfTheEdgeCases)
{
    // Touching boxes whose union is a box become a plain box.
    const X3DRegion left(X3DRect(0, 0, 0, 2, 3, 1)), right(X3DRect(2, 0, 0, 5, 3, 1));
    const X3DRegion joined = left | right;
    EXPECT_TRUE(joined.IsSimple());
    EXPECT_EQ(joined.GetBounds(), X3DRect(0, 0, 0, 5, 3, 1));
    // Removing everything leaves the all-zero box.
    const X3DRegion gone = left - X3DRegion(X3DRect(-1, -1, -1, 9, 9, 9));
    EXPECT_TRUE(gone.IsSimple());
    EXPECT_EQ(gone.GetBounds(), X3DRect());
    // Disjoint boxes intersect to a collapsed box on the near edge of the other.
    const X3DRegion apart = left & X3DRegion(X3DRect(20, 20, 0, 30, 30, 1));
    EXPECT_TRUE(apart.IsEmpty());
    EXPECT_EQ(apart.GetBounds(), X3DRect(20, 20, 0, 20, 20, 1));
    // Equal plain boxes have an empty exclusive or; equal masks go through the masks to it.
    EXPECT_EQ((left ^ left).GetBounds(), X3DRect());
    const X3DRegion masked(XMakeVolume<XMaskVolume>(X3DRect(2, 2, 1), {255, 0, 0, 255}));
    ASSERT_TRUE(masked.IsComplex());
    const X3DRegion none = masked ^ masked;
    EXPECT_TRUE(none.IsSimple());
    EXPECT_EQ(none.GetBounds(), X3DRect());
    // A region within a plain box is left alone by the intersection, mask and all.
    X3DRegion same = masked;
    same &= X3DRegion(X3DRect(-5, -5, -5, 5, 5, 5));
    EXPECT_TRUE(same.IsComplex());
    EXPECT_TRUE(same == masked);
    // An empty region at the origin pulls the union's box there until the crop.
    const X3DRegion far(X3DRect(10, 10, 10, 12, 12, 12));
    EXPECT_EQ((far | X3DRegion()).GetBounds(), far.GetBounds());
}

TEST(RegionAlgebra, CropLocksHoldTheFormUntilTheLastUnlock)
{
    X3DRegion region(X3DRect(0, 0, 0, 2, 1, 1));
    region.LockCrop();
    region.LockCrop();
    region |= X3DRegion(X3DRect(2, 0, 0, 4, 1, 1));
    EXPECT_TRUE(region.IsComplex());
    region.UnlockCrop();
    EXPECT_TRUE(region.IsComplex());
    region.UnlockCrop();
    EXPECT_TRUE(region.IsSimple());
    EXPECT_EQ(region.GetBounds(), X3DRect(0, 0, 0, 4, 1, 1));
    EXPECT_EQ(region.GetCropLockCount(), 0u);
}
