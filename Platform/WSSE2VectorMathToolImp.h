#pragma once
// The vector kernels with SSE2: those of WSSEVectorMathToolImp, and the sums in double of
// VectorDotProduct64, VectorSum64, VectorDotProductDivide64, VectorChiSquared64,
// VectorSquareMultiplySum64 and VectorCalcSearchVec2_64. Each forms four terms in single
// precision as the float sum does, widens lanes 0 and 1 and lanes 2 and 3 onto one two-lane
// double accumulator, adds its lanes (high + low) at the end and then the tail term by term.
// Misaligned arrays go to the portable loops.
//
// VectorLogBaseX runs the fast logarithm on four floats at a time with SSE2's integer
// operations on their bits. Its results are those of the portable loop bit for bit: the same
// float operations in the same order.
//
// VectorChiSquared64 adds, for lanes 0 and 1 of each group, the input value a itself instead
// of the chi-squared term (lanes 2 and 3 and the tail add true terms). This is kept on
// purpose: results that callers have stored depend on it.

#include "WSSEVectorMathToolImp.h"

class WSSE2VectorMathToolImp : public WSSEVectorMathToolImp
{
public:
    WSSE2VectorMathToolImp() = default;
    ~WSSE2VectorMathToolImp() override;

    double VectorDotProduct64(const float * a, const float * b, UInt64 n) override;
    double VectorSum64(const float * a, UInt64 n) override;
    double VectorDotProductDivide64(const float * a, const float * b, const float * c,
                                    UInt64 n) override;
    double VectorChiSquared64(const float * a, const float * b, const float * c,
                              UInt64 n) override;
    double VectorSquareMultiplySum64(const float * a, const float * b, UInt64 n) override;
    void VectorCalcSearchVec2_64(const float * a, const float * b, float * o, double & outQ,
                                 UInt64 n) override;
    void VectorLogBaseX(const float * a, float * o, float aBase, UInt64 n) override;
};
