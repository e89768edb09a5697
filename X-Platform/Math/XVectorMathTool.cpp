#include "XVectorMathTool.h"

#include <cmath>
#include <cstdio>

#include "WSSE2VectorMathToolImp.h"
#include "WSSEVectorMathToolImp.h"
#include "XAssert.h"
#include "XIntelCPUInfo.h"
#include "XLock.h"
#include "XMemoryHandle.h"
#include "XSessionLogManager.h"
#include "XTimer.h"

// Built by this library's static initialisation, in this order, before any call.
XVectorMathToolImp * XVectorMathTool::sPortable = nullptr;
XVectorMathToolImp * XVectorMathTool::sBest = XVectorMathTool::Init();
XVectorMathToolImp * XVectorMathTool::sCurrent =
    XVectorMathTool::sBest != nullptr ? XVectorMathTool::sBest : XVectorMathTool::sPortable;

XVectorMathToolImp * XVectorMathTool::Init()
{
    sPortable = new XVectorMathToolImp;
    return BuildOptimisedImplementation();
}

XVectorMathToolImp * XVectorMathTool::BuildOptimisedImplementation()
{
    if (XIntelCPUInfo::HasFeature(kCPUFeatureSSE2))
        return new WSSE2VectorMathToolImp;
    if (XIntelCPUInfo::HasFeature(kCPUFeatureSSE))
        return new WSSEVectorMathToolImp;
    return nullptr;
}

void XVectorMathTool::SetImplementation(XImplementation anImplementation)
{
    if (anImplementation == kPortableImplementation)
    {
        sCurrent = sPortable;
        return;
    }
    XAssertText(sBest != nullptr, "an optimised implementation for this processor");
    sCurrent = sBest;
}

void XVectorMathTool::VectorMultiplyAndDivide(const float * a, const float * b, float aScalar,
                                              float * o, UInt64 n)
{
    XAssert(aScalar != 0.0);
    sCurrent->VectorMultiplyAndDivide(a, b, aScalar, o, n);
}

void XVectorMathTool::VectorLogBaseX(const float * a, float * o, float aBase, UInt64 n)
{
    XAssert(aBase > 0);
    sCurrent->VectorLogBaseX(a, o, aBase, n);
}

void XVectorMathTool::VectorDivide(const float * a, float aScalar, float * o, UInt64 n)
{
    XAssert(aScalar != 0.0);
    VectorMultiply(a, 1.f / aScalar, o, n);
}

void XVectorMathTool::VectorLogNatural(const float * a, float * o, UInt64 n)
{
    VectorLogBaseX(a, o, std::exp(1.0f), n);
}

void XVectorMathTool::VectorLogBaseTen(const float * a, float * o, UInt64 n)
{
    VectorLogBaseX(a, o, 10.0f, n);
}

namespace
{
// One operation of the self-timing: its name, whether it gives an array (in o) to compare,
// and a call of it through XVectorMathTool on the two input volumes a and b.
struct XTimedOperation
{
    const char * itsName;
    bool itsHasArray;
    void (*itsRun)(const float * a, const float * b, float * o, UInt64 n);
};

using V = XVectorMathTool;
constexpr float kScale = 0.5f;

const XTimedOperation kTimedOperations[] = {
    {"VectorAdd", true, [](const float * a, const float * b, float * o, UInt64 n) { V::VectorAdd(a, b, o, n); }},
    {"VectorSubtract", true, [](const float * a, const float * b, float * o, UInt64 n) { V::VectorSubtract(a, b, o, n); }},
    {"VectorMultiply", true, [](const float * a, const float * b, float * o, UInt64 n) { V::VectorMultiply(a, b, o, n); }},
    {"VectorComplexMultiply", true, [](const float * a, const float * b, float * o, UInt64 n) { V::VectorComplexMultiply(a, b, o, n / 2); }},
    {"VectorDivide", true, [](const float * a, const float * b, float * o, UInt64 n) { V::VectorDivide(a, b, o, n); }},
    {"VectorSquare", true, [](const float * a, const float *, float * o, UInt64 n) { V::VectorSquare(a, o, n); }},
    {"VectorDotProduct", false, [](const float * a, const float * b, float *, UInt64 n) { V::VectorDotProduct(a, b, n); }},
    {"VectorDotProduct64", false, [](const float * a, const float * b, float *, UInt64 n) { V::VectorDotProduct64(a, b, n); }},
    {"VectorAddAndMultiply", true, [](const float * a, const float * b, float * o, UInt64 n) { V::VectorAddAndMultiply(a, b, a, o, n); }},
    {"VectorFillReal", true, [](const float *, const float *, float * o, UInt64 n) { V::VectorFillReal(kScale, o, n); }},
    {"VectorLogNatural", true, [](const float * a, const float *, float * o, UInt64 n) { V::VectorLogNatural(a, o, n); }},
    {"VectorLogBaseTen", true, [](const float * a, const float *, float * o, UInt64 n) { V::VectorLogBaseTen(a, o, n); }},
    {"VectorMultiplyAndDivide", true, [](const float * a, const float * b, float * o, UInt64 n) { V::VectorMultiplyAndDivide(a, b, a, o, n); }},
    {"VectorSqrt", true, [](const float * a, const float *, float * o, UInt64 n) { V::VectorSqrt(a, o, n); }},
    {"VectorReciprocalSqrt", true, [](const float * a, const float *, float * o, UInt64 n) { V::VectorReciprocalSqrt(a, o, n); }},
    {"VectorSum", false, [](const float * a, const float *, float *, UInt64 n) { V::VectorSum(a, n); }},
    {"VectorSum64", false, [](const float * a, const float *, float *, UInt64 n) { V::VectorSum64(a, n); }},
    {"VectorFindMaxValue", false, [](const float * a, const float *, float *, UInt64 n) { V::VectorFindMaxValue(a, n); }},
    {"VectorFindMinValue", false, [](const float * a, const float *, float *, UInt64 n) { V::VectorFindMinValue(a, n); }},
    {"VectorFindMinMaxValue", false, [](const float * a, const float *, float *, UInt64 n) { float lo, hi; V::VectorFindMinMaxValue(a, lo, hi, n); }},
    {"VectorReciprocal", true, [](const float * a, const float *, float * o, UInt64 n) { V::VectorReciprocal(a, o, n); }},
    {"VectorDotProductDivide", false, [](const float * a, const float * b, float *, UInt64 n) { V::VectorDotProductDivide(a, b, a, n); }},
    {"VectorDotProductDivide64", false, [](const float * a, const float * b, float *, UInt64 n) { V::VectorDotProductDivide64(a, b, a, n); }},
    {"VectorClampBelow", true, [](const float * a, const float *, float * o, UInt64 n) { V::VectorClampBelow(a, o, float(n / 2), n); }},
    {"VectorClampAbove", true, [](const float * a, const float *, float * o, UInt64 n) { V::VectorClampAbove(a, o, float(n / 2), n); }},
    {"VectorWeightedEntropy", false, [](const float * a, const float *, float *, UInt64 n) { float e, w; V::VectorWeightedEntropy(a, e, w, n); }},
    {"VectorChiSquared", false, [](const float * a, const float * b, float *, UInt64 n) { V::VectorChiSquared(a, b, a, n); }},
    {"VectorChiSquared64", false, [](const float * a, const float * b, float *, UInt64 n) { V::VectorChiSquared64(a, b, a, n); }},
    {"VectorScalarSubtract", true, [](const float * a, const float * b, float * o, UInt64 n) { V::VectorScalarSubtract(a, b, 3.f, kScale, o, n); }},
    {"VectorSquareMultiplySum", false, [](const float * a, const float * b, float *, UInt64 n) { V::VectorSquareMultiplySum(a, b, n); }},
    {"VectorSquareMultiplySum64", false, [](const float * a, const float * b, float *, UInt64 n) { V::VectorSquareMultiplySum64(a, b, n); }},
    {"VectorSearchDerivatives64", false, [](const float * a, const float * b, float *, UInt64 n) { double d1, d2; V::VectorSearchDerivatives64(a, b, b, kScale, d1, d2, n); }},
    {"VectorCalcSearchVec1", true, [](const float * a, const float *, float * o, UInt64 n) { float q; V::VectorCalcSearchVec1(a, o, kScale, q, n); }},
    {"VectorCalcSearchVec1_64", true, [](const float * a, const float *, float * o, UInt64 n) { double q; V::VectorCalcSearchVec1_64(a, o, kScale, q, n); }},
    {"VectorCalcSearchVec2", true, [](const float * a, const float * b, float * o, UInt64 n) { float q; V::VectorCalcSearchVec2(a, b, o, q, n); }},
    {"VectorCalcSearchVec2_64", true, [](const float * a, const float * b, float * o, UInt64 n) { double q; V::VectorCalcSearchVec2_64(a, b, o, q, n); }},
    {"VectorCalcSearchVecs1And2", true, [](const float * a, const float * b, float * o, UInt64 n) { float q1, q2; V::VectorCalcSearchVecs1And2(a, b, o, o, kScale, q1, q2, n); }},
    {"VectorCalcSearchVecs1And2_64", true, [](const float * a, const float * b, float * o, UInt64 n) { double q1, q2; V::VectorCalcSearchVecs1And2_64(a, b, o, o, kScale, q1, q2, n); }},
};

// Runs one operation with anImplementation current and returns the time it took, in ns.
SInt64 TimeOne(const XTimedOperation & anOperation, XVectorMathTool::XImplementation anImplementation,
               const float * a, const float * b, float * o, UInt64 n)
{
    XVectorMathTool::SetImplementation(anImplementation);
    const SInt64 start = XTimer::GetNow(kTimerNanoseconds);
    anOperation.itsRun(a, b, o, n);
    return XTimer::GetNow(kTimerNanoseconds) - start;
}

XString FormatNumber(double aValue)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.2f", aValue);
    return XString(text);
}
} // namespace

void XVectorMathTool::FillVolume(XMemoryHandle & aVolume, float aBase)
{
    XLock lock(aVolume, kLockWrite);
    float * values = static_cast<float *>(aVolume.GetData());
    const UInt64 count = aVolume.GetDataSize() / sizeof(float);
    for (UInt64 k = 0; k < count; ++k)
        values[k] = aBase + float(k);
}

double XVectorMathTool::Compare(const XMemoryHandle & aVolume1, const XMemoryHandle & aVolume2)
{
    const float * x = static_cast<const float *>(aVolume1.GetData());
    const float * y = static_cast<const float *>(aVolume2.GetData());
    const UInt64 count = aVolume1.GetDataSize() / sizeof(float);
    double largest = 0.0;
    for (UInt64 k = 0; k < count; ++k)
    {
        const double difference = std::fabs((double(x[k]) - double(y[k])) * 100.0 / double(x[k]));
        if (difference > largest)
            largest = difference;
    }
    return largest;
}

void XVectorMathTool::WriteOut(const char * aName, double aMaxPercentDiff, SInt64 aPortableTime,
                               SInt64 aBestTime, bool aHasDiff)
{
    const double speedUp = double(aPortableTime - aBestTime) * 100.0 / double(aPortableTime);
    XString text(aHasDiff ? "Operation = %1 : Percentage speed up = %2 : Max percent diff = %3"
                          : "Operation = %1 : Percentage speed up = %2");
    text.Replace("%1", aName);
    text.Replace("%2", FormatNumber(speedUp));
    text.Replace("%3", FormatNumber(aMaxPercentDiff));
    XSessionLogManager::AddEntry(text);
}

void XVectorMathTool::TestFunctions(SInt32 aX, SInt32 aY, SInt32 aZ)
{
    XAssert(aX > 0 && aY > 0 && aZ > 0);
    const UInt64 n = UInt64(aX) * UInt64(aY) * UInt64(aZ);
    XMemoryHandle volumes[4] = {XMemoryHandle(n * sizeof(float)), XMemoryHandle(n * sizeof(float)),
                                XMemoryHandle(n * sizeof(float)), XMemoryHandle(n * sizeof(float))};
    for (int k = 0; k < 4; ++k)
        FillVolume(volumes[k], float(k + 1));

    XVectorMathToolImp * const previous = sCurrent;
    // Without an optimised implementation both runs use the portable one.
    const XImplementation best = sBest != nullptr ? kBestImplementation : kPortableImplementation;
    {
        XLock lock1(volumes[0], kLockRead);
        XLock lock2(volumes[1], kLockRead);
        XLock lock3(volumes[2], kLockWrite);
        XLock lock4(volumes[3], kLockWrite);
        const float * a = static_cast<const float *>(volumes[0].GetData());
        const float * b = static_cast<const float *>(volumes[1].GetData());
        float * portableOut = static_cast<float *>(volumes[2].GetData());
        float * bestOut = static_cast<float *>(volumes[3].GetData());
        for (const XTimedOperation & operation : kTimedOperations)
        {
            const SInt64 portableTime =
                TimeOne(operation, kPortableImplementation, a, b, portableOut, n);
            const SInt64 bestTime = TimeOne(operation, best, a, b, bestOut, n);
            const double difference =
                operation.itsHasArray ? Compare(volumes[2], volumes[3]) : 0.0;
            WriteOut(operation.itsName, difference, portableTime, bestTime, operation.itsHasArray);
        }
    }
    sCurrent = previous;
}
