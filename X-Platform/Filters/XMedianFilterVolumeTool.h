#pragma once
// The median of a cube of size voxels around each voxel: offsets from -(size >> 1) to
// size - 1 - (size >> 1) on each axis, so an even size reaches one voxel further on the low
// side. Only the voxels inside the source count: at edges and corners the median is taken over
// fewer values (no padding is invented), and for an even count it is the lower of the two middle
// values. The cube is always 3-D: on a volume of one plane the filter is 2-D of itself.
//
// Grey8 (masks too), Grey16, float, ARGB32 and RGB48 volumes; colour volumes are filtered
// channel by channel (red, green, blue), and the alpha of ARGB32 keeps what the destination held
// (zero in a new result). Floats compare as floats; a NaN has no defined place. BGRA32 raises
// XException 2500. The tool does not work in place: ApplyToolInPlace filters into a clone.
//
// How the median is found is chosen by the size and the type, the result being the same: for
// size 3, sorting networks over vectors of voxels (the 27 values of a cube take 226 minimum and
// maximum operations, 16 or 32 voxels at a time); for other sizes of 8 and 16-bit channels, a
// histogram that slides along the row (each step trades one column of size * size values);
// otherwise quickselect over the gathered values. On 256 x 256 x 64 voxels of 16 bits
// (bench_filters) size 3 takes 19 ms against 1.3 s by quickselect, size 5 0.37 s against 5.3 s.

#include "X1To1VolumeTool.h"
#include "XTypes.h"

class XMedianFilterVolumeTool : public X1To1VolumeTool
{
public:
    // A size of 0 is a broken precondition when the tool is applied.
    explicit XMedianFilterVolumeTool(UInt32 aSize);
    XMedianFilterVolumeTool(const XMedianFilterVolumeTool &) = default;
    XMedianFilterVolumeTool & operator=(const XMedianFilterVolumeTool &) = default;
    ~XMedianFilterVolumeTool() override;

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
