#include "XByteSwap.h"

#include <bit>
#include <cstring>

XByteOrder GetByteOrderFromPlatform()
{
    return std::endian::native == std::endian::little ? kLittleEndian : kBigEndian;
}

namespace
{
template <class T>
void SwapUnits(void * aDest, const void * aSource, UInt64 aCount)
{
    const auto * source = static_cast<const UInt8 *>(aSource);
    auto * dest = static_cast<UInt8 *>(aDest);
    for (UInt64 i = 0; i < aCount; ++i)
    {
        T value;
        std::memcpy(&value, source + i * sizeof(T), sizeof(T));
        value = XByteSwapValue(value);
        std::memcpy(dest + i * sizeof(T), &value, sizeof(T));
    }
}
} // namespace

void SwapBufferBytes(void * aDest, const void * aSource, UInt64 aByteCount, XByteSwapMode aMode)
{
    UInt64 unit = aMode == kSwap16 ? 2 : aMode == kSwap32 ? 4 : 0;
    UInt64 swapped = 0;
    if (unit == 2)
        SwapUnits<UInt16>(aDest, aSource, aByteCount / 2);
    else if (unit == 4)
        SwapUnits<UInt32>(aDest, aSource, aByteCount / 4);
    if (unit != 0)
        swapped = aByteCount - aByteCount % unit;
    if (aDest != aSource && swapped < aByteCount)
        std::memmove(static_cast<UInt8 *>(aDest) + swapped,
                     static_cast<const UInt8 *>(aSource) + swapped, aByteCount - swapped);
}

void SwapBuffer16(void * aBuffer, UInt64 aCount)
{
    SwapUnits<UInt16>(aBuffer, aBuffer, aCount);
}

void SwapBuffer32(void * aBuffer, UInt64 aCount)
{
    SwapUnits<UInt32>(aBuffer, aBuffer, aCount);
}

void SwapBuffer64(void * aBuffer, UInt64 aCount)
{
    SwapUnits<UInt64>(aBuffer, aBuffer, aCount);
}
