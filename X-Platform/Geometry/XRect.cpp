#include "XRect.h"

#include "X3DRect.h"
#include "XCheckedArithmetic.h"
#include "XGeometryRounding.h"
#include "XStream.h"

XRect::XRect(const XFloatRect & aRect)
    : XBase(XRoundHalfUp(aRect.GetLeft()), XRoundHalfUp(aRect.GetTop()), XRoundHalfUp(aRect.GetRight()),
            XRoundHalfUp(aRect.GetBottom()))
{
}

XRect::XRect(const X3DRect & aBox) : XBase(aBox.GetLeft(), aBox.GetTop(), aBox.GetRight(), aBox.GetBottom())
{
}

XRect::XRect(XStream & aStream)
{
    XVersion word = ReadClassVersion(aStream, GetClassVersion());
    CheckClassVersion(word, GetClassVersion());
    ReadStreamSelf(aStream, word, kNormal);
}

XRect::operator XFloatRect() const
{
    return XFloatRect(float(itsLeft), float(itsTop), float(itsRight), float(itsBottom));
}

bool XRect::Contains(const XPointT<float> & aPoint) const
{
    return Contains(XCheckedTruncate<SInt32>(aPoint.x), XCheckedTruncate<SInt32>(aPoint.y));
}

void XRect::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XRect(aStream, anOptions);
}

void XRect::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XRect(aStream, anOptions);
}

void XRect::ReadStream2_XRect(XStream & aStream, XOptions anOptions)
{
    XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, anOptions);
}

void XRect::WriteStream2_XRect(XStream & aStream, XOptions anOptions) const
{
    aStream.WriteVersion(GetClassVersion());
    WriteStreamSelf(aStream, anOptions);
}

void XRect::ReadStreamSelf(XStream & aStream, const XVersion &, XOptions)
{
    itsLeft = SInt32(aStream.Read32());
    itsTop = SInt32(aStream.Read32());
    itsBottom = SInt32(aStream.Read32());
    itsRight = SInt32(aStream.Read32());
}

void XRect::WriteStreamSelf(XStream & aStream, XOptions) const
{
    aStream.Write32(UInt32(itsLeft));
    aStream.Write32(UInt32(itsTop));
    aStream.Write32(UInt32(itsBottom));
    aStream.Write32(UInt32(itsRight));
}
