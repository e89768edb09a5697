#pragma once
// Fixed-width integer types of the whole project; every 32-bit signed count or coordinate is SInt32.

#include <cstddef>
#include <cstdint>

using SInt8 = std::int8_t;
using UInt8 = std::uint8_t;
using SInt16 = std::int16_t;
using UInt16 = std::uint16_t;
using SInt32 = std::int32_t;
using UInt32 = std::uint32_t;
using SInt64 = std::int64_t;
using UInt64 = std::uint64_t;

// Lock modes of XLockable: 1 read and write, 2 read, 3 write with the previous contents not needed.
enum XLockMode : UInt32
{
    kLockReadWrite = 1,
    kLockRead = 2,
    kLockWrite = 3
};

// How a buffer's bytes are turned over when its byte order differs from the platform's.
enum XByteSwapMode : UInt32
{
    kSwapNone = 0,
    kSwap16 = 1,
    kSwap32 = 2
};

// Byte orders of streams.
enum XByteOrder : UInt32
{
    kLittleEndian = 0,
    kBigEndian = 1
};
