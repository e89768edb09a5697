#pragma once
// Features of the processor, read once through CPUID, for choosing vector kernels at run time.
// A feature counts only when the operating system also saves the register state it needs
// (XGETBV): AVX, AVX2, FMA and F16C need the AVX state, the AVX-512 features the AVX-512 state.
//
// Features can be turned off for the rest of the process (SetFeatureEnabled), so that tests
// and comparisons can run the narrower kernels on a wide machine. Turning a feature off also
// turns off what builds on it (AVX off: AVX2, FMA, F16C and AVX-512 off). HasFeature is a
// single atomic load and safe to call from any thread.

#include "XString.h"
#include "XTypes.h"

enum XCPUFeature : UInt32
{
    kCPUFeatureSSE = 0,
    kCPUFeatureSSE2,
    kCPUFeatureSSE3,
    kCPUFeatureSSSE3,
    kCPUFeatureSSE41,
    kCPUFeatureSSE42,
    kCPUFeaturePOPCNT,
    kCPUFeatureAVX,
    kCPUFeatureAVX2,
    kCPUFeatureFMA,
    kCPUFeatureF16C,
    kCPUFeatureBMI1,
    kCPUFeatureBMI2,
    kCPUFeatureAVX512F,
    kCPUFeatureAVX512DQ,
    kCPUFeatureAVX512CD,
    kCPUFeatureAVX512BW,
    kCPUFeatureAVX512VL,
    kCPUFeatureCount
};

class XIntelCPUInfo
{
public:
    XIntelCPUInfo() = delete;

    // Present, usable by the operating system, and not turned off.
    static bool HasFeature(XCPUFeature aFeature);
    // Present and usable, whatever SetFeatureEnabled said.
    static bool IsFeatureDetected(XCPUFeature aFeature);
    // Off: HasFeature answers false for aFeature and the features that build on it. On: back to
    // what was detected, as far as the features it builds on are on.
    static void SetFeatureEnabled(XCPUFeature aFeature, bool anEnabled);
    // Turns every detected feature on again.
    static void ResetFeatures();
    // One bit a feature (bit n: XCPUFeature n) of HasFeature.
    static UInt32 GetFeatureMask();

    // "GenuineIntel", "AuthenticAMD", ...; empty on other processors.
    static const XString & GetVendor();
    // The processor's own name, blanks trimmed; empty when it has none.
    static const XString & GetBrand();
    // Family and model with their extended fields added as the vendors document.
    static UInt32 GetFamily();
    static UInt32 GetModel();
    static UInt32 GetStepping();

    // "SSE4.2", "AVX2", ...
    static const char * GetFeatureName(XCPUFeature aFeature);
    // The names of the features HasFeature answers true for, separated by blanks.
    static XString GetFeatureSummary();
};
