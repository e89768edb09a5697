#include "XRectF.h"

#include <cmath>

#include "X3DRect.h"
#include "XStream.h"

namespace
{
float RoundHalfUp(float aValue)
{
    return float(std::floor(double(aValue) + 0.5));
}
} // namespace

XRectF::XRectF(const XIntegerRect & aRect)
    : XBase(float(aRect.GetLeft()), float(aRect.GetTop()), float(aRect.GetRight()), float(aRect.GetBottom()))
{
}

XRectF::XRectF(const X3DRect & aBox)
    : XBase(float(aBox.GetLeft()), float(aBox.GetTop()), float(aBox.GetRight()), float(aBox.GetBottom()))
{
}

XRectF::XRectF(XStream & aStream)
{
    XVersion word = ReadClassVersion(aStream, GetClassVersion());
    CheckClassVersion(word, GetClassVersion());
    ReadStreamSelf(aStream, word, kNormal);
}

XRectF & XRectF::Round()
{
    SetSize(RoundHalfUp(itsLeft), RoundHalfUp(itsTop), RoundHalfUp(itsRight), RoundHalfUp(itsBottom));
    return *this;
}

XRectF & XRectF::RoundIn()
{
    SetSize(std::ceil(itsLeft), std::ceil(itsTop), std::floor(itsRight), std::floor(itsBottom));
    return *this;
}

XRectF & XRectF::RoundOut()
{
    SetSize(std::floor(itsLeft), std::floor(itsTop), std::ceil(itsRight), std::ceil(itsBottom));
    return *this;
}

void XRectF::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XRectF(aStream, anOptions);
}

void XRectF::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XRectF(aStream, anOptions);
}

void XRectF::ReadStream2_XRectF(XStream & aStream, XOptions anOptions)
{
    XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, anOptions);
}

void XRectF::WriteStream2_XRectF(XStream & aStream, XOptions anOptions) const
{
    aStream.WriteVersion(GetClassVersion());
    WriteStreamSelf(aStream, anOptions);
}

void XRectF::ReadStreamSelf(XStream & aStream, const XVersion &, XOptions)
{
    itsLeft = aStream.ReadFloat32S();
    itsTop = aStream.ReadFloat32S();
    itsBottom = aStream.ReadFloat32S();
    itsRight = aStream.ReadFloat32S();
}

void XRectF::WriteStreamSelf(XStream & aStream, XOptions) const
{
    aStream.WriteFloat32S(itsLeft);
    aStream.WriteFloat32S(itsTop);
    aStream.WriteFloat32S(itsBottom);
    aStream.WriteFloat32S(itsRight);
}
