#include "XNumberVolume.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "XAssert.h"
#include "XLock.h"
#include "XStream.h"
#include "XTrilinearSampler.h"
#include "XVoxelConverters.h"
#include "XWidestKernel.h"

namespace
{
// The result of a function in double put into T: floats round, integers keep the low bits of
// the truncated 64-bit value.
template <typename T>
T FromDouble(double aValue)
{
    if constexpr (std::is_floating_point_v<T>)
        return T(aValue);
    else
        return T(XTruncatedLowBits(aValue));
}
} // namespace

template <typename T>
XNumberVolume<T>::XNumberVolume(XStream & aStream) : XPackedVolume<T>(aStream)
{
    if (!XVolume::IsReadingLegacyImage(aStream) && !XVolume::IsReadingLossyForm(aStream))
        XStorable::ReadLevelVersion(aStream, GetClassVersion());
}

template <typename T>
template <typename Operation>
XNumberVolume<T> & XNumberVolume<T>::ForEachVoxel(Operation anOperation)
{
    XLock lock(*this, kLockReadWrite);
    T * const voxel = this->GetBaseVoxelPtr();
    const UInt64 count = this->GetVolumeSize();
    XRunWidestKernel([&] {
        for (UInt64 i = 0; i < count; ++i)
            voxel[i] = anOperation(voxel[i]);
    });
    return *this;
}

template <typename T>
template <typename Operation>
XNumberVolume<T> & XNumberVolume<T>::ForEachVoxelPair(const XNumberVolume & aVolume, Operation anOperation)
{
    XAssertText(aVolume.GetBounds().IsSameSizeAs(this->GetBounds()), "v.GetBounds().IsSameSizeAs( this->GetBounds() )");
    XLock lock(*this, kLockReadWrite);
    XLock otherLock(aVolume, kLockRead);
    T * p1 = this->GetBaseVoxelPtr();
    const T * p2 = aVolume.GetBaseVoxelPtr();
    XAssert(p1);
    XAssert(p2);
    XAssertText(aVolume.GetVolumeSize() >= this->GetVolumeSize(), "v.GetVolumeSize() >= GetVolumeSize()");
    const UInt64 count = this->GetVolumeSize();
    for (UInt64 i = 0; i < count; ++i)
        p1[i] = anOperation(p1[i], p2[i]);
    return *this;
}

template <typename T>
template <typename Visit>
void XNumberVolume<T>::ForEachRow(Visit aVisit) const
{
    XLock lock(*this, kLockRead);
    if (this->GetBounds().IsEmpty())
        return;
    const T * row = this->GetBaseVoxelPtr();
    const UInt64 rows = UInt64(this->GetHeight()) * this->GetDepth();
    const UInt64 step = this->GetRowVoxels();
    const UInt32 width = this->GetWidth();
    XRunWidestKernel([&] {
        for (UInt64 r = 0; r < rows; ++r, row += step)
            aVisit(row, width);
    });
}

template <typename T>
XNumberVolume<T> & XNumberVolume<T>::operator+=(const T & aValue)
{
    const T value = aValue;
    return ForEachVoxel([value](T v) { return T(v + value); });
}

template <typename T>
XNumberVolume<T> & XNumberVolume<T>::operator+=(const XNumberVolume & aVolume)
{
    return ForEachVoxelPair(aVolume, [](T a, T b) { return T(a + b); });
}

template <typename T>
XNumberVolume<T> & XNumberVolume<T>::operator-=(const T & aValue)
{
    return *this += T(-aValue);
}

template <typename T>
XNumberVolume<T> & XNumberVolume<T>::operator-=(const XNumberVolume & aVolume)
{
    return ForEachVoxelPair(aVolume, [](T a, T b) { return T(a - b); });
}

template <typename T>
XNumberVolume<T> & XNumberVolume<T>::operator*=(const T & aValue)
{
    const T value = aValue;
    return ForEachVoxel([value](T v) { return T(v * value); });
}

template <typename T>
XNumberVolume<T> & XNumberVolume<T>::operator*=(const XNumberVolume & aVolume)
{
    return ForEachVoxelPair(aVolume, [](T a, T b) { return T(a * b); });
}

template <typename T>
XNumberVolume<T> & XNumberVolume<T>::operator/=(const T & aValue)
{
    if constexpr (std::is_integral_v<T>)
        XAssertText(aValue != 0, "value != 0");
    // The reciprocal goes through T: for integers a divisor above 1 gives 0.
    const T reciprocal = T(1.0 / double(aValue));
    return *this *= reciprocal;
}

template <typename T>
XNumberVolume<T> & XNumberVolume<T>::operator/=(const XNumberVolume & aVolume)
{
    return ForEachVoxelPair(aVolume, [](T a, T b) {
        if constexpr (std::is_integral_v<T>)
            XAssertText(b != 0, "divisor voxel != 0");
        return T(a / b);
    });
}

template <typename T>
XNumberVolume<T> & XNumberVolume<T>::Log()
{
    return ForEachVoxel([](T v) { return FromDouble<T>(std::log(double(v))); });
}

template <typename T>
XNumberVolume<T> & XNumberVolume<T>::Exp()
{
    return ForEachVoxel([](T v) { return FromDouble<T>(std::exp(double(v))); });
}

template <typename T>
XNumberVolume<T> & XNumberVolume<T>::Sqrt()
{
    return ForEachVoxel([](T v) { return FromDouble<T>(std::sqrt(double(v))); });
}

template <typename T>
XNumberVolume<T> & XNumberVolume<T>::SubtractAndClamp(const T & aValue)
{
    const T value = aValue;
    if constexpr (std::is_integral_v<T>)
        return ForEachVoxel([value](T v) {
            const SInt32 d = SInt32(UInt32(v) - UInt32(value));
            return d >= 0 ? T(d) : T(0);
        });
    else
        return ForEachVoxel([value](T v) {
            const T d = v - value;
            return d >= T(0) ? d : T(0);
        });
}

template <typename T>
T XNumberVolume<T>::FindMin() const
{
    T low{}, high{};
    FindMinMax(low, high);
    return low;
}

template <typename T>
T XNumberVolume<T>::FindMax() const
{
    T low{}, high{};
    FindMinMax(low, high);
    return high;
}

template <typename T>
void XNumberVolume<T>::FindMinMax(T & outMin, T & outMax) const
{
    T low{}, high{};
    bool first = true;
    ForEachRow([&](const T * aRow, UInt32 aWidth) {
        if (first && aWidth > 0)
            low = high = aRow[0], first = false;
        T rowLow = low, rowHigh = high;
        for (UInt32 x = 0; x < aWidth; ++x)
        {
            rowLow = std::min(rowLow, aRow[x]);
            rowHigh = std::max(rowHigh, aRow[x]);
        }
        low = rowLow, high = rowHigh;
    });
    if (first)
    {
        XLock lock(*this, kLockRead);
        low = high = *this->GetBaseVoxelPtr();
    }
    outMin = low;
    outMax = high;
}

template <typename T>
double XNumberVolume<T>::FindSum() const
{
    double sum = 0.0;
    ForEachRow([&](const T * aRow, UInt32 aWidth) {
        if constexpr (std::is_integral_v<T> && sizeof(T) <= 2)
        {
            // Exact in integers, and so the same as a running sum in double. Runs of 65536
            // voxels fit a 32-bit sum, which the processor adds many at a time.
            UInt64 rowSum = 0;
            for (UInt32 start = 0; start < aWidth; start += 65536)
            {
                const UInt32 end = std::min(aWidth, start + 65536);
                UInt32 runSum = 0;
                for (UInt32 x = start; x < end; ++x)
                    runSum += aRow[x];
                rowSum += runSum;
            }
            sum += double(rowSum);
        }
        else
        {
            for (UInt32 x = 0; x < aWidth; ++x)
                sum += double(aRow[x]);
        }
    });
    return sum;
}

template <typename T>
double XNumberVolume<T>::FindAbsSum() const
{
    if constexpr (std::is_integral_v<T>)
        return FindSum();
    else
    {
        double sum = 0.0;
        ForEachRow([&](const T * aRow, UInt32 aWidth) {
            for (UInt32 x = 0; x < aWidth; ++x)
                sum += std::fabs(double(aRow[x]));
        });
        return sum;
    }
}

template <typename T>
T XNumberVolume<T>::FindMean() const
{
    const double count = double(this->GetWidth()) * double(this->GetHeight()) * double(this->GetDepth());
    return FromDouble<T>(FindSum() / count);
}

template <typename T>
double XNumberVolume<T>::FindAbsoluteDifference(const XNumberVolume & aVolume) const
{
    XAssertText(aVolume.GetBounds().IsSameSizeAs(this->GetBounds()),
                "volume.GetBounds().IsSameSizeAs( this->GetBounds() )");
    XLock lock(*this, kLockRead);
    XLock otherLock(aVolume, kLockRead);
    const T * p1 = this->GetBaseVoxelPtr();
    const T * p2 = aVolume.GetBaseVoxelPtr();
    XAssert(p1);
    XAssert(p2);
    double sum = 0.0;
    if (this->GetBounds().IsEmpty())
        return sum;
    const UInt64 rows = UInt64(this->GetHeight()) * this->GetDepth();
    const UInt32 width = this->GetWidth();
    for (UInt64 r = 0; r < rows; ++r, p1 += this->GetRowVoxels(), p2 += aVolume.GetRowVoxels())
        for (UInt32 x = 0; x < width; ++x)
        {
            if constexpr (std::is_integral_v<T>)
                sum += std::fabs(double(SInt32(UInt32(p1[x]) - UInt32(p2[x]))));
            else
                sum += std::fabs(double(p1[x] - p2[x]));
        }
    return sum;
}

template <typename T>
void XNumberVolume<T>::FindGainOffset(const T & aTop, float & outGain, float & outOffset, float aHighFraction,
                                      float aLowFraction) const
{
    T min{}, max{};
    FindMinMax(min, max);
    if (aHighFraction != 0.0f || aLowFraction != 0.0f)
    {
        XLock lock(*this, kLockRead);
        const UInt64 n = this->GetVolumeSize();
        T binWidth;
        if constexpr (std::is_integral_v<T>)
        {
            binWidth = T(double(max - min) / 257.0);
            XAssertText(binWidth != 0, "binWidth != 0");
        }
        else
            binWidth = T(double(max - min) / 257.0);
        UInt64 counters[256] = {};
        const T * voxel = this->GetBaseVoxelPtr();
        for (UInt64 i = 0; i < n; ++i)
        {
            UInt64 bin;
            if constexpr (std::is_integral_v<T>)
                bin = UInt64((voxel[i] - min) / binWidth);
            else
                bin = XTruncatedLowBits(double((voxel[i] - min) / binWidth));
            if constexpr (std::is_same_v<T, UInt8>)
                ++counters[bin & 0xFF];
            else if (bin < 256)
                ++counters[bin];
        }
        const float high = aHighFraction * float(n);
        const float low = aLowFraction * float(n);
        UInt32 i = 0;
        float sum = 0.0f;
        while (low > sum && i < 256)
            sum += float(counters[i++]);
        min = T(min + binWidth * i);
        UInt32 j = 0;
        sum = 0.0f;
        while (high > sum && j < 256)
            sum += float(counters[255 - j++]);
        max = T(max - binWidth * j);
    }
    if constexpr (std::is_floating_point_v<T>)
    {
        min = min <= T(0) ? T(0) : min;
        max = max <= T(0) ? T(0) : max;
        outGain = float(aTop / (max - min));
    }
    else
    {
        XAssertText(max != min, "max != min");
        outGain = float(SInt64(aTop) / SInt64(T(max - min)));
    }
    outOffset = -float(min);
}

template <typename T>
float XNumberVolume<T>::GetInterpolatedVoxel(float aX, float aY, float aZ) const
{
    return XSampleTrilinear(*this, aX, aY, aZ, [](T aVoxel) { return float(aVoxel); });
}

template <typename T>
void XNumberVolume<T>::ReadStream2(XStream & aStream, XStorable::XOptions anOptions)
{
    ReadStream2_XNumberVolume(aStream, anOptions);
}

template <typename T>
void XNumberVolume<T>::WriteStream2(XStream & aStream, XStorable::XOptions anOptions) const
{
    WriteStream2_XNumberVolume(aStream, anOptions);
}

template <typename T>
void XNumberVolume<T>::ReadStream2_XNumberVolume(XStream & aStream, XStorable::XOptions anOptions)
{
    this->ReadStream2_XPackedVolume(aStream, anOptions);
    XStorable::ReadLevelVersion(aStream, GetClassVersion());
}

template <typename T>
void XNumberVolume<T>::WriteStream2_XNumberVolume(XStream & aStream, XStorable::XOptions anOptions) const
{
    this->WriteStream2_XPackedVolume(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}

template class XNumberVolume<UInt8>;
template class XNumberVolume<UInt16>;
template class XNumberVolume<UInt32>;
template class XNumberVolume<float>;
