#pragma once
// The colour volume of RGB48 voxels: 16 bits a channel, no alpha.
//
// Stream form: the voxel level of XPackedVolume, then the class word 112. The voxels are
// stored in the stream's byte order and turned over at the first lock when that is not the
// platform's. The legacy image (class word 6) stored red, green and blue as three planes.

#include "XColourVolume.h"

class XRGB48Volume : public XColourVolume<XRGB48Colour>
{
public:
    static constexpr UInt32 kClassID = 112;
    static constexpr UInt16 kComponentMin = 0;
    static constexpr UInt16 kComponentMax = 65535;
    static constexpr UInt32 kComponentCount = 3;

    // An empty volume.
    XRGB48Volume();
    XRGB48Volume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth);
    explicit XRGB48Volume(const X3DRect & aBounds);
    XRGB48Volume(const XRGB48Volume & aVolume) = default;
    explicit XRGB48Volume(XStream & aStream);

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XPackedVolume<XRGB48Colour>::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XRGB48Volume * Clone() const override { return new XRGB48Volume(*this); }
    using XVolume::Clone;
    XVolume * CloneWithoutCopy(const X3DRect & aRect) const override { return NewCloneWithoutCopy(*this, aRect); }
    using XVolume::CloneWithoutCopy;
    bool IsPlaneRendererSupported(const XImageRenderer & aRenderer) const override;
    XString GetDescription() const override { return XString("48-bit Color Image"); }

    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    void ReadStream2_XRGB48Volume(XStream & aStream, XOptions anOptions);
    void WriteStream2_XRGB48Volume(XStream & aStream, XOptions anOptions) const;
    // A legacy image: the word 112 when the stream holds one, a handle object that must be null
    // or a memory handle (and is not used), then the red, green and blue planes as three handles
    // of 16-bit samples.
    void ReadRGB48ImageStream(XStream & aStream);

private:
    // Spreads one plane of samples in the stream's byte order into a channel of every voxel.
    void SpreadChannel(const XMemoryHandle & aPlane, UInt32 aChannel, bool aSwap);
};
