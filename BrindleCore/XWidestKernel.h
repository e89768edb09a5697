#pragma once
// Runs a loop compiled twice: for the baseline processor of the build and for AVX2, the wider
// one chosen at run time when XIntelCPUInfo finds AVX2. The loop is written once, as a callable;
// both runners inline it whole (flatten), so the compiler vectorises each copy for its own
// instruction set. Results are the same on both: the callable decides what is computed, the
// instruction set only how wide.

#include <type_traits>

#include "XIntelCPUInfo.h"
#include "XTypes.h"

template <typename Kernel>
[[gnu::flatten]] inline void XRunBaselineKernel(Kernel & aKernel)
{
    aKernel();
}

template <typename Kernel>
[[gnu::flatten, gnu::target("avx2")]] inline void XRunAVX2Kernel(Kernel & aKernel)
{
    aKernel();
}

template <typename Kernel>
inline void XRunWidestKernel(Kernel && aKernel)
{
    if (XIntelCPUInfo::HasFeature(kCPUFeatureAVX2))
        XRunAVX2Kernel(aKernel);
    else
        XRunBaselineKernel(aKernel);
}

// The same for a loop written on vectors of its own (GCC vector extensions): the callable gets
// the width of the vectors to use, in bytes, as std::integral_constant<UInt32, N>: 16 on the
// baseline processor, 32 with AVX2. Vectors wider than the instruction set would be split into
// scalar code, so each copy takes the width that its instruction set has.
template <typename Kernel>
[[gnu::flatten]] inline void XRunBaselineVectorKernel(Kernel & aKernel)
{
    aKernel(std::integral_constant<UInt32, 16>());
}

template <typename Kernel>
[[gnu::flatten, gnu::target("avx2")]] inline void XRunAVX2VectorKernel(Kernel & aKernel)
{
    aKernel(std::integral_constant<UInt32, 32>());
}

template <typename Kernel>
inline void XRunWidestVectorKernel(Kernel && aKernel)
{
    if (XIntelCPUInfo::HasFeature(kCPUFeatureAVX2))
        XRunAVX2VectorKernel(aKernel);
    else
        XRunBaselineVectorKernel(aKernel);
}
