#pragma once
// Inverts voxels against a maximum: maximum - voxel, wrapping in the voxel's own bits (8 for
// Grey8, masks and the channels of ARGB32; 16 for Grey16 and the channels of RGB48). Alpha
// stays. BGRA32 and float volumes are refused with XException 2500.
//
// The maximum starts as NaN; the first volume inverted sets it to its type's largest value
// (255 or 65535), and it then stays in the tool: a tool used on an 8-bit volume goes on using
// 255 for a 16-bit one. SetMaxVoxelValue chooses it; an infinite maximum, or one beyond 64 bits,
// is an internal error when the tool runs.

#include <limits>

#include "X1To1VolumeTool.h"
#include "XARGB32Colour.h"
#include "XRGB48Colour.h"
#include "XTypes.h"

class XInvertVolumeTool : public X1To1VolumeTool
{
public:
    // Inverts one voxel of type T against a maximum, under XScanVolume.
    template <typename T>
    class XInvertHelper
    {
    public:
        explicit XInvertHelper(UInt32 aMaximum) : itsMaximum(aMaximum) {}
        void SetupForScan(XVolume &) {}
        void ScanPixel(T * aVoxel, XVolume &, SInt32, SInt32, SInt32);
        void FinishedScanning(XVolume &) {}

    private:
        UInt32 itsMaximum;
    };
    using XInvertHelperGrey8 = XInvertHelper<UInt8>;
    using XInvertHelperGrey16 = XInvertHelper<UInt16>;
    using XInvertHelperARGB32 = XInvertHelper<XARGB32Colour>;
    using XInvertHelperRGB48 = XInvertHelper<XRGB48Colour>;

    void SetMaxVoxelValue(double aValue) { itsMaxVoxelValue = aValue; }
    double GetMaxVoxelValue() const { return itsMaxVoxelValue; }

protected:
    void ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest) override;
    void ApplyToolGrey16(const XGrey16Volume & aSource, XGrey16Volume & aDest) override;
    void ApplyToolARGB32(const XARGB32Volume & aSource, XARGB32Volume & aDest) override;
    void ApplyToolRGB48(const XRGB48Volume & aSource, XRGB48Volume & aDest) override;

private:
    // Copies the source into the destination when they are two volumes, fixes the maximum at
    // aTypeMaximum if it is not set, and inverts every voxel of the destination.
    template <typename Volume>
    void Invert(const Volume & aSource, Volume & aDest, double aTypeMaximum);

    double itsMaxVoxelValue = std::numeric_limits<double>::quiet_NaN();
};
