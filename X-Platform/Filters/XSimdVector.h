#pragma once
// A vector of N bytes of T in the compiler's vector extensions, for loops that spell out their
// vectors (the widths come from XRunWidestVectorKernel). Arithmetic and comparisons work lane by
// lane; the loads and stores go through memcpy, so any address will do. Vectors go by
// reference, since passing a vector wider than the baseline's registers by value would change
// the calling convention between the baseline and the AVX2 copies of a loop.

#include <cstring>

#include "XTypes.h"

template <typename T, UInt32 N>
struct XSimdVector
{
    using Type [[gnu::vector_size(N)]] = T;
    static constexpr UInt32 kLanes = N / sizeof(T);

    static void Load(Type & outVector, const T * aValues) { std::memcpy(&outVector, aValues, N); }
    static void Store(T * outValues, const Type & aVector) { std::memcpy(outValues, &aVector, N); }
};
