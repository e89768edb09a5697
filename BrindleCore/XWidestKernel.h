#pragma once
// Runs a loop compiled twice: for the baseline processor of the build and for AVX2, the wider
// one chosen at run time when XIntelCPUInfo finds AVX2. The loop is written once, as a callable;
// both runners inline it whole (flatten), so the compiler vectorises each copy for its own
// instruction set. Results are the same on both: the callable decides what is computed, the
// instruction set only how wide.

#include "XIntelCPUInfo.h"

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
