// XMiniVector and XMiniSquareMatrix: the vector measures, building a matrix, the symmetric
// eigen system (a diagonal matrix, size 1, a 2 by 2 case traced by hand through one Jacobi
// rotation, and tridiagonal matrices with eigenvalues known in closed form), the cache of the
// eigen system, and the assertions.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <string>
#include <vector>

#include "XInternalError.h"
#include "XMiniSquareMatrix.h"
#include "XMiniVector.h"
#include "XTestSupport.h"

namespace
{
XMiniSquareMatrix Build(SInt32 aSize, std::initializer_list<float> someRowMajorValues)
{
    XMiniSquareMatrix matrix(aSize);
    SInt32 k = 0;
    for (float value : someRowMajorValues)
        matrix.Set(k / aSize, k % aSize, value), ++k;
    return matrix;
}

// The tridiagonal matrix with 2 on the diagonal and -1 beside it; its eigenvalues are
// 2 - 2 cos(k pi / (size + 1)), k = 1 .. size.
XMiniSquareMatrix SecondDifference(SInt32 aSize)
{
    XMiniSquareMatrix matrix(aSize);
    for (SInt32 i = 0; i < aSize; ++i)
    {
        matrix.Set(i, i, 2.f);
        if (i + 1 < aSize)
            matrix.Set(i, i + 1, -1.f), matrix.Set(i + 1, i, -1.f);
    }
    return matrix;
}

std::vector<float> EigenValues(const XMiniSquareMatrix & aMatrix)
{
    XMiniVector values(aMatrix.GetSize());
    aMatrix.GetEigenValues(values);
    std::vector<float> result;
    for (SInt32 i = 0; i < values.GetSize(); ++i)
        result.push_back(values[i]);
    return result;
}
} // namespace

TEST(MiniVector, MeasuresAndProducts)
{
    XMiniVector v(2), other(2);
    v[0] = 2.f, v[1] = 4.f;
    other[0] = 1.f, other[1] = 8.f;
    EXPECT_EQ(v.GetMagnitude(), 20.f); // the sum of squares, not its root
    EXPECT_FLOAT_EQ(v.GetLength(), 4.472136f);
    EXPECT_EQ(v.GetNormalisedMagnitude(other), 6.f); // 4 / 1 + 16 / 8
    v *= 0.5f;
    EXPECT_EQ(v[0], 1.f);
    EXPECT_EQ(v[1], 2.f);
    // [[1, 2], [3, 4]] (1, 2) = (5, 11).
    v.PreMultiply(Build(2, {1.f, 2.f, 3.f, 4.f}));
    EXPECT_EQ(v[0], 5.f);
    EXPECT_EQ(v[1], 11.f);
    EXPECT_EQ(XMiniVector(3)[2], 0.f);
}

TEST(MiniVector, Assertions)
{
    EXPECT_EQ(AssertionOf([] { XMiniVector v(9); }), "theSize <= kMaxSize");
    EXPECT_EQ(AssertionOf([] { XMiniVector v(8); }), "");
    XMiniVector v(2);
    EXPECT_EQ(AssertionOf([&] { v[2] = 1.f; }), "idx<size");
    EXPECT_EQ(AssertionOf([&] { v.PreMultiply(XMiniSquareMatrix(3)); }), "matrix.GetSize() == GetSize()");
}

TEST(MiniSquareMatrix, BuildingTransposeAndSymmetry)
{
    // The constructor from values fills the first row only.
    const float values[] = {1.f, 2.f, 3.f, 4.f, 5.f, 6.f, 7.f, 8.f, 9.f};
    XMiniSquareMatrix first(values, 3);
    EXPECT_EQ(first.Get(0, 2), 3.f);
    EXPECT_EQ(first.Get(1, 0), 0.f);
    XMiniVector row(3);
    first.GetRow(0, row);
    EXPECT_EQ(row[1], 2.f);

    XMiniSquareMatrix m = Build(2, {1.f, 2.f, 4.f, 3.f});
    m.Transpose();
    EXPECT_EQ(m.Get(0, 1), 4.f);
    EXPECT_EQ(m.Get(1, 0), 2.f);
    m.ForceSymmetric();
    EXPECT_EQ(m.Get(0, 1), 3.f);
    EXPECT_EQ(m.Get(1, 0), 3.f);
    EXPECT_EQ(m.Get(1, 1), 3.f);
}

TEST(MiniSquareMatrix, Assertions)
{
    XMiniSquareMatrix m(2);
    EXPECT_EQ(AssertionOf([&] { m.Set(8, 0, 1.f); }), "(i>=0) && (i<kMaxSize)");
    EXPECT_EQ(AssertionOf([&] { m.Get(0, -1); }), "(j>=0) && (j<kMaxSize)");
    // Indices are checked against the capacity, not the size.
    EXPECT_EQ(AssertionOf([&] { m.Set(5, 7, 1.f); }), "");
    XMiniSquareMatrix three(3);
    EXPECT_EQ(AssertionOf([&] { m.GetEigenVectors(three); }), "dest.GetSize() == GetSize()");
    XMiniVector values(3);
    EXPECT_EQ(AssertionOf([&] { m.GetEigenValues(values); }), "dest.GetSize() == size");
}

TEST(MiniSquareMatrix, EigenSystemOfDiagonalAndSingleElementMatrices)
{
    // No off-diagonal sum: the diagonal stands, in its order, and the eigenvectors are unit.
    const XMiniSquareMatrix diagonal = Build(3, {3.f, 0.f, 0.f, 0.f, -1.f, 0.f, 0.f, 0.f, 2.f});
    EXPECT_EQ(EigenValues(diagonal), (std::vector<float>{3.f, -1.f, 2.f}));
    XMiniSquareMatrix vectors(3);
    diagonal.GetEigenVectors(vectors);
    for (SInt32 i = 0; i < 3; ++i)
        for (SInt32 j = 0; j < 3; ++j)
            EXPECT_EQ(vectors.Get(i, j), i == j ? 1.f : 0.f);
    EXPECT_EQ(EigenValues(Build(1, {-4.5f})), std::vector<float>{-4.5f});
    EXPECT_TRUE(EigenValues(XMiniSquareMatrix(0)).empty());
}

TEST(MiniSquareMatrix, EigenSystemOfTwoByTwoByOneRotation)
{
    // [[2, 1], [1, 2]]: equal diagonal, so theta = 0, t = 1, c = s = 1/sqrt(2), and the
    // diagonal becomes 2 - 1 and 2 + 1. Eigenvector columns (1, -1) and (1, 1), normalised.
    const XMiniSquareMatrix m = Build(2, {2.f, 1.f, 1.f, 2.f});
    XMiniSquareMatrix vectors(2);
    m.GetEigenVectors(vectors);
    const float r = 0.70710678f;
    EXPECT_FLOAT_EQ(vectors.Get(0, 0), r);
    EXPECT_FLOAT_EQ(vectors.Get(1, 0), -r);
    EXPECT_FLOAT_EQ(vectors.Get(0, 1), r);
    EXPECT_FLOAT_EQ(vectors.Get(1, 1), r);
}

TEST(MiniSquareMatrix, EigenSystemsOfTridiagonalMatrices)
{
    for (SInt32 size : {3, 5, 8})
    {
        SCOPED_TRACE(size);
        const XMiniSquareMatrix m = SecondDifference(size);
        std::vector<float> values = EigenValues(m);
        std::vector<float> sorted = values;
        std::sort(sorted.begin(), sorted.end());
        for (SInt32 k = 1; k <= size; ++k)
            EXPECT_NEAR(sorted[k - 1], 2.0 - 2.0 * std::cos(k * std::numbers::pi / (size + 1)), 2e-6);
        // Each column k is a unit eigenvector of eigenvalue k, orthogonal to the others.
        XMiniSquareMatrix vectors(size);
        m.GetEigenVectors(vectors);
        for (SInt32 k = 0; k < size; ++k)
        {
            XMiniVector v(size);
            for (SInt32 i = 0; i < size; ++i)
                v[i] = vectors.Get(i, k);
            EXPECT_NEAR(v.GetLength(), 1.f, 1e-5);
            XMiniVector product = v;
            product.PreMultiply(m);
            for (SInt32 i = 0; i < size; ++i)
                EXPECT_NEAR(product[i], values[k] * v[i], 1e-5) << "column " << k;
            for (SInt32 other = k + 1; other < size; ++other)
            {
                float dot = 0.f;
                for (SInt32 i = 0; i < size; ++i)
                    dot += v[i] * vectors.Get(i, other);
                EXPECT_NEAR(dot, 0.f, 1e-5);
            }
        }
    }
}

TEST(MiniSquareMatrix, EigenSystemIsCachedAndCopiedWithTheRecord)
{
    XMiniSquareMatrix m = Build(2, {2.f, 1.f, 1.f, 2.f});
    EXPECT_EQ(EigenValues(m), (std::vector<float>{1.f, 3.f}));
    // Later changes are not seen: the system is computed once.
    m.Set(0, 1, 0.f), m.Set(1, 0, 0.f);
    EXPECT_EQ(EigenValues(m), (std::vector<float>{1.f, 3.f}));
    const XMiniSquareMatrix copy = m;
    EXPECT_EQ(EigenValues(copy), (std::vector<float>{1.f, 3.f}));

    // A destination of GetEigenVectors computes its own system afresh: its elements are now
    // [[r, r], [-r, r]], whose upper triangle is that of [[r, r], [r, r]], eigenvalues 0 and 2r.
    XMiniSquareMatrix dest = Build(2, {7.f, 0.f, 0.f, 8.f});
    EXPECT_EQ(EigenValues(dest), (std::vector<float>{7.f, 8.f}));
    Build(2, {2.f, 1.f, 1.f, 2.f}).GetEigenVectors(dest);
    const std::vector<float> values = EigenValues(dest);
    EXPECT_NEAR(values[0], 0.f, 1e-7);
    EXPECT_FLOAT_EQ(values[1], 1.4142135f);
}
