#pragma once
// The floating-point 2-D rectangle of the library, storable.
//
// Stream form (class 50, version 0): the class word, then four 32-bit floats in the order left,
// top, bottom, right.

#include "XPointF.h"
#include "XPointT.h"
#include "XRectT.h"
#include "XStorable.h"
#include "XTypes.h"

class X3DRect;
class XStream;

class XRectF : public XStorable, public XRectT<float, float, float>
{
public:
    using XBase = XRectT<float, float, float>;
    using XIntegerRect = XRectT<SInt32, UInt32, SInt64>;
    static constexpr UInt32 kClassID = 50;

    XRectF() = default;
    XRectF(float inLeft, float inTop, float inRight, float inBottom) : XBase(inLeft, inTop, inRight, inBottom) {}
    XRectF(const XPointT<float> & aTopLeft, const XPointT<float> & aBotRight) : XBase(aTopLeft, aBotRight) {}
    XRectF(const XBase & aRect) : XBase(aRect) {}
    // Exact conversion of each edge to float.
    explicit XRectF(const XIntegerRect & aRect);
    // The x-y bounds of the box.
    explicit XRectF(const X3DRect & aBox);
    // Reads the class word and the fields: XException 1005 for another class, 1015 for a newer
    // version.
    explicit XRectF(XStream & aStream);

    // Each edge to floor(v + 0.5); in place, and the rectangle is returned.
    XRectF & Round();
    // Ceiling of left and top, floor of right and bottom: the integer rectangle inside.
    XRectF & RoundIn();
    // Floor of left and top, ceiling of right and bottom: the integer rectangle around.
    XRectF & RoundOut();

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XVersion(48); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XRectF * Clone() const override { return new XRectF(*this); }
    UInt64 GetStreamUsage() const override { return 16; }
    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    void ReadStream2_XRectF(XStream & aStream, XOptions anOptions);
    void WriteStream2_XRectF(XStream & aStream, XOptions anOptions) const;

private:
    void ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions);
    void WriteStreamSelf(XStream & aStream, XOptions anOptions) const;
};
