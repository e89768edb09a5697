#pragma once
// A median of medians over lines through each voxel, which keeps thin structures and corners
// better than the median of the cube. With h = size >> 1 (the size is raised to odd), eight
// medians are taken, each over the voxels of its set that lie inside the source:
//   0  the lines along x and y through the voxel (from -h to +h, the voxel itself twice)
//   1  the lines along x and z          2  the lines along y and z
//   3  the lines along x, y and z (the voxel three times)
//   4  the two diagonals of the xy plane through the voxel (the voxel once)
//   5  those of the xz plane            6  those of the yz plane
//   7  the four body diagonals of the cube
// The result is the median of the first seven; the eighth is computed and takes no part, which
// keeps the count odd. Each median is the lower middle value for an even count.
//
// Grey8 (masks too), Grey16, float, ARGB32 and RGB48 volumes; colour volumes are filtered
// channel by channel (red, green, blue), and the alpha of ARGB32 keeps what the destination held
// (zero in a new result). Floats compare as floats. BGRA32 raises XException 2500. The tool does
// not work in place: ApplyToolInPlace filters into a clone.
//
// For size 3, voxels whose whole cube lies inside the source take sorting networks over vectors
// of voxels; the others, and other sizes, quickselect over the gathered sets.

#include "X1To1VolumeTool.h"
#include "XTypes.h"

class XHybridMedianFilterVolumeTool : public X1To1VolumeTool
{
public:
    // An even size is raised by one.
    explicit XHybridMedianFilterVolumeTool(UInt32 aSize);
    XHybridMedianFilterVolumeTool(const XHybridMedianFilterVolumeTool &) = default;
    XHybridMedianFilterVolumeTool & operator=(const XHybridMedianFilterVolumeTool &) = default;
    ~XHybridMedianFilterVolumeTool() override;

    UInt32 GetSize() const { return itsSize; }

protected:
    bool CanApplyInPlace() const override { return false; }
    void ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest) override;
    void ApplyToolGrey16(const XGrey16Volume & aSource, XGrey16Volume & aDest) override;
    void ApplyToolARGB32(const XARGB32Volume & aSource, XARGB32Volume & aDest) override;
    void ApplyToolRGB48(const XRGB48Volume & aSource, XRGB48Volume & aDest) override;
    void ApplyToolFP(const XFPVolume & aSource, XFPVolume & aDest) override;

private:
    UInt32 itsSize;
};
