#include "XFloatToColourLUT.h"

#include <cmath>

#include "XAssert.h"
#include "XStream.h"

XFloatToColourLUT::XFloatToColourLUT(double aMin, double aMax)
    : XIntToColourLUT(GetStandardLUT(8)), itsMin(aMin), itsMax(aMax)
{
    UpdateScale();
}

XFloatToColourLUT::XFloatToColourLUT(XStream & aStream) : XIntToColourLUT(aStream), itsMin(0.0), itsMax(1.0)
{
    const XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, kNormal);
}

XFloatToColourLUT::XFloatToColourLUT(const XFloatToColourLUT & anOther)
    : XIntToColourLUT(anOther), itsMin(anOther.itsMin), itsMax(anOther.itsMax), itsScale(anOther.itsScale),
      itsStep(anOther.itsStep)
{
}

XFloatToColourLUT::XFloatToColourLUT(const XIntToColourLUT & anOther)
    : XIntToColourLUT(anOther), itsMin(0.0), itsMax(1.0)
{
    UpdateScale();
    if (const auto * other = dynamic_cast<const XFloatToColourLUT *>(&anOther))
        CopyRangeFrom(*other);
}

XFloatToColourLUT & XFloatToColourLUT::operator=(const XFloatToColourLUT & anOther)
{
    XIntToColourLUT::operator=(anOther);
    CopyRangeFrom(anOther);
    return *this;
}

XFloatToColourLUT & XFloatToColourLUT::operator=(const XIntToColourLUT & anOther)
{
    XIntToColourLUT::operator=(anOther);
    if (const auto * other = dynamic_cast<const XFloatToColourLUT *>(&anOther))
        CopyRangeFrom(*other);
    return *this;
}

void XFloatToColourLUT::CopyRangeFrom(const XFloatToColourLUT & anOther)
{
    itsMin = anOther.itsMin;
    itsMax = anOther.itsMax;
    itsScale = anOther.itsScale;
    itsStep = anOther.itsStep;
}

void XFloatToColourLUT::SetMin(double aMin)
{
    itsMin = aMin;
    UpdateScale();
}

void XFloatToColourLUT::SetMax(double aMax)
{
    itsMax = aMax;
    UpdateScale();
}

void XFloatToColourLUT::UpdateScale()
{
    itsScale = (1.0 / (itsMax - itsMin)) * 255.0;
    itsStep = (itsMax - itsMin) / 255.0;
}

UInt32 XFloatToColourLUT::ValueToIndex(double aValue) const
{
    if (aValue < itsMin)
        aValue = itsMin;
    else if (aValue > itsMax)
        aValue = itsMax;
    const double index = std::trunc((aValue - itsMin) * itsScale);
    if (!(index > 0.0))
        return 0;
    return index < 4294967295.0 ? UInt32(index) : 0xFFFFFFFFu;
}

void XFloatToColourLUT::ValueToColour(double aValue, XARGB32Colour & outColour) const
{
    XAssertText(!IsEmpty(), "GetSize() > 0");
    outColour = XLUT<XARGB32Colour>::IndexToValue(std::min({ValueToIndex(aValue), 255u, GetLastEntry()}));
}

double XFloatToColourLUT::ColourToValue(const XARGB32Colour & aColour) const
{
    return IndexToValue(XLUT<XARGB32Colour>::ValueToIndex(aColour));
}

void XFloatToColourLUT::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XFloatToColourLUT(aStream, anOptions);
}

void XFloatToColourLUT::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XFloatToColourLUT(aStream, anOptions);
}

void XFloatToColourLUT::ReadStream2_XFloatToColourLUT(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XIntToColourLUT(aStream, anOptions);
    const XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, anOptions);
}

void XFloatToColourLUT::WriteStream2_XFloatToColourLUT(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XIntToColourLUT(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
    WriteStreamSelf(aStream, anOptions);
}

void XFloatToColourLUT::ReadStreamSelf(XStream & aStream, const XVersion &, XOptions)
{
    itsMin = aStream.ReadFloat64S();
    itsMax = aStream.ReadFloat64S();
    UpdateScale();
}

void XFloatToColourLUT::WriteStreamSelf(XStream & aStream, XOptions) const
{
    aStream.WriteFloat64S(itsMin);
    aStream.WriteFloat64S(itsMax);
}
