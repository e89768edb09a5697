#pragma once
// Paints a colour into the voxels of a rectangle or a region, converting the colour to what the
// voxel type holds:
//     mask, Grey8   (red + green + blue) / 3
//     Grey16        that average * 257 (the byte in both halves)
//     ARGB32        the colour as it is; BGRA32 the same channels in its order
//     RGB48         each channel * 257
//     float         the average * (max - min) / 255 + min, with the input range of the
//                   volume's renderer in single precision, where the renderer shows that grey
// Alpha is kept only by the two 32-bit colour types. Other types raise XException 2500. A masked
// region paints the voxels that it holds.

#include "XARGB32Colour.h"

class XVolume;
class X3DRegion;
class X3DRect;

class XPaintVolumeTool
{
public:
    XPaintVolumeTool() = default;
    XPaintVolumeTool(const XPaintVolumeTool &) = default;
    XPaintVolumeTool & operator=(const XPaintVolumeTool &) = default;
    virtual ~XPaintVolumeTool();

    // FillRegion with the region of the rectangle.
    virtual void FillRect(XVolume & aVolume, const X3DRect & aRect, const XARGB32Colour & aColour);
    virtual void FillRegion(XVolume & aVolume, const X3DRegion & aRegion, const XARGB32Colour & aColour);

    // Stores one value in every voxel it is handed, under XScanVolume.
    template <typename Voxel>
    class XFillHelper
    {
    public:
        explicit XFillHelper(const Voxel & aValue) : itsValue(aValue) {}
        void SetupForScan(XVolume &) {}
        void ScanPixel(Voxel * aVoxel, XVolume &, SInt32, SInt32, SInt32) { *aVoxel = itsValue; }
        void ScanRow(Voxel * aRow, XVolume &, SInt32, UInt32 aCount, SInt32, SInt32, const UInt8 * aMask)
        {
            // The value in a local: byte stores could otherwise alias the member.
            const Voxel value = itsValue;
            if (aMask == nullptr)
                for (UInt32 i = 0; i < aCount; ++i)
                    aRow[i] = value;
            else
                for (UInt32 i = 0; i < aCount; ++i)
                    aRow[i] = aMask[i] > 127 ? value : aRow[i];
        }
        void FinishedScanning(XVolume &) {}

    private:
        Voxel itsValue;
    };
};
