// The tool frame: the dispatch order of the three families, the refusal with 2500, masks seen as
// Grey8, in-place application with and without a clone, and what a failing tool leaves behind.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "X1To1VolumeTool.h"
#include "X1ToManyVolumeTool.h"
#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XException.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey32Volume.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XTestSupport.h"
#include "XVolumeScanningTool.h"
#include "XVolumeTestSupport.h"

namespace
{
const X3DRect kBox(0, 0, 0, 2, 1, 1);

// Records which typed operation the frame chose; handles everything but the mask itself.
class XRecordingTool : public X1To1VolumeTool
{
public:
    using X1To1VolumeTool::ApplyToolSelf;
    std::string itsCalled;

protected:
    void ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume &) override
    {
        itsCalled += dynamic_cast<const XMaskVolume *>(&aSource) != nullptr ? "grey8(mask) " : "grey8 ";
    }
    void ApplyToolGrey16(const XGrey16Volume &, XGrey16Volume &) override { itsCalled += "grey16 "; }
    void ApplyToolARGB32(const XARGB32Volume &, XARGB32Volume &) override { itsCalled += "argb32 "; }
    void ApplyToolBGRA32(const XBGRA32Volume &, XBGRA32Volume &) override { itsCalled += "bgra32 "; }
    void ApplyToolRGB48(const XRGB48Volume &, XRGB48Volume &) override { itsCalled += "rgb48 "; }
    void ApplyToolFP(const XFPVolume &, XFPVolume &) override { itsCalled += "fp "; }
};

class XNothingTool : public X1To1VolumeTool
{
};

// Writes the destination and then fails; it cannot work in place.
class XFailingTool : public X1To1VolumeTool
{
protected:
    bool CanApplyInPlace() const override { return false; }
    void ApplyToolGrey8(const XGrey8Volume &, XGrey8Volume & aDest) override
    {
        aDest.Fill(99);
        throw XException(kErrBadArgument, "failed on purpose");
    }
};

class XManyTool : public X1ToManyVolumeTool
{
protected:
    XPtrVector<XVolume> ApplyToolGrey8(const XGrey8Volume & aSource) override
    {
        XPtrVector<XVolume> result;
        result.push_back(aSource.Clone());
        result.push_back(aSource.Clone());
        return result;
    }
    XPtrVector<XVolume> ApplyToolARGB32(const XARGB32Volume &) override { return {}; }
};

class XCountingTool : public XVolumeScanningTool
{
public:
    int itsCalls = 0;

protected:
    void ApplyToolARGB32(XARGB32Volume &, const X3DRegion *) override { ++itsCalls; }
    void ApplyToolFP(XFPVolume &, const X3DRegion *) override { ++itsCalls; }
};
} // namespace

TEST(ToolFrame, DispatchesInTheOrderOfTheClasses)
{
    XRecordingTool tool;
    for (XVolume * volume : std::initializer_list<XVolume *>{
             new XMaskVolume(kBox), new XGrey8Volume(kBox), new XGrey16Volume(kBox), new XARGB32Volume(kBox),
             new XBGRA32Volume(kBox), new XRGB48Volume(kBox), new XFPVolume(kBox)})
    {
        delete tool.ApplyTool(*volume);
        delete volume;
    }
    EXPECT_EQ(tool.itsCalled, "grey8(mask) grey8 grey16 argb32 bgra32 rgb48 fp ");
    EXPECT_EQ(ErrorOf([&] { delete tool.ApplyTool(XGrey32Volume(kBox)); }), 2500u);
}

TEST(ToolFrame, UnhandledTypesAreRefused)
{
    XNothingTool tool;
    EXPECT_EQ(ErrorOf([&] { delete tool.ApplyTool(XGrey8Volume(kBox)); }), 2500u);
    EXPECT_EQ(ErrorOf([&] { delete tool.ApplyTool(XMaskVolume(kBox)); }), 2500u);
    XMaskVolume mask(kBox);
    EXPECT_EQ(ErrorOf([&] { tool.ApplyToolInPlace(mask); }), 2500u);

    // The other two families have no BGRA32 entry.
    XManyTool many;
    EXPECT_EQ(many.ApplyTool(XMaskVolume(kBox)).size(), 2u);
    EXPECT_TRUE(many.ApplyTool(XARGB32Volume(kBox)).empty());
    EXPECT_EQ(ErrorOf([&] { many.ApplyTool(XBGRA32Volume(kBox)); }), 2500u);
    EXPECT_EQ(ErrorOf([&] { many.ApplyTool(XFPVolume(kBox)); }), 2500u);
    XCountingTool counting;
    XARGB32Volume argb(kBox);
    XBGRA32Volume bgra(kBox);
    XFPVolume real(kBox);
    counting.ApplyTool(argb, nullptr);
    counting.ApplyTool(real, nullptr);
    EXPECT_EQ(ErrorOf([&] { counting.ApplyTool(bgra, nullptr); }), 2500u);
    EXPECT_EQ(counting.itsCalls, 2);
}

TEST(ToolFrame, InPlaceWithAFailingToolLeavesTheVolume)
{
    auto volume = XMakeVolume<XGrey8Volume>(kBox, {1, 2});
    XFailingTool tool;
    EXPECT_EQ(ErrorOf([&] { tool.ApplyToolInPlace(volume); }), UInt32(kErrBadArgument));
    EXPECT_EQ(XGetVoxels(volume), (std::vector<UInt8>{1, 2}));
    // Source and destination of different classes break the frame's precondition.
    XRecordingTool recording;
    const XGrey8Volume grey(kBox);
    XGrey16Volume wide(kBox);
    EXPECT_EQ(AssertionOf([&] { recording.ApplyToolSelf(grey, wide); }), "typeid(src) == typeid(dest)");
}
