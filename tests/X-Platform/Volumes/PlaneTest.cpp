// Planes out of and into volumes whose origin is not zero: the boxes that keep coordinates, the
// voxel order of XZ and YZ planes, the swapped calibrations, square-pixel scaling, the plane
// lists that all run over the depth, and the assertions on plane numbers and sizes.

#include <gtest/gtest.h>

#include <memory>

#include "XGrey16Volume.h"
#include "XGrey8Volume.h"
#include "XInternalError.h"
#include "XTestSupport.h"
#include "XVolumeTestSupport.h"

namespace
{
// 3 by 2 by 2 at (10, 20, 30); the voxel at (x, y, z) relative to the origin is 100z + 10y + x.
XGrey8Volume MakeCube()
{
    XGrey8Volume volume(X3DRect(10, 20, 30, 13, 22, 32));
    std::vector<UInt8> voxels;
    for (int z = 0; z < 2; ++z)
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x)
                voxels.push_back(UInt8(100 * z + 10 * y + x));
    XSetVoxels(volume, voxels);
    volume.SetXCalibration(1.0);
    volume.SetYCalibration(2.0);
    volume.SetZCalibration(3.0);
    return volume;
}

const XGrey8Volume & AsGrey8(const std::unique_ptr<XVolume> & aVolume)
{
    return dynamic_cast<const XGrey8Volume &>(*aVolume);
}

void ExpectCalibrations(const XVolume & aVolume, double anX, double aY, double aZ)
{
    EXPECT_EQ(aVolume.GetXCalibration(), anX);
    EXPECT_EQ(aVolume.GetYCalibration(), aY);
    EXPECT_EQ(aVolume.GetZCalibration(), aZ);
}
} // namespace

TEST(PlaneOut, BoxesKeepCoordinatesAndCalibrationsFollowTheAxes)
{
    const XGrey8Volume cube = MakeCube();
    std::unique_ptr<XVolume> xy(cube.XYPlaneToVolume(1, false));
    EXPECT_EQ(xy->GetBounds(), X3DRect(10, 20, 31, 13, 22, 32));
    EXPECT_EQ(XGetVoxels(AsGrey8(xy)), (std::vector<UInt8>{100, 101, 102, 110, 111, 112}));
    ExpectCalibrations(*xy, 1.0, 2.0, 3.0);

    // x across, z down; front at top + plane.
    std::unique_ptr<XVolume> xz(cube.XZPlaneToVolume(1, false));
    EXPECT_EQ(xz->GetBounds(), X3DRect(10, 30, 21, 13, 32, 22));
    EXPECT_EQ(XGetVoxels(AsGrey8(xz)), (std::vector<UInt8>{10, 11, 12, 110, 111, 112}));
    ExpectCalibrations(*xz, 1.0, 3.0, 2.0);

    // z across, y down; front at left + plane.
    std::unique_ptr<XVolume> yz(cube.YZPlaneToVolume(2, false));
    EXPECT_EQ(yz->GetBounds(), X3DRect(30, 20, 12, 32, 22, 13));
    EXPECT_EQ(XGetVoxels(AsGrey8(yz)), (std::vector<UInt8>{2, 102, 12, 112}));
    ExpectCalibrations(*yz, 3.0, 2.0, 1.0);

    // A volume of depth 1 gives a clone.
    std::unique_ptr<XVolume> again(xy->XYPlaneToVolume(0, false));
    EXPECT_EQ(again->GetBounds(), xy->GetBounds());
    EXPECT_EQ(XGetVoxels(AsGrey8(again)), XGetVoxels(AsGrey8(xy)));
}

TEST(PlaneOut, ScaledPlanesHaveSquarePixelsAndOriginZero)
{
    const XGrey8Volume cube = MakeCube();
    // XY: y scale 2, so 3 by 4, rows taken by nearest-lower lookup.
    std::unique_ptr<XVolume> xy(cube.XYPlaneToVolume(0, true));
    EXPECT_EQ(xy->GetBounds(), X3DRect(3, 4, 1));
    EXPECT_EQ(XGetVoxels(AsGrey8(xy)), (std::vector<UInt8>{0, 1, 2, 0, 1, 2, 10, 11, 12, 10, 11, 12}));
    // XZ: z scale 3, so 3 by 6.
    std::unique_ptr<XVolume> xz(cube.XZPlaneToVolume(0, true));
    EXPECT_EQ(xz->GetBounds(), X3DRect(3, 6, 1));
    // YZ: z scale 3 across the depth, y scale 2 down: 6 by 4.
    std::unique_ptr<XVolume> yz(cube.YZPlaneToVolume(0, true));
    EXPECT_EQ(yz->GetBounds(), X3DRect(6, 4, 1));
    // Scales of exactly 1 return the plane itself, keeping its coordinates.
    XGrey8Volume plain(X3DRect(1, 1, 1, 3, 3, 3));
    std::unique_ptr<XVolume> same(plain.XYPlaneToVolume(1, true));
    EXPECT_EQ(same->GetBounds(), X3DRect(1, 1, 2, 3, 3, 3));
}

TEST(PlaneOut, PlaneListsRunOverTheDepth)
{
    XGrey8Volume volume(X3DRect(4, 10, 3));
    EXPECT_EQ(volume.XZPlanesToVolumeList(false).size(), 3u);
    EXPECT_EQ(volume.XYPlanesToVolumeList(false).size(), 3u);
    EXPECT_EQ(volume.YZPlanesToVolumeList(false).size(), 3u);
    EXPECT_TRUE(XGrey8Volume(X3DRect(4, 10, 0)).XYPlanesToVolumeList(false).empty());
}

TEST(PlaneOut, PlaneNumbersOutsideTheVolumeAreBrokenPreconditions)
{
    const XGrey8Volume cube = MakeCube();
    EXPECT_EQ(AssertionOf([&] { delete cube.XYPlaneToVolume(2, false); }), "plane < SInt32(GetDepth())");
    EXPECT_THROW(delete cube.XZPlaneToVolume(2, false), XInternalError);
    EXPECT_THROW(delete cube.YZPlaneToVolume(3, false), XInternalError);
}

TEST(PlaneIn, WritesConvertedPlanesIntoPlace)
{
    XGrey16Volume target(X3DRect(10, 20, 30, 13, 22, 32));
    const XGrey8Volume cube = MakeCube();
    // Plane 1 of the cube (z 31) into XY plane 0 of the target.
    target.VolumeToXYPlane(cube, 1, 0);
    // An XZ plane: width 3, height = the target's depth 2; into y = 21.
    const auto xz = XMakeVolume<XGrey8Volume>(X3DRect(3, 2, 1), {1, 2, 3, 4, 5, 6});
    target.VolumeToXZPlane(xz, 0, 1);
    // A YZ plane: width = depth 2, height 2; into x = 12.
    const auto yz = XMakeVolume<XGrey8Volume>(X3DRect(0, 0, 5, 2, 2, 6), {7, 8, 9, 10});
    target.VolumeToYZPlane(yz, 0, 2);
    EXPECT_EQ(XGetVoxels(target), (std::vector<UInt16>{100 * 257, 101 * 257, 7 * 257, 1 * 257, 2 * 257, 9 * 257,
                                                       0, 0, 8 * 257, 4 * 257, 5 * 257, 10 * 257}));
    EXPECT_EQ(AssertionOf([&] { target.VolumeToXZPlane(yz, 0, 0); }), "srcVolume.GetWidth() == GetWidth()");
    EXPECT_THROW(target.VolumeToXYPlane(cube, 0, 2), XInternalError);
}
