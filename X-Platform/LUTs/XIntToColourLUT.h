#pragma once
// A palette: a table from an integer index to XARGB32Colour, the look-up table of grey images.
//
// Beside its entries it keeps the true depth, the number of significant bits of the values it
// is meant for (a 65,536-entry table may serve 12-bit data), and the last true value, the
// highest value the data really use. A new table of n entries has true depth floor(log2(n))
// and last true value n - 1.
//
// IsMonotonic keeps its last answer, with the seed and direction it was found for, under a
// mutex of its own: the one piece of state guarded apart from the entries' lock.
//
// Stream form (class 23, version 1), written under a read lock:
//   class word 65559, entry count (32 bits), the entries as a memory-handle object, true depth
//   and last true value (32 bits each).
// Older forms still read: under the old class word 20 the true depth is missing (it is
// floor(log2(count))); at version 0 the last true value is missing (it is 2^depth - 1).
// Reading into an existing table keeps its seed and its search cache.

#include "XLUT.h"
#include "XMutex.h"
#include "XStorable.h"
#include "XVector.h"

class XARGB32Volume;

// Colour channels as a bit set.
enum XRGBChannel : UInt32
{
    kRedChannel = 1,
    kGreenChannel = 2,
    kBlueChannel = 4
};

class XIntToColourLUT : public XStorable, public XLUT<XARGB32Colour>
{
public:
    enum XMonotonicityDirection : UInt32
    {
        kEitherDirection = 0,
        kIncreasing = 1,
        kDecreasing = 2
    };
    static constexpr UInt32 kClassID = 23;
    // The class word of tables written by older versions, an alias of 23.
    static constexpr UInt32 kOldClassID = 20;

    explicit XIntToColourLUT(UInt32 aSize = 0);
    explicit XIntToColourLUT(XStream & aStream);
    XIntToColourLUT(const XIntToColourLUT & anOther);
    // Equal sizes: the entries, seed, true depth and last true value. Other sizes: resampled by
    // depth, entry i (up to the own last value for depth) taking the other's entry
    // (other's last value for depth * i) / (own last value for depth), the rest filled with
    // entry 2^depth - 1; the own depth and last true value stay and a new seed is taken. Both
    // empty the search cache and take over the other's monotonicity answer.
    XIntToColourLUT & operator=(const XIntToColourLUT & anOther);
    ~XIntToColourLUT() override;

    static XVersion GetClassVersion() { return XVersion(kClassID, 1); }
    static XVersion GetSuperClassVersion() { return XVersion(48); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XIntToColourLUT * Clone() const override { return new XIntToColourLUT(*this); }
    UInt64 GetStreamUsage() const override { return GetDataSize(); }
    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

    // The ramp for a bit depth, made at the first call and kept until DisposeStandardLUTs:
    // 256 entries up to depth 8, else 65,536; opaque black at 0 to opaque white at 2^depth - 1,
    // white above. A depth above 16 is taken as 8.
    static const XIntToColourLUT & GetStandardLUT(UInt32 aBitDepth);
    static void DisposeStandardLUTs();

    UInt32 GetTrueDepth() const { return itsTrueDepth; }
    // Also makes the last true value 2^depth - 1.
    void SetTrueDepth(UInt32 aDepth);
    UInt32 GetLastTrueValue() const { return itsLastTrueValue; }
    void SetLastTrueValue(UInt32 aValue) { itsLastTrueValue = aValue; }
    // 2^(true depth) - 1; 0xFFFFFFFF from depth 32 on.
    UInt32 GetLastValueForDepth() const { return LastValueForDepth(itsTrueDepth); }

    // Entries 0 to L = GetLastValueForDepth() become opaque with v = (255 * i) / L in the
    // channels of aChannels (XRGBChannel bits) and 0 in the others; entries above L stay.
    virtual void MakeChannelLUT(UInt32 aChannels);
    // Wavelength(aWavelength, 0, GetLastValueForDepth()).
    virtual void MakeWavelengthLUT(double aWavelength);
    // Opaque black at aFirst, the colour of the wavelength (nm) at aLast, blended between.
    virtual void Wavelength(double aWavelength, UInt32 aFirst, UInt32 aLast);

    // Whether the entries' levels (the largest of red, green, blue) never fall (kIncreasing),
    // never rise (kDecreasing), or keep the sense of their first change (kEitherDirection).
    // Equal levels are passed over; a table of one level is monotonic.
    bool IsMonotonic(UInt32 aDirection) const;

    // A new volume (the caller's) of 256 by 50 voxels, or of the size given, depth 1: column x
    // shows entry trunc(size / width * x).
    XARGB32Volume * GetImageOfLUT() const { return GetImageOfLUT(256, 50); }
    XARGB32Volume * GetImageOfLUT(UInt32 aWidth, UInt32 aHeight) const;
    // The first 256 entries, or all of a smaller table.
    XVector<XARGB32Colour> GetVectorOfColours() const;

protected:
    void ReadStream2_XIntToColourLUT(XStream & aStream, XOptions anOptions);
    void WriteStream2_XIntToColourLUT(XStream & aStream, XOptions anOptions) const;
    static UInt32 LastValueForDepth(UInt32 aDepth);
    // floor(log2(aSize)), 0 for 0.
    static UInt32 DepthForSize(UInt32 aSize);

private:
    void ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions);
    void WriteStreamSelf(XStream & aStream, XOptions anOptions) const;
    void CopyMonotonicityFrom(const XIntToColourLUT & anOther);

    static XIntToColourLUT * sStandardLUTs[16];

    UInt32 itsTrueDepth;
    UInt32 itsLastTrueValue;
    XMutex itsMonotonicityMutex{4000, false};
    mutable bool itsMonotonicAnswer = false;
    mutable UInt32 itsMonotonicDirection = 3;
    mutable UInt32 itsMonotonicSeed = 0;
};
