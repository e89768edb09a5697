#pragma once
// The integer 2-D rectangle of the library, storable.
//
// Stream form (class 34, version 0): the class word, then four signed 32-bit values in the
// order left, top, bottom, right.

#include "XPoint.h"
#include "XPointT.h"
#include "XRectT.h"
#include "XStorable.h"
#include "XTypes.h"

class X3DRect;
class XStream;

class XRect : public XStorable, public XRectT<SInt32, UInt32, SInt64>
{
public:
    using XBase = XRectT<SInt32, UInt32, SInt64>;
    using XFloatRect = XRectT<float, float, float>;
    static constexpr UInt32 kClassID = 34;

    XRect() = default;
    XRect(SInt32 inLeft, SInt32 inTop, SInt32 inRight, SInt32 inBottom) : XBase(inLeft, inTop, inRight, inBottom) {}
    XRect(const XPointT<SInt32> & aTopLeft, const XPointT<SInt32> & aBotRight) : XBase(aTopLeft, aBotRight) {}
    XRect(const XBase & aRect) : XBase(aRect) {}
    // Each edge rounded with floor(v + 0.5), then normalised.
    explicit XRect(const XFloatRect & aRect);
    // The x-y bounds of the box.
    explicit XRect(const X3DRect & aBox);
    // Reads the class word and the fields: XException 1005 for another class, 1015 for a newer
    // version.
    explicit XRect(XStream & aStream);

    // Exact conversion of each edge to float.
    operator XFloatRect() const;

    using XBase::Contains;
    // The point is truncated toward zero first; a coordinate that is NaN or beyond the 32-bit
    // range is an internal error.
    bool Contains(const XPointT<float> & aPoint) const;

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XVersion(48); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XRect * Clone() const override { return new XRect(*this); }
    UInt64 GetStreamUsage() const override { return 16; }
    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    void ReadStream2_XRect(XStream & aStream, XOptions anOptions);
    void WriteStream2_XRect(XStream & aStream, XOptions anOptions) const;

private:
    void ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions);
    void WriteStreamSelf(XStream & aStream, XOptions anOptions) const;
};
