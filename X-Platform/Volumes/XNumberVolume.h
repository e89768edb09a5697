#pragma once
// Arithmetic, whole-volume statistics and trilinear sampling over scalar voxels T (unsigned
// char, unsigned short, 32-bit unsigned, float).
//
// The operators run over every voxel of the storage, pads included, in T: integers wrap round
// without saturation. Deliberately, dividing an integer volume by a value divides through the
// reciprocal converted to T, so a divisor above 1 zeroes the volume and 1 leaves it alone.
// The statistics walk the visible voxels only, row by row.
//
// Stream level (class 103, version 0): the class word alone.

#include "XPackedVolume.h"

template <typename T>
class XNumberVolume : public XPackedVolume<T>
{
public:
    static constexpr UInt32 kClassID = 103;
    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XPackedVolume<T>::GetClassVersion(); }

    virtual XNumberVolume & operator+=(const T & aValue);
    virtual XNumberVolume & operator+=(const XNumberVolume & aVolume);
    // Adds the value negated in T.
    virtual XNumberVolume & operator-=(const T & aValue);
    virtual XNumberVolume & operator-=(const XNumberVolume & aVolume);
    // Multiplies by 1.0 / aValue converted to T (truncated for integers).
    virtual XNumberVolume & operator/=(const T & aValue);
    // Voxel by voxel; an integer division by a zero voxel is a broken precondition.
    virtual XNumberVolume & operator/=(const XNumberVolume & aVolume);
    virtual XNumberVolume & operator*=(const T & aValue);
    virtual XNumberVolume & operator*=(const XNumberVolume & aVolume);
    // The function in double on each voxel; integers keep the low bits of the truncated result.
    virtual XNumberVolume & Log();
    virtual XNumberVolume & Exp();
    virtual XNumberVolume & Sqrt();
    // voxel - value, and 0 where that is negative (integers: in signed 32 bits; floats: also
    // where it is NaN).
    virtual XNumberVolume & SubtractAndClamp(const T & aValue);
    // The map offset-then-gain that stretches the voxels to 0..aTop, after leaving out a
    // fraction of the brightest and of the darkest voxels (counted in 256 bins between minimum
    // and maximum). Integer volumes must have a range of at least 257 when a fraction is used.
    virtual void FindGainOffset(const T & aTop, float & outGain, float & outOffset, float aHighFraction,
                                float aLowFraction) const;
    // With no voxel, the first voxel's place holds the answer (FindMin, FindMax) or 0.
    virtual T FindMin() const;
    virtual T FindMax() const;
    virtual void FindMinMax(T & outMin, T & outMax) const;
    // The sum over the voxel count, truncated into T.
    virtual T FindMean() const;
    virtual double FindSum() const;
    virtual double FindAbsSum() const;
    // The sum of |a - b| over the voxels of two volumes of one size; integers subtract in signed
    // 32 bits.
    virtual double FindAbsoluteDifference(const XNumberVolume & aVolume) const;

    // Trilinear between the eight voxels around (x, y, z), in float; the upper neighbours are
    // clamped at right - 1, bottom - 1 and back - 1. No lock is taken.
    float GetInterpolatedVoxel(float aX, float aY, float aZ) const;

    void ReadStream2(XStream & aStream, XStorable::XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XStorable::XOptions anOptions) const override;

protected:
    XNumberVolume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth) : XPackedVolume<T>(aWidth, aHeight, aDepth) {}
    explicit XNumberVolume(const X3DRect & aBounds) : XPackedVolume<T>(aBounds) {}
    XNumberVolume(const XNumberVolume &) = default;
    explicit XNumberVolume(XStream & aStream);

    void ReadStream2_XNumberVolume(XStream & aStream, XStorable::XOptions anOptions);
    void WriteStream2_XNumberVolume(XStream & aStream, XStorable::XOptions anOptions) const;

private:
    // Applies anOperation to every voxel of the storage under a read-write lock.
    template <typename Operation>
    XNumberVolume & ForEachVoxel(Operation anOperation);
    // Applies anOperation to every voxel with the voxel of aVolume at the same place.
    template <typename Operation>
    XNumberVolume & ForEachVoxelPair(const XNumberVolume & aVolume, Operation anOperation);
    // Runs aVisit over each visible row (pointer, width) under a read lock.
    template <typename Visit>
    void ForEachRow(Visit aVisit) const;
};

extern template class XNumberVolume<UInt8>;
extern template class XNumberVolume<UInt16>;
extern template class XNumberVolume<UInt32>;
extern template class XNumberVolume<float>;
