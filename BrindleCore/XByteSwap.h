#pragma once
// Byte-order helpers shared by streams and memory handles.

#include <type_traits>

#include "XTypes.h"

// One unsigned value of 16, 32 or 64 bits with its bytes turned over.
template <class T>
constexpr T XByteSwapValue(T aValue)
{
    static_assert(std::is_unsigned_v<T> && sizeof(T) >= 2 && sizeof(T) <= 8);
    if constexpr (sizeof(T) == 2)
        return __builtin_bswap16(aValue);
    else if constexpr (sizeof(T) == 4)
        return __builtin_bswap32(aValue);
    else
        return __builtin_bswap64(aValue);
}

// The byte order of this processor.
XByteOrder GetByteOrderFromPlatform();

// Copies aByteCount bytes from aSource to aDest, turning over every 16 or 32 bits as aMode says
// (kSwapNone copies). aDest may equal aSource. A trailing part shorter than the unit is copied
// unchanged.
void SwapBufferBytes(void * aDest, const void * aSource, UInt64 aByteCount, XByteSwapMode aMode);
// In place, aCount units of 16 or 32 bits.
void SwapBuffer16(void * aBuffer, UInt64 aCount);
void SwapBuffer32(void * aBuffer, UInt64 aCount);
void SwapBuffer64(void * aBuffer, UInt64 aCount);
