// The queries of a region: membership, counting that stops early and its strict comparison for
// boxes, equality and its fast form, centroids that count every non-zero mask byte, the mask
// as a volume, and the stream form in its two versions.

#include <gtest/gtest.h>

#include <memory>

#include "X3DRegion.h"
#include "XGrey8Volume.h"
#include "XMaskVolume.h"
#include "XTestMemoryStream.h"
#include "XTestSupport.h"
#include "XVolumeTestSupport.h"

namespace
{
X3DRegion Masked(const X3DRect & aBox, const std::vector<UInt8> & aBytes)
{
    return X3DRegion(XMakeVolume<XMaskVolume>(aBox, aBytes));
}
} // namespace

TEST(RegionQuery, MembershipAndCounting)
{
    const X3DRegion masked = Masked(X3DRect(1, 1, 1, 4, 2, 2), {255, 127, 128});
    ASSERT_TRUE(masked.IsComplex());
    // Outside the box no mask is needed, so no lock either.
    EXPECT_FALSE(masked.Contains(0, 1, 1));
    {
        XLock lock(masked, kLockRead);
        EXPECT_TRUE(masked.Contains(1, 1, 1));
        EXPECT_FALSE(masked.Contains(X3DPoint(2, 1, 1)));
        EXPECT_TRUE(masked.Contains(3, 1, 1));
    }
    EXPECT_EQ(masked.GetVolume(), 2u);
    EXPECT_TRUE(masked.IsVolumeGreaterThanOrEqualTo(2));
    EXPECT_FALSE(masked.IsVolumeGreaterThanOrEqualTo(3));
    EXPECT_TRUE(masked.IsVolumeGreaterThanOrEqualTo(0));
    // A plain box of volume 10 answers strictly: not for 10.
    const X3DRegion box(X3DRect(10, 1, 1));
    EXPECT_FALSE(box.IsVolumeGreaterThanOrEqualTo(10));
    EXPECT_TRUE(box.IsVolumeGreaterThanOrEqualTo(9));
    EXPECT_TRUE(masked < box);
    std::vector<UInt8> ten(12, 255);
    ten[3] = ten[7] = 0;
    EXPECT_TRUE(Masked(X3DRect(12, 1, 1), ten).IsVolumeGreaterThanOrEqualTo(10));
}

TEST(RegionQuery, EqualityAndTheFastForm)
{
    const X3DRegion a = Masked(X3DRect(2, 2, 1), {255, 0, 0, 255});
    const X3DRegion b = Masked(X3DRect(2, 2, 1), {255, 0, 0, 255});
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a.FastButInaccurateIsEqualTo(b));
    // Masks compare byte for byte: the same voxels held by other bytes are another region.
    EXPECT_FALSE(a == Masked(X3DRect(2, 2, 1), {200, 10, 0, 255}));
    EXPECT_TRUE(X3DRegion(X3DRect(2, 2, 1)).FastButInaccurateIsEqualTo(X3DRegion(X3DRect(2, 2, 1))));
    EXPECT_TRUE(a != X3DRegion(X3DRect(2, 2, 1)));
    const XMaskVolume full = X3DRegion(X3DRect(1, 1, 0, 3, 2, 1)).GetMaskVolume();
    EXPECT_EQ(full.GetBounds(), X3DRect(1, 1, 0, 3, 2, 1));
    EXPECT_EQ(XGetVoxels(full), (std::vector<UInt8>{255, 255}));
}

TEST(RegionQuery, CentroidsCountEveryNonZeroMaskByte)
{
    X3DPointF centre, scaled;
    X3DRegion(X3DRect(0, 0, 0, 4, 2, 1)).CalculateCentroid(X3DPointF(2.0f, 3.0f, 4.0f), centre, scaled);
    EXPECT_EQ(centre, X3DPointF(1.5f, 0.5f, 0.0f));
    EXPECT_EQ(scaled, X3DPointF(3.0f, 1.5f, 0.0f));
    // Bytes 255, 100, 0, 255: membership has x 0 and 3, the centroid also x 1.
    const X3DRegion masked = Masked(X3DRect(4, 1, 1), {255, 100, 0, 255});
    ASSERT_TRUE(masked.IsComplex());
    masked.CalculateCentroid(centre);
    EXPECT_FLOAT_EQ(centre.x, 4.0f / 3.0f);
    masked.CalculateCentroid(X3DPointF(0.5f, 1.0f, 1.0f), centre, scaled);
    EXPECT_FLOAT_EQ(scaled.x, 2.0f / 3.0f);
    // A masked region with no byte at all breaks the precondition; only an unlocked crop could
    // leave one, so it is made with the crop held.
    X3DRegion hollow(X3DRect(2, 1, 1));
    hollow.LockCrop();
    hollow -= X3DRegion(X3DRect(2, 1, 1));
    EXPECT_EQ(AssertionOf([&] { hollow.CalculateCentroid(centre); }), "voxelCount > 0");
    hollow.UnlockCrop();
}

TEST(RegionStream, BothFormsRoundTripAndVersionZeroReadsAGreyMask)
{
    for (const X3DRegion & region : {X3DRegion(X3DRect(1, 2, 3, 4, 5, 6)), Masked(X3DRect(2, 2, 1), {255, 0, 0, 255})})
    {
        XTestMemoryStream stream(kBigEndian);
        stream.WriteObject(region);
        stream.SeekTo(0);
        EXPECT_EQ(stream.Read32(), 0x0001006Du);
        EXPECT_EQ(stream.Read32(), 0x0001006Du);
        stream.SeekTo(0);
        std::unique_ptr<X3DRegion> back(stream.ReadObjectAs<X3DRegion>());
        EXPECT_TRUE(*back == region);
        EXPECT_EQ(back->IsComplex(), region.IsComplex());
    }
    // Version 0: the mask was a grey volume.
    XTestMemoryStream old(kLittleEndian);
    old.Write32(109);
    old.Write32(109);
    old.WriteObject(X3DRect(2, 1, 1));
    old.Write8(1);
    old.WriteObject(XMakeVolume<XGrey8Volume>(X3DRect(2, 1, 1), {255, 0}));
    old.SeekTo(0);
    std::unique_ptr<X3DRegion> back(old.ReadObjectAs<X3DRegion>());
    ASSERT_TRUE(back->IsComplex());
    EXPECT_EQ(typeid(*back->GetMask()), typeid(XMaskVolume));
    EXPECT_EQ(XGetVoxels(*back->GetMask()), (std::vector<UInt8>{255, 0}));
    // Version 1 with a grey volume in place of the mask, and a newer version, are refused.
    XTestMemoryStream wrong(kLittleEndian);
    wrong.Write32(0x0001006D);
    wrong.Write32(0x0001006D);
    wrong.WriteObject(X3DRect(2, 1, 1));
    wrong.Write8(1);
    wrong.WriteObject(XMakeVolume<XGrey8Volume>(X3DRect(2, 1, 1), {255, 0}));
    wrong.SeekTo(0);
    EXPECT_EQ(ErrorOf([&] { std::unique_ptr<X3DRegion> r(wrong.ReadObjectAs<X3DRegion>()); }), 1005u);
    XTestMemoryStream newer(std::vector<UInt8>{109, 0, 2, 0, 109, 0, 2, 0}, kLittleEndian);
    EXPECT_EQ(ErrorOf([&] { std::unique_ptr<X3DRegion> r(newer.ReadObjectAs<X3DRegion>()); }), 1015u);
}
