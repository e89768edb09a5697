// The class table: what every class word is, through the levels of the stream chain, old
// identifiers and inheritance, also for classes that this version does not build yet; which
// classes can be made empty; descriptions; and the creators that old words reach.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "X3DRegion.h"
#include "XARGB32Volume.h"
#include "XClassRegistry.h"
#include "XFPVolume.h"
#include "XGrey8ImageRenderer.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XTestMemoryStream.h"
#include "XTestSupport.h"
#include "XVolumeTestSupport.h"

namespace
{
// A class word with its description (null where the table registers none) and every class word
// that it IsA besides its own, worked out by hand from the tables of registered classes, old
// identifiers and inheritance.
struct XChain
{
    XVersion itsWord;
    const char * itsDescription;
    std::vector<UInt32> itsAncestors;
};

const std::vector<UInt32> kVolume = {520, 101, 48};
const std::vector<UInt32> kPacked = {102, 114, 520, 101, 48};
const std::vector<UInt32> kInteger = {104, 103, 102, 114, 520, 101, 48};
const std::vector<UInt32> kGrey8 = {105, 104, 103, 102, 114, 520, 101, 48};

const std::vector<XChain> kChains = {
    // Look-up tables: 20, the old colour table, is 23 and still inherits from the root.
    {XVersion(23, 1), "XIntToColourLUT", {48}},
    {XVersion(22, 0), "XFloatToColourLUT", {20, 23, 48}},
    {XVersion(21, 0), "XIntToIntLUT", {48}},
    {XVersion(20, 0), "XIntToColourLUT", {23, 48}},
    {XVersion(34, 0), "XRect", {48}},
    {XVersion(50, 0), "XRectF", {48}},
    {XVersion(100, 0), "X3DRect", {48}},
    {XVersion(109, 1), "X3DRegion", {48}},
    // The volume chain. 520 itself has no registered parent; the old 101 is 520 and inherits.
    {XVersion(48, 0), nullptr, {}},
    {XVersion(520, 0), nullptr, {}},
    {XVersion(101, 0), nullptr, {520, 48}},
    {XVersion(114, 0), nullptr, kVolume},
    {XVersion(102, 1), nullptr, {114, 520, 101, 48}},
    {XVersion(103, 0), nullptr, kPacked},
    {XVersion(104, 1), nullptr, {103, 102, 114, 520, 101, 48}},
    {XVersion(105, 1), "256 Grays Image", kInteger},
    {XVersion(106, 0), "16-bit Grayscale Image", kInteger},
    {XVersion(107, 1), "Floating-point Image", {103, 102, 114, 520, 101, 48}},
    {XVersion(108, 1), "Millions of Colors Image", kPacked},
    {XVersion(112, 0), "48-bit Color Image", kPacked},
    {XVersion(113, 0), "Millions of Colors Image", kPacked},
    {XVersion(115, 0), "1-bit Mask Image", kGrey8},
    {XVersion(12101, 1), "256 Grays JPEG Image", kGrey8},
    {XVersion(12100, 1), "Millions of Colors JPEG Image", {108, 102, 114, 520, 101, 48}},
    // Legacy images are their current class and legacy images; 514 is also a legacy colour
    // image, 515 a legacy 8-bit image.
    {XVersion(47, 0), nullptr, {48}},
    {XVersion(5, 0), "1-bit Mask Image", {115, 105, 104, 103, 102, 114, 520, 101, 47, 48}},
    {XVersion(4, 0), "256 Grays Image", {105, 104, 103, 102, 114, 520, 101, 47, 48}},
    {XVersion(3, 0), "16-bit Grayscale Image", {106, 104, 103, 102, 114, 520, 101, 47, 48}},
    {XVersion(2, 0), "Floating-point Image", {107, 103, 102, 114, 520, 101, 47, 48}},
    {XVersion(1, 0), "Millions of Colors Image", {108, 102, 114, 520, 101, 47, 48}},
    {XVersion(514, 0), "Millions of Colors Image", {1, 108, 102, 114, 520, 101, 47, 48}},
    {XVersion(6, 0), "48-bit Color Image", {112, 102, 114, 520, 101, 47, 48}},
    {XVersion(515, 0), nullptr, {4, 105, 104, 103, 102, 114, 520, 101, 47, 48}},
    // Renderers.
    {XVersion(12001, 0), nullptr, {48}},
    {XVersion(12002, 0), nullptr, {12001, 48}},
    {XVersion(12003, 0), nullptr, {12002, 12001, 48}},
    {XVersion(12004, 0), "XMaskImageRenderer", {12005, 12003, 12002, 12001, 48}},
    {XVersion(12005, 0), "XGrey8ImageRenderer", {12003, 12002, 12001, 48}},
    {XVersion(12006, 0), "XGrey16ImageRenderer", {12003, 12002, 12001, 48}},
    {XVersion(12007, 0), "XARGB32ImageRenderer", {12001, 48}},
    {XVersion(12008, 0), "XBGRA32ImageRenderer", {12001, 48}},
    {XVersion(12009, 0), "XRGB48ImageRenderer", {12001, 48}},
    {XVersion(12010, 0), "XFPImageRenderer", {12003, 12002, 12001, 48}},
    // Lines, tracks and ROIs.
    {XVersion(110, 2), "X3DPolyLine", {48}},
    {XVersion(118, 0), "X3DSelectedPoint", {48}},
    {XVersion(119, 0), "X3DPolyLineF", {48}},
    {XVersion(120, 0), "X4DTrack", {119, 48}},
    {XVersion(121, 0), "X3DHierarchicalPolyLine", {48}},
    {XVersion(126, 0), nullptr, {48}},
    {XVersion(127, 0), "XROICollection", {48}},
    {XVersion(128, 0), "XIrregularROI", {126, 48}},
    {XVersion(129, 0), "XPolygonROI", {126, 48}},
    {XVersion(130, 0), "XEllipseROI", {126, 48}},
    {XVersion(131, 0), "XCuboidROI", {126, 48}},
    // Foundation classes and the jobs and bridges built on them.
    {XVersion(802, 0), nullptr, {48}},
    {XVersion(804, 0), nullptr, {802, 48}},
    {XVersion(805, 0), nullptr, {804, 802, 48}},
    {XVersion(1453, 0), nullptr, {48}},
    {XVersion(1462, 0), nullptr, {48}},
    {XVersion(1200, 0), nullptr, {}},
    {XVersion(1202, 0), nullptr, {}},
    {XVersion(1203, 0), nullptr, {}},
    {XVersion(1204, 0), nullptr, {1200}},
    {XVersion(1205, 0), "XNetJobVolumeSharedData", {1203}},
    {XVersion(1206, 0), "XNetJobVolumeResult", {1202}},
    {XVersion(1350, 0), nullptr, {}},
    {XVersion(1351, 0), "WQuickTimeShim::WQTShimControlLPCBridge", {1350}},
    {XVersion(1352, 0), "WQTCompressorLPCBridge", {1350}},
    {XVersion(2000, 0), "XImageRegistrationJob", {1200}},
    {XVersion(2001, 0), "XImageRegistrationJobResult", {1202}},
    {XVersion(2002, 0), "XImageRegistrationJobSharedData", {1203}},
};

// Classes of the table that this version does not build: they make no object.
const UInt32 kNotBuilt[] = {110, 118, 119, 120, 121, 127, 128, 129, 130, 131, 1205, 1206, 1351, 1352, 2000, 2001, 2002};
} // namespace

TEST(Registration, EveryClassWordIsExactlyWhatTheTablesMakeIt)
{
    for (const XChain & chain : kChains)
    {
        if (chain.itsDescription != nullptr)
        {
            EXPECT_EQ(XClassRegistry::GetDescription(chain.itsWord), XString(chain.itsDescription))
                << chain.itsWord.GetWord();
        }
        // Against every class word of the table, versions included: IsA compares classes only.
        for (const XChain & other : kChains)
        {
            const UInt32 base = other.itsWord.GetClass();
            const bool expected = base == chain.itsWord.GetClass() ||
                                  std::find(chain.itsAncestors.begin(), chain.itsAncestors.end(), base) !=
                                      chain.itsAncestors.end();
            EXPECT_EQ(chain.itsWord.IsA(other.itsWord), expected)
                << chain.itsWord.GetWord() << " IsA " << other.itsWord.GetWord();
        }
    }
}

TEST(Registration, ClassesNotBuiltYetMakeNoObject)
{
    for (UInt32 word : kNotBuilt)
    {
        EXPECT_EQ(ErrorOf([&] { delete XClassRegistry::CreateObject(XVersion(word)); }), UInt32(kErrUnknownClass))
            << word;
        XTestMemoryStream stream(kLittleEndian);
        stream.Write32(word);
        stream.Write32(word);
        stream.SeekTo(0);
        EXPECT_EQ(ErrorOf([&] { delete stream.ReadStorable(); }), UInt32(kErrUnknownClass)) << word;
    }
}

TEST(Registration, DefaultCreatorsMakeEmptyObjects)
{
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
