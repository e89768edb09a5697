#pragma once
// The 16-bit grey volume. Its default renderer has white point 65535.
//
// Stream form: the levels of XIntegerVolume, then the class word 106. The voxels are stored in
// the stream's byte order and turned over at the first lock when that is not the platform's.
// A table that the stream carried gives the renderer its settings.

#include "XIntegerVolume.h"

class XGrey16Volume : public XIntegerVolume<UInt16>
{
public:
    static constexpr UInt32 kClassID = 106;
    static constexpr UInt16 kComponentMin = 0;
    static constexpr UInt16 kComponentMax = 65535;
    static constexpr UInt32 kComponentCount = 1;

    // An empty volume.
    XGrey16Volume();
    XGrey16Volume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth);
    explicit XGrey16Volume(const X3DRect & aBounds);
    XGrey16Volume(const XGrey16Volume & aVolume) = default;
    explicit XGrey16Volume(XStream & aStream);

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XIntegerVolume<UInt16>::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XGrey16Volume * Clone() const override { return new XGrey16Volume(*this); }
    using XVolume::Clone;
    XVolume * CloneWithoutCopy(const X3DRect & aRect) const override { return NewCloneWithoutCopy(*this, aRect); }
    using XVolume::CloneWithoutCopy;
    bool IsPlaneRendererSupported(const XImageRenderer & aRenderer) const override;
    XString GetDescription() const override { return XString("16-bit Grayscale Image"); }

    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    void ReadStream2_XGrey16Volume(XStream & aStream, XOptions anOptions);
    void WriteStream2_XGrey16Volume(XStream & aStream, XOptions anOptions) const;

private:
    // The voxels turn over at the first lock when the stream's order is not the platform's.
    void SwapOnLockFor(const XStream & aStream);
};
