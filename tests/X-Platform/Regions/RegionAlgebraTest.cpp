// Set algebra of regions against a plain set of voxels worked out one voxel at a time, on
// small random boxes and masks, with the canonical form checked after every operation.

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <tuple>

#include "X3DRegion.h"
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

X3DRegion RandomRegion(std::mt19937 & aRandom)
{
    std::uniform_int_distribution<SInt32> corner(-2, 4), extent(1, 5);
    const SInt32 x = corner(aRandom), y = corner(aRandom), z = corner(aRandom) / 2;
    const X3DRect box(x, y, z, x + extent(aRandom), y + extent(aRandom), z + extent(aRandom) / 2 + 1);
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
} // namespace

TEST(RegionAlgebra, MatchesTheVoxelByVoxelReference)
{
    std::mt19937 random(20261125);
    for (int round = 0; round < 300; ++round)
    {
        const X3DRegion a = RandomRegion(random), b = RandomRegion(random);
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
    }
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
