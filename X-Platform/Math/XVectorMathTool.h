#pragma once
// The single entry point for arithmetic on long arrays of floats: static operations, each
// forwarded to one process-wide implementation. When the library is loaded the best
// implementation for the processor is built (WSSE2VectorMathToolImp with SSE2,
// WSSEVectorMathToolImp with SSE only, none without SSE) beside the portable one
// (XVectorMathToolImp), and becomes the current one; SetImplementation switches between the
// two. The objects live until the process ends.
//
// The operations and their arguments are those of XVectorMathToolImp (see there). The
// optimised forms work in groups of four floats on 16-byte aligned arrays and hand any call
// with a misaligned array to the portable loops, so the aligned forms differ from the portable
// ones in the last bits of divisions and square roots, in the order of summation, and in a few
// deliberate ways told in WSSEVectorMathToolImp.h.
//
// The operations are re-entrant. SetImplementation and TestFunctions change the shared current
// implementation without a lock: call them in a quiet process.

#include "XMiniSquareMatrix.h"
#include "XString.h"
#include "XTypes.h"
#include "XVectorMathToolImp.h"

class XMemoryHandle;

class XVectorMathTool
{
public:
    enum XImplementation : SInt32
    {
        kPortableImplementation = 0, // the portable loops
        kBestImplementation = 1      // any value but 0: the processor's own implementation
    };

    XVectorMathTool() = delete;

    // Makes the portable implementation (0) or the best one (any other value) current. Asking
    // for the best one on a processor without SSE, which has none, is an internal error, and
    // the portable one stays current.
    static void SetImplementation(XImplementation anImplementation);
    static XVectorMathToolImp * GetCurrentImplementation() { return sCurrent; }
    static XVectorMathToolImp * GetPortableImplementation() { return sPortable; }
    // Null when the processor has no SSE.
    static XVectorMathToolImp * GetBestImplementation() { return sBest; }
    // A new implementation for the processor's features as they are reported now (see
    // XIntelCPUInfo::SetFeatureEnabled): the SSE2 one, the SSE one, or null without SSE. The
    // caller owns it.
    static XVectorMathToolImp * BuildOptimisedImplementation();

    static void VectorAdd(const float * a, float s, float * o, UInt64 n) { sCurrent->VectorAdd(a, s, o, n); }
    static void VectorAdd(const float * a, const float * b, float * o, UInt64 n) { sCurrent->VectorAdd(a, b, o, n); }
    static void VectorSubtract(const float * a, const float * b, float * o, UInt64 n) { sCurrent->VectorSubtract(a, b, o, n); }
    static void VectorMultiply(const float * a, float s, float * o, UInt64 n) { sCurrent->VectorMultiply(a, s, o, n); }
    static void VectorMultiply(const float * a, const float * b, float * o, UInt64 n) { sCurrent->VectorMultiply(a, b, o, n); }
    static void VectorComplexDivide(const float * a, const float * b, float * o, UInt64 n) { sCurrent->VectorComplexDivide(a, b, o, n); }
    static void VectorComplexMultiply(const float * a, const float * b, float * o, UInt64 n) { sCurrent->VectorComplexMultiply(a, b, o, n); }
    static void VectorComplexMagnitude(const float * a, float * o, UInt64 n) { sCurrent->VectorComplexMagnitude(a, o, n); }
    static void VectorComplexReciprocal(const float * a, float * o, UInt64 n) { sCurrent->VectorComplexReciprocal(a, o, n); }
    static void VectorDivide(const float * a, const float * b, float * o, UInt64 n) { sCurrent->VectorDivide(a, b, o, n); }
    static void VectorMultiplyAndDivide(const float * a, const float * b, const float * c, float * o, UInt64 n) { sCurrent->VectorMultiplyAndDivide(a, b, c, o, n); }
    static void VectorMultiplyAndDivide(const float * a, float s, const float * b, float * o, UInt64 n) { sCurrent->VectorMultiplyAndDivide(a, s, b, o, n); }
    // o = a * b / aScalar; aScalar must not be zero (asserted).
    static void VectorMultiplyAndDivide(const float * a, const float * b, float aScalar, float * o, UInt64 n);
    static void VectorSquare(const float * a, float * o, UInt64 n) { sCurrent->VectorSquare(a, o, n); }
    static float VectorDotProduct(const float * a, const float * b, UInt64 n) { return sCurrent->VectorDotProduct(a, b, n); }
    static double VectorDotProduct64(const float * a, const float * b, UInt64 n) { return sCurrent->VectorDotProduct64(a, b, n); }
    static void VectorAddAndMultiply(const float * a, const float * b, const float * c, float * o, UInt64 n) { sCurrent->VectorAddAndMultiply(a, b, c, o, n); }
    static void VectorFillReal(float s, float * o, UInt64 n) { sCurrent->VectorFillReal(s, o, n); }
    // o = the logarithm of a to aBase (by the fast logarithm); aBase > 0 (asserted).
    static void VectorLogBaseX(const float * a, float * o, float aBase, UInt64 n);
    static void VectorSqrt(const float * a, float * o, UInt64 n) { sCurrent->VectorSqrt(a, o, n); }
    static void VectorReciprocalSqrt(const float * a, float * o, UInt64 n) { sCurrent->VectorReciprocalSqrt(a, o, n); }
    static float VectorSum(const float * a, UInt64 n) { return sCurrent->VectorSum(a, n); }
    static double VectorSum64(const float * a, UInt64 n) { return sCurrent->VectorSum64(a, n); }
    static float VectorFindMaxValue(const float * a, UInt64 n) { return sCurrent->VectorFindMaxValue(a, n); }
    static float VectorFindMinValue(const float * a, UInt64 n) { return sCurrent->VectorFindMinValue(a, n); }
    static void VectorFindMinMaxValue(const float * a, float & outMin, float & outMax, UInt64 n) { sCurrent->VectorFindMinMaxValue(a, outMin, outMax, n); }
    static void VectorReciprocal(const float * a, float * o, UInt64 n) { sCurrent->VectorReciprocal(a, o, n); }
    static float VectorDotProductDivide(const float * a, const float * b, const float * c, UInt64 n) { return sCurrent->VectorDotProductDivide(a, b, c, n); }
    static double VectorDotProductDivide64(const float * a, const float * b, const float * c, UInt64 n) { return sCurrent->VectorDotProductDivide64(a, b, c, n); }
    static void VectorClampBelow(const float * a, float * o, float s, UInt64 n) { sCurrent->VectorClampBelow(a, o, s, n); }
    static void VectorClampAbove(const float * a, float * o, float s, UInt64 n) { sCurrent->VectorClampAbove(a, o, s, n); }
    static void VectorWeightedEntropy(const float * a, float & outEntropy, float & outWeight, UInt64 n) { sCurrent->VectorWeightedEntropy(a, outEntropy, outWeight, n); }
    static void VectorWeightedEntropy64(const float * a, double & outEntropy, double & outWeight, UInt64 n) { sCurrent->VectorWeightedEntropy64(a, outEntropy, outWeight, n); }
    static float VectorChiSquared(const float * a, const float * b, const float * c, UInt64 n) { return sCurrent->VectorChiSquared(a, b, c, n); }
    static double VectorChiSquared64(const float * a, const float * b, const float * c, UInt64 n) { return sCurrent->VectorChiSquared64(a, b, c, n); }
    static void VectorScalarSubtract(const float * a, const float * b, float s, float t, float * o, UInt64 n) { sCurrent->VectorScalarSubtract(a, b, s, t, o, n); }
    static float VectorSquareMultiplySum(const float * a, const float * b, UInt64 n) { return sCurrent->VectorSquareMultiplySum(a, b, n); }
    static double VectorSquareMultiplySum64(const float * a, const float * b, UInt64 n) { return sCurrent->VectorSquareMultiplySum64(a, b, n); }
    static void VectorSearchDerivatives(const float * a, const float * b, const float * c, float s, float & outD1, float & outD2, UInt64 n) { sCurrent->VectorSearchDerivatives(a, b, c, s, outD1, outD2, n); }
    static void VectorSearchDerivatives64(const float * a, const float * b, const float * c, double s, double & outD1, double & outD2, UInt64 n) { sCurrent->VectorSearchDerivatives64(a, b, c, s, outD1, outD2, n); }
    static void VectorCalcSearchVec1(const float * a, float * o, float s, float & outQ, UInt64 n) { sCurrent->VectorCalcSearchVec1(a, o, s, outQ, n); }
    static void VectorCalcSearchVec1_64(const float * a, float * o, float s, double & outQ, UInt64 n) { sCurrent->VectorCalcSearchVec1_64(a, o, s, outQ, n); }
    static void VectorCalcSearchVec2(const float * a, const float * b, float * o, float & outQ, UInt64 n) { sCurrent->VectorCalcSearchVec2(a, b, o, outQ, n); }
    static void VectorCalcSearchVec2_64(const float * a, const float * b, float * o, double & outQ, UInt64 n) { sCurrent->VectorCalcSearchVec2_64(a, b, o, outQ, n); }
    static void VectorCalcSearchVecs1And2(const float * a, const float * b, float * o1, float * o2, float s, float & outQ1, float & outQ2, UInt64 n) { sCurrent->VectorCalcSearchVecs1And2(a, b, o1, o2, s, outQ1, outQ2, n); }
    static void VectorCalcSearchVecs1And2_64(const float * a, const float * b, float * o1, float * o2, float s, double & outQ1, double & outQ2, UInt64 n) { sCurrent->VectorCalcSearchVecs1And2_64(a, b, o1, o2, s, outQ1, outQ2, n); }
    static void VectorTransform(float ** somePlanes, SInt32 someDimension, const XMiniSquareMatrix & aMatrix, UInt64 n) { sCurrent->VectorTransform(somePlanes, someDimension, aMatrix, n); }

    // Forms built on the operations above.
    // o = a - s
    static void VectorSubtract(const float * a, float s, float * o, UInt64 n) { VectorAdd(a, -s, o, n); }
    // Complex sums and differences, and a complex vector times a real scalar (n complex values).
    static void VectorComplexAdd(const float * a, const float * b, float * o, UInt64 n) { VectorAdd(a, b, o, 2 * n); }
    static void VectorComplexSubtract(const float * a, const float * b, float * o, UInt64 n) { VectorSubtract(a, b, o, 2 * n); }
    static void VectorComplexMultiply(const float * a, float s, float * o, UInt64 n) { VectorMultiply(a, s, o, 2 * n); }
    // o = a * (1 / aScalar); aScalar must not be zero (asserted).
    static void VectorDivide(const float * a, float aScalar, float * o, UInt64 n);
    // Natural and decimal logarithms by the fast logarithm.
    static void VectorLogNatural(const float * a, float * o, UInt64 n);
    static void VectorLogBaseTen(const float * a, float * o, UInt64 n);

    // A diagnostic: times each operation on aX * aY * aZ floats (four blocks, filled with
    // 1 + k, 2 + k, 3 + k, 4 + k; the third and fourth take the results) with the portable and
    // the best implementation, compares the two results, and adds one line per operation to
    // the session log: "Operation = <name> : Percentage speed up = <p> : Max percent diff = <d>"
    // (without the last part for operations that give no array), in nanoseconds and with two
    // decimals. The current implementation is restored afterwards.
    static void TestFunctions(SInt32 aX, SInt32 aY, SInt32 aZ);

private:
    // Builds the implementations when the library is loaded; returns the optimised one.
    static XVectorMathToolImp * Init();
    // Sets every float of aVolume to aBase + its index.
    static void FillVolume(XMemoryHandle & aVolume, float aBase);
    // The largest abs((x - y) * 100 / x) over corresponding floats of the two volumes.
    static double Compare(const XMemoryHandle & aVolume1, const XMemoryHandle & aVolume2);
    // Adds the session-log line of one operation.
    static void WriteOut(const char * aName, double aMaxPercentDiff, SInt64 aPortableTime,
                         SInt64 aBestTime, bool aHasDiff);

    static XVectorMathToolImp * sPortable;
    static XVectorMathToolImp * sBest;
    static XVectorMathToolImp * sCurrent;
};
