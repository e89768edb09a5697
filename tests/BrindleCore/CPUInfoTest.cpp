// Processor features: what CPUID reports, checked against the compiler's own detection and
// against the rules that hold on every x86-64 processor; turning features off and on.

#include <gtest/gtest.h>

#include <string>

#include "XIntelCPUInfo.h"

#if defined(__x86_64__)

TEST(CPUInfoTest, FeaturesAreConsistent)
{
    // x86-64 always has SSE and SSE2; the library is built for x86-64-v2, which adds the rest.
    for (XCPUFeature feature : {kCPUFeatureSSE, kCPUFeatureSSE2, kCPUFeatureSSE3, kCPUFeatureSSSE3,
                                kCPUFeatureSSE41, kCPUFeatureSSE42, kCPUFeaturePOPCNT})
        EXPECT_TRUE(XIntelCPUInfo::HasFeature(feature)) << XIntelCPUInfo::GetFeatureName(feature);
    const std::string summary = XIntelCPUInfo::GetFeatureSummary().GetStdString();
    EXPECT_EQ(summary.rfind("SSE SSE2 SSE3 SSSE3 SSE4.1 SSE4.2 POPCNT", 0), 0u) << summary;
    EXPECT_STREQ(XIntelCPUInfo::GetFeatureName(kCPUFeatureAVX512BW), "AVX512BW");
    EXPECT_EQ(XIntelCPUInfo::GetVendor().GetLength(), 12u);

    // The compiler's run-time detection, which also asks the system for the AVX state.
    __builtin_cpu_init();
    EXPECT_EQ(XIntelCPUInfo::HasFeature(kCPUFeatureAVX), __builtin_cpu_supports("avx") != 0);
    EXPECT_EQ(XIntelCPUInfo::HasFeature(kCPUFeatureAVX2), __builtin_cpu_supports("avx2") != 0);
    EXPECT_EQ(XIntelCPUInfo::HasFeature(kCPUFeatureFMA), __builtin_cpu_supports("fma") != 0);
    EXPECT_EQ(XIntelCPUInfo::HasFeature(kCPUFeatureAVX512F), __builtin_cpu_supports("avx512f") != 0);
    EXPECT_EQ(XIntelCPUInfo::HasFeature(kCPUFeatureAVX512BW), __builtin_cpu_supports("avx512bw") != 0);
    EXPECT_EQ(XIntelCPUInfo::HasFeature(kCPUFeatureBMI2), __builtin_cpu_supports("bmi2") != 0);

    UInt32 mask = 0;
    for (UInt32 feature = 0; feature < kCPUFeatureCount; ++feature)
        mask |= UInt32(XIntelCPUInfo::HasFeature(static_cast<XCPUFeature>(feature))) << feature;
    EXPECT_EQ(XIntelCPUInfo::GetFeatureMask(), mask);
}

TEST(CPUInfoTest, TurningAFeatureOffTurnsOffWhatBuildsOnIt)
{
    const UInt32 detected = XIntelCPUInfo::GetFeatureMask();
    const bool hadAVX2 = XIntelCPUInfo::HasFeature(kCPUFeatureAVX2);

    XIntelCPUInfo::SetFeatureEnabled(kCPUFeatureAVX, false);
    for (XCPUFeature feature : {kCPUFeatureAVX, kCPUFeatureAVX2, kCPUFeatureFMA, kCPUFeatureAVX512F, kCPUFeatureAVX512BW})
        EXPECT_FALSE(XIntelCPUInfo::HasFeature(feature)) << XIntelCPUInfo::GetFeatureName(feature);
    EXPECT_TRUE(XIntelCPUInfo::HasFeature(kCPUFeatureSSE42));
    EXPECT_TRUE(XIntelCPUInfo::HasFeature(kCPUFeaturePOPCNT));
    EXPECT_EQ(XIntelCPUInfo::IsFeatureDetected(kCPUFeatureAVX2), hadAVX2);
    // Turning AVX2 on does not bring it back while AVX is off.
    XIntelCPUInfo::SetFeatureEnabled(kCPUFeatureAVX2, true);
    EXPECT_FALSE(XIntelCPUInfo::HasFeature(kCPUFeatureAVX2));
    XIntelCPUInfo::SetFeatureEnabled(kCPUFeatureAVX, true);
    EXPECT_EQ(XIntelCPUInfo::GetFeatureMask(), detected);

    XIntelCPUInfo::SetFeatureEnabled(kCPUFeatureSSE2, false);
    EXPECT_TRUE(XIntelCPUInfo::HasFeature(kCPUFeatureSSE));
    EXPECT_FALSE(XIntelCPUInfo::HasFeature(kCPUFeatureSSE42));
    EXPECT_FALSE(XIntelCPUInfo::HasFeature(kCPUFeatureAVX));
    XIntelCPUInfo::ResetFeatures();
    EXPECT_EQ(XIntelCPUInfo::GetFeatureMask(), detected);
}

#endif
