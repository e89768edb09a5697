#pragma once
// The 8-bit grey volume, the type that applications mostly make. Its default renderer is a grey
// ramp with white point 255.
//
// Stream form: the levels of XIntegerVolume, then the class word 65641 (105, version 1). The
// JPEG-compressed form has the class word 12101 and no level words.

#include "XIntegerVolume.h"

class XGrey8Volume : public XIntegerVolume<UInt8>
{
public:
    static constexpr UInt32 kClassID = 105;
    static constexpr UInt8 kComponentMin = 0;
    static constexpr UInt8 kComponentMax = 255;
    static constexpr UInt32 kComponentCount = 1;

    // An empty volume.
    XGrey8Volume();
    XGrey8Volume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth);
    explicit XGrey8Volume(const X3DRect & aBounds);
    XGrey8Volume(const XGrey8Volume & aVolume) = default;
    // With aSkipVoxels the voxels of a JPEG-compressed form are stepped over, not decoded. A
    // table that the stream carried gives the renderer its settings.
    explicit XGrey8Volume(XStream & aStream, bool aSkipVoxels = false);

    static XVersion GetClassVersion() { return XVersion(kClassID, 1); }
    static XVersion GetSuperClassVersion() { return XIntegerVolume<UInt8>::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XGrey8Volume * Clone() const override { return new XGrey8Volume(*this); }
    using XVolume::Clone;
    XVolume * CloneWithoutCopy(const X3DRect & aRect) const override { return NewCloneWithoutCopy(*this, aRect); }
    using XVolume::CloneWithoutCopy;
    bool IsPlaneRendererSupported(const XImageRenderer & aRenderer) const override;
    XString GetDescription() const override { return XString("256 Grays Image"); }

    // Also applies a table that the stream carried to the renderer.
    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;
    // Reads a JPEG-compressed form, which it takes under the colour word 12100 only: its own
    // word 12101 answers true, and such a stream is read by the stream constructor. With
    // kSkipData the JPEG body is stepped over and the voxels are left zero. False when the form
    // was read.
    bool PreReadStream(XStream & aStream, const XVersion & aVersion, XOptions anOptions) override;

protected:
    // The stream constructor, with the renderer left to a subclass when not aMakeRenderer.
    XGrey8Volume(XStream & aStream, bool aSkipVoxels, bool aMakeRenderer);
    void ReadStream2_XGrey8Volume(XStream & aStream, XOptions anOptions);
    void WriteStream2_XGrey8Volume(XStream & aStream, XOptions anOptions) const;
};
