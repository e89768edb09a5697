#include "XIntelCPUInfo.h"

#include <atomic>
#include <mutex>
#include <string>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#define BRINDLE_HAS_CPUID 1
#else
#define BRINDLE_HAS_CPUID 0
#endif

#include "XAssert.h"

namespace
{
constexpr UInt32 Bit(XCPUFeature aFeature)
{
    return 1u << static_cast<UInt32>(aFeature);
}

constexpr UInt32 kAllFeatures = (1u << kCPUFeatureCount) - 1u;

// The features each feature builds on (directly).
constexpr UInt32 kRequires[kCPUFeatureCount] = {
    0,                                           // SSE
    Bit(kCPUFeatureSSE),                         // SSE2
    Bit(kCPUFeatureSSE2),                        // SSE3
    Bit(kCPUFeatureSSE3),                        // SSSE3
    Bit(kCPUFeatureSSSE3),                       // SSE4.1
    Bit(kCPUFeatureSSE41),                       // SSE4.2
    0,                                           // POPCNT
    Bit(kCPUFeatureSSE42),                       // AVX
    Bit(kCPUFeatureAVX),                         // AVX2
    Bit(kCPUFeatureAVX),                         // FMA
    Bit(kCPUFeatureAVX),                         // F16C
    0,                                           // BMI1
    0,                                           // BMI2
    Bit(kCPUFeatureAVX2) | Bit(kCPUFeatureFMA),  // AVX512F
    Bit(kCPUFeatureAVX512F),                     // AVX512DQ
    Bit(kCPUFeatureAVX512F),                     // AVX512CD
    Bit(kCPUFeatureAVX512F),                     // AVX512BW
    Bit(kCPUFeatureAVX512F),                     // AVX512VL
};

constexpr const char * kNames[kCPUFeatureCount] = {
    "SSE",  "SSE2", "SSE3", "SSSE3", "SSE4.1",  "SSE4.2",   "POPCNT",   "AVX",      "AVX2",
    "FMA",  "F16C", "BMI1", "BMI2",  "AVX512F", "AVX512DQ", "AVX512CD", "AVX512BW", "AVX512VL"};

// Keeps of aMask only the features whose prerequisites are all in the result, in order (a
// feature's prerequisites come before it in the enumeration).
UInt32 CloseOverRequirements(UInt32 aMask)
{
    UInt32 result = 0;
    for (UInt32 feature = 0; feature < kCPUFeatureCount; ++feature)
    {
        const UInt32 bit = 1u << feature;
        if ((aMask & bit) != 0 && (result & kRequires[feature]) == kRequires[feature])
            result |= bit;
    }
    return result;
}

struct XDetected
{
    UInt32 itsFeatures = 0;
    XString itsVendor;
    XString itsBrand;
    UInt32 itsFamily = 0;
    UInt32 itsModel = 0;
    UInt32 itsStepping = 0;
};

bool IsSet(unsigned int aRegister, unsigned int aBit)
{
    return ((aRegister >> aBit) & 1u) != 0;
}

#if BRINDLE_HAS_CPUID
// XCR0, the register state that the operating system saves on a switch of threads. Only to be
// read when CPUID reports OSXSAVE.
UInt64 ReadXCR0()
{
    unsigned int low = 0;
    unsigned int high = 0;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return (static_cast<UInt64>(high) << 32) | low;
}

std::string RegisterText(unsigned int aRegister)
{
    std::string text;
    for (int shift = 0; shift < 32; shift += 8)
        text += static_cast<char>((aRegister >> shift) & 0xFFu);
    return text;
}
#endif

XDetected Detect()
{
    XDetected detected;
#if BRINDLE_HAS_CPUID
    unsigned int eax = 0;
    unsigned int ebx = 0;
    unsigned int ecx = 0;
    unsigned int edx = 0;
    if (__get_cpuid(0, &eax, &ebx, &ecx, &edx) == 0)
        return detected;
    const unsigned int maxLeaf = eax;
    detected.itsVendor = XString(RegisterText(ebx) + RegisterText(edx) + RegisterText(ecx));

    UInt32 features = 0;
    bool avxState = false;
    bool avx512State = false;
    if (maxLeaf >= 1 && __get_cpuid(1, &eax, &ebx, &ecx, &edx) != 0)
    {
        const UInt32 baseFamily = (eax >> 8) & 0xFu;
        const UInt32 baseModel = (eax >> 4) & 0xFu;
        detected.itsStepping = eax & 0xFu;
        detected.itsFamily = baseFamily == 0xFu ? baseFamily + ((eax >> 20) & 0xFFu) : baseFamily;
        detected.itsModel = (baseFamily == 0x6u || baseFamily == 0xFu)
                                ? baseModel + (((eax >> 16) & 0xFu) << 4)
                                : baseModel;

        if (IsSet(edx, 25))
            features |= Bit(kCPUFeatureSSE);
        if (IsSet(edx, 26))
            features |= Bit(kCPUFeatureSSE2);
        if (IsSet(ecx, 0))
            features |= Bit(kCPUFeatureSSE3);
        if (IsSet(ecx, 9))
            features |= Bit(kCPUFeatureSSSE3);
        if (IsSet(ecx, 19))
            features |= Bit(kCPUFeatureSSE41);
        if (IsSet(ecx, 20))
            features |= Bit(kCPUFeatureSSE42);
        if (IsSet(ecx, 23))
            features |= Bit(kCPUFeaturePOPCNT);
        if (IsSet(ecx, 27)) // OSXSAVE: XGETBV may be used
        {
            const UInt64 xcr0 = ReadXCR0();
            avxState = (xcr0 & 0x6u) == 0x6u;             // SSE and AVX state
            avx512State = avxState && (xcr0 & 0xE0u) == 0xE0u; // opmask, upper ZMM, ZMM16-31
        }
        if (avxState && IsSet(ecx, 28))
            features |= Bit(kCPUFeatureAVX);
        if (avxState && IsSet(ecx, 12))
            features |= Bit(kCPUFeatureFMA);
        if (avxState && IsSet(ecx, 29))
            features |= Bit(kCPUFeatureF16C);
    }
    if (maxLeaf >= 7 && __get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) != 0)
    {
        if (avxState && IsSet(ebx, 5))
            features |= Bit(kCPUFeatureAVX2);
        if (IsSet(ebx, 3))
            features |= Bit(kCPUFeatureBMI1);
        if (IsSet(ebx, 8))
            features |= Bit(kCPUFeatureBMI2);
        if (avx512State)
        {
            if (IsSet(ebx, 16))
                features |= Bit(kCPUFeatureAVX512F);
            if (IsSet(ebx, 17))
                features |= Bit(kCPUFeatureAVX512DQ);
            if (IsSet(ebx, 28))
                features |= Bit(kCPUFeatureAVX512CD);
            if (IsSet(ebx, 30))
                features |= Bit(kCPUFeatureAVX512BW);
            if (IsSet(ebx, 31))
                features |= Bit(kCPUFeatureAVX512VL);
        }
    }
    detected.itsFeatures = CloseOverRequirements(features);

    unsigned int maxExtended = __get_cpuid_max(0x80000000u, nullptr);
    if (maxExtended >= 0x80000004u)
    {
        std::string brand;
        for (unsigned int leaf = 0x80000002u; leaf <= 0x80000004u; ++leaf)
        {
            __get_cpuid(leaf, &eax, &ebx, &ecx, &edx);
            brand += RegisterText(eax) + RegisterText(ebx) + RegisterText(ecx) + RegisterText(edx);
        }
        brand = brand.substr(0, brand.find('\0'));
        const std::size_t first = brand.find_first_not_of(' ');
        const std::size_t last = brand.find_last_not_of(' ');
        detected.itsBrand =
            first == std::string::npos ? XString() : XString(brand.substr(first, last - first + 1));
    }
#endif
    return detected;
}

// Read once, on the first question, by whichever thread asks first.
const XDetected & Detected()
{
    static const XDetected sDetected = Detect();
    return sDetected;
}

std::mutex & EnableMutex()
{
    static std::mutex sMutex;
    return sMutex;
}

// Features turned off by SetFeatureEnabled; guarded by EnableMutex.
UInt32 sDisabled = 0;

// What HasFeature answers, one bit a feature. All bits set until the first question, which
// fills it in (constant-initialised, so it is ready before any static constructor runs).
std::atomic<UInt32> sEnabled{0xFFFFFFFFu};

void CheckFeature(XCPUFeature aFeature)
{
    XAssertText(static_cast<UInt32>(aFeature) < kCPUFeatureCount, "a known processor feature");
}
} // namespace


bool XIntelCPUInfo::HasFeature(XCPUFeature aFeature)
{
    CheckFeature(aFeature);
    UInt32 enabled = sEnabled.load(std::memory_order_acquire);
    if (enabled == 0xFFFFFFFFu) [[unlikely]]
    {
        std::lock_guard<std::mutex> guard(EnableMutex());
        enabled = CloseOverRequirements(Detected().itsFeatures & ~sDisabled);
        sEnabled.store(enabled, std::memory_order_release);
    }
    return (enabled & Bit(aFeature)) != 0;
}

bool XIntelCPUInfo::IsFeatureDetected(XCPUFeature aFeature)
{
    CheckFeature(aFeature);
    return (Detected().itsFeatures & Bit(aFeature)) != 0;
}

void XIntelCPUInfo::SetFeatureEnabled(XCPUFeature aFeature, bool anEnabled)
{
    CheckFeature(aFeature);
    std::lock_guard<std::mutex> guard(EnableMutex());
    if (anEnabled)
        sDisabled &= ~Bit(aFeature);
    else
        sDisabled |= Bit(aFeature);
    sEnabled.store(CloseOverRequirements(Detected().itsFeatures & ~sDisabled),
                   std::memory_order_release);
}

void XIntelCPUInfo::ResetFeatures()
{
    std::lock_guard<std::mutex> guard(EnableMutex());
    sDisabled = 0;
    sEnabled.store(Detected().itsFeatures, std::memory_order_release);
}

UInt32 XIntelCPUInfo::GetFeatureMask()
{
    HasFeature(kCPUFeatureSSE); // fills the mask in on the first question
    return sEnabled.load(std::memory_order_acquire) & kAllFeatures;
}

const XString & XIntelCPUInfo::GetVendor()
{
    return Detected().itsVendor;
}

const XString & XIntelCPUInfo::GetBrand()
{
    return Detected().itsBrand;
}

UInt32 XIntelCPUInfo::GetFamily()
{
    return Detected().itsFamily;
}

UInt32 XIntelCPUInfo::GetModel()
{
    return Detected().itsModel;
}

UInt32 XIntelCPUInfo::GetStepping()
{
    return Detected().itsStepping;
}

const char * XIntelCPUInfo::GetFeatureName(XCPUFeature aFeature)
{
    CheckFeature(aFeature);
    return kNames[aFeature];
}

XString XIntelCPUInfo::GetFeatureSummary()
{
    std::string summary;
    for (UInt32 feature = 0; feature < kCPUFeatureCount; ++feature)
    {
        if (HasFeature(static_cast<XCPUFeature>(feature)))
        {
            if (!summary.empty())
                summary += ' ';
            summary += kNames[feature];
        }
    }
    return XString(summary);
}
