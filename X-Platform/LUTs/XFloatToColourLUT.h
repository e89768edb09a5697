#pragma once
// A palette of 256 colours addressed by a real number between a minimum and a maximum.
//
// With scale = (1 / (max - min)) * 255 and step = (max - min) / 255, recomputed by every setter
// and after every read of a stream:
//   ValueToIndex(v): v below min becomes min, else v above max becomes max; then
//                    trunc((v - min) * scale), with no upper clamp of the index. A NaN (which
//                    passes both tests) or a negative product gives 0.
//   IndexToValue(i): min(i, 255) * step + min.
//   ValueToColour(v): the entry of min(ValueToIndex(v), 255), or the last of a smaller table.
//   ColourToValue(c): IndexToValue of the index that XLUT::ValueToIndex finds for c.
// These read entries: the table must be locked.
//
// Stream form (class 22, version 0): the form of XIntToColourLUT, then the class word 22 and
// min and max as 64-bit floats.

#include <algorithm>

#include "XIntToColourLUT.h"

class XFloatToColourLUT : public XIntToColourLUT
{
public:
    static constexpr UInt32 kClassID = 22;

    // The entries start as the standard table of depth 8.
    XFloatToColourLUT(double aMin = 0.0, double aMax = 1.0);
    explicit XFloatToColourLUT(XStream & aStream);
    XFloatToColourLUT(const XFloatToColourLUT & anOther);
    // The table, and the range if anOther is a float table; otherwise the range 0 to 1.
    explicit XFloatToColourLUT(const XIntToColourLUT & anOther);
    XFloatToColourLUT & operator=(const XFloatToColourLUT & anOther);
    // The table; the range only if anOther is a float table, otherwise the own range stays
    // (unlike the constructor, which resets it).
    XFloatToColourLUT & operator=(const XIntToColourLUT & anOther);

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XVersion(kOldClassID); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XFloatToColourLUT * Clone() const override { return new XFloatToColourLUT(*this); }
    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

    double GetMin() const { return itsMin; }
    double GetMax() const { return itsMax; }
    void SetMin(double aMin);
    void SetMax(double aMax);

    UInt32 ValueToIndex(double aValue) const;
    double IndexToValue(UInt32 anIndex) const { return double(std::min(anIndex, 255u)) * itsStep + itsMin; }
    void ValueToColour(double aValue, XARGB32Colour & outColour) const;
    double ColourToValue(const XARGB32Colour & aColour) const;

protected:
    void ReadStream2_XFloatToColourLUT(XStream & aStream, XOptions anOptions);
    void WriteStream2_XFloatToColourLUT(XStream & aStream, XOptions anOptions) const;

private:
    void ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions);
    void WriteStreamSelf(XStream & aStream, XOptions anOptions) const;
    void CopyRangeFrom(const XFloatToColourLUT & anOther);
    void UpdateScale();

    double itsMin;
    double itsMax;
    double itsScale = 0.0;
    double itsStep = 0.0;
};
