#pragma once
// A table from an integer index to an 8-bit value.
//
// Its Blend differs from that of other tables: with d = (c1 - c0) modulo 256, entry
// aFirst + k becomes (c0 + (k * d) / n) modulo 256 in unsigned arithmetic, so an ascending
// ramp comes out right and a descending one keeps its end point but wraps in between.
//
// Stream form (class 21, version 0): the class word, the entry count (32 bits) and the entries
// as a memory-handle object.

#include "XLUT.h"
#include "XStorable.h"

class XIntToIntLUT : public XLUT<UInt8>, public XStorable
{
public:
    static constexpr UInt32 kClassID = 21;

    explicit XIntToIntLUT(UInt32 aSize = 0) : XLUT<UInt8>(aSize) {}
    explicit XIntToIntLUT(XStream & aStream);
    XIntToIntLUT(const XIntToIntLUT &) = default;
    XIntToIntLUT & operator=(const XIntToIntLUT &) = default;

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XVersion(48); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XIntToIntLUT * Clone() const override { return new XIntToIntLUT(*this); }
    UInt64 GetStreamUsage() const override { return GetDataSize(); }
    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

    // The ramp 0 to 255 over entries 0 to 2^depth - 1 of a table of 256 entries up to depth 8,
    // else of 65,536; entries above stay 0. Depths 1 to 16. Kept until DisposeStandardLUTs.
    static const XIntToIntLUT & GetStandardLUT(UInt32 aBitDepth);
    static void DisposeStandardLUTs();

    void Blend(UInt32 aFirst, UInt32 aLast) override;

protected:
    void ReadStream2_XIntToIntLUT(XStream & aStream, XOptions anOptions);
    void WriteStream2_XIntToIntLUT(XStream & aStream, XOptions anOptions) const;

private:
    void ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions);
    void WriteStreamSelf(XStream & aStream, XOptions anOptions) const;

    static XIntToIntLUT * sStandardLUTs[16];
};
