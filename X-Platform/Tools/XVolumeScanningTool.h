#pragma once
// Base of the tools that read a volume, optionally within a region, and gather their results in
// themselves. The dispatch is that of X1ToManyVolumeTool: no BGRA32, XException 2500 for any
// type the tool does not override.

class XVolume;
class X3DRegion;
class XMaskVolume;
class XGrey8Volume;
class XGrey16Volume;
class XARGB32Volume;
class XRGB48Volume;
class XFPVolume;

class XVolumeScanningTool
{
public:
    XVolumeScanningTool() = default;
    XVolumeScanningTool(const XVolumeScanningTool &) = default;
    XVolumeScanningTool & operator=(const XVolumeScanningTool &) = default;
    virtual ~XVolumeScanningTool();

    // A null region means the whole volume.
    virtual void ApplyTool(XVolume & aVolume, const X3DRegion * aRegion);

protected:
    virtual void ApplyToolMask(XMaskVolume & aVolume, const X3DRegion * aRegion);
    virtual void ApplyToolGrey8(XGrey8Volume & aVolume, const X3DRegion * aRegion);
    virtual void ApplyToolGrey16(XGrey16Volume & aVolume, const X3DRegion * aRegion);
    virtual void ApplyToolARGB32(XARGB32Volume & aVolume, const X3DRegion * aRegion);
    virtual void ApplyToolRGB48(XRGB48Volume & aVolume, const X3DRegion * aRegion);
    virtual void ApplyToolFP(XFPVolume & aVolume, const X3DRegion * aRegion);
};
