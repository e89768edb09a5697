#pragma once
// The 32-bit grey volume: a working volume without display, so without a renderer. It takes
// part in no conversion between voxel types; copies into a volume of its own class work.
//
// Stream form: the levels of XIntegerVolume and no word of its own; its class word 111 is not
// in the class registry, so it is written and read by callers that know it.

#include "XIntegerVolume.h"

class XGrey32Volume : public XIntegerVolume<UInt32>
{
public:
    static constexpr UInt32 kClassID = 111;
    static constexpr UInt32 kComponentMin = 0;
    static constexpr UInt32 kComponentMax = 4294967295u;
    static constexpr UInt32 kComponentCount = 1;

    // An empty volume.
    XGrey32Volume() : XIntegerVolume<UInt32>(X3DRect()) {}
    XGrey32Volume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth) : XIntegerVolume<UInt32>(aWidth, aHeight, aDepth) {}
    explicit XGrey32Volume(const X3DRect & aBounds) : XIntegerVolume<UInt32>(aBounds) {}
    XGrey32Volume(const XGrey32Volume & aVolume) = default;
    explicit XGrey32Volume(XStream & aStream) : XIntegerVolume<UInt32>(aStream) {}

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XIntegerVolume<UInt32>::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XGrey32Volume * Clone() const override { return new XGrey32Volume(*this); }
    using XVolume::Clone;
    XVolume * CloneWithoutCopy(const X3DRect & aRect) const override { return NewCloneWithoutCopy(*this, aRect); }
    using XVolume::CloneWithoutCopy;
    XString GetDescription() const override { return XString("32-bit Grayscale Image"); }
};
