// The class table: what a class word is, through inheritance and old identifiers; which classes
// can be made empty; descriptions; and the creators that old words reach.

#include <gtest/gtest.h>

#include <memory>

#include "X3DRegion.h"
#include "XARGB32Volume.h"
#include "XClassRegistry.h"
#include "XFPVolume.h"
#include "XGrey8ImageRenderer.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XTestSupport.h"
#include "XVolumeTestSupport.h"

TEST(Registration, WordsAreWhatTheirChainsMakeThem)
{
    const XVersion grey8(65641);
    for (UInt32 base : {105u, 104u, 103u, 102u, 114u, 101u, 520u, 48u})
        EXPECT_TRUE(grey8.IsA(XVersion(base))) << base;
    EXPECT_FALSE(grey8.IsA(XVersion(115)));
    EXPECT_TRUE(XVersion(115).IsA(XVersion(105)));
    EXPECT_TRUE(XVersion(107).IsA(XVersion(103)));
    EXPECT_FALSE(XVersion(107).IsA(XVersion(104)));
    EXPECT_TRUE(XVersion(113).IsA(XVersion(102)));
    EXPECT_FALSE(XVersion(113).IsA(XVersion(103)));
    // Old identifiers: legacy images are what their current class is, and legacy images too.
    EXPECT_TRUE(XVersion(4).IsA(XVersion(105)));
    EXPECT_TRUE(XVersion(4).IsA(XVersion(47)));
    EXPECT_TRUE(XVersion(514).IsA(XVersion(1)));
    EXPECT_TRUE(XVersion(514).IsA(XVersion(108)));
    EXPECT_TRUE(XVersion(101).IsA(XVersion(520)));
    EXPECT_TRUE(XVersion(12004).IsA(XVersion(12001)));
    EXPECT_TRUE(XVersion(12101).IsA(XVersion(105)));
}

TEST(Registration, DescriptionsAndEmptyObjects)
{
    EXPECT_EQ(XClassRegistry::GetDescription(XVersion(105)), XString("256 Grays Image"));
    EXPECT_EQ(XClassRegistry::GetDescription(XVersion(115)), XString("1-bit Mask Image"));
    EXPECT_EQ(XClassRegistry::GetDescription(XVersion(1)), XString("Millions of Colors Image"));
    EXPECT_EQ(XClassRegistry::GetDescription(XVersion(12101)), XString("256 Grays JPEG Image"));
    EXPECT_EQ(XClassRegistry::GetDescription(XVersion(12005)), XString("XGrey8ImageRenderer"));
    std::unique_ptr<XStorable> mask(XClassRegistry::CreateObject(XVersion(115)));
    EXPECT_NE(dynamic_cast<XMaskVolume *>(mask.get()), nullptr);
    std::unique_ptr<XStorable> old(XClassRegistry::CreateObject(XVersion(6)));
    EXPECT_NE(dynamic_cast<XRGB48Volume *>(old.get()), nullptr);
    std::unique_ptr<XStorable> region(XClassRegistry::CreateObject(XVersion(109)));
    EXPECT_NE(dynamic_cast<X3DRegion *>(region.get()), nullptr);
    // Renderers and the 32-bit grey volume have no default creator.
    EXPECT_EQ(ErrorOf([] { delete XClassRegistry::CreateObject(XVersion(12005)); }), UInt32(kErrUnknownClass));
    EXPECT_EQ(ErrorOf([] { delete XClassRegistry::CreateObject(XVersion(111)); }), UInt32(kErrUnknownClass));
}
