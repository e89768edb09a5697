// X3DMatrix: shared storage with copy on write, solving and inversion (with pivoting, singular
// and ill-shaped operands), the arithmetic and its size checks, the pieces of a matrix, the
// vector measures, the geometric builders and the exception's texts. Expected values are
// worked out by hand.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <sstream>
#include <string>

#include "X3DMatrix.h"
#include "XInternalError.h"
#include "XMatrixException.h"

namespace
{
X3DMatrix Make(SInt32 aRows, SInt32 aColumns, std::initializer_list<double> someValues)
{
    return X3DMatrix(aRows, aColumns, someValues.begin());
}

// The message of the XMatrixException that anAction raises, or "" when it raises none.
std::string MatrixErrorOf(const std::function<void()> & anAction)
{
    try
    {
        anAction();
    }
    catch (const XMatrixException & anError)
    {
        EXPECT_EQ(anError.GetErrorNumber(), 2302u);
        return anError.GetErrorStr().GetStdString();
    }
    return "";
}

void ExpectMatrix(const X3DMatrix & aMatrix, SInt32 aRows, SInt32 aColumns,
                  std::initializer_list<double> someValues, double aTolerance = 1e-12)
{
    ASSERT_EQ(aMatrix.GetHeight(), aRows);
    ASSERT_EQ(aMatrix.GetWidth(), aColumns);
    const double * value = someValues.begin();
    for (SInt32 r = 0; r < aRows; ++r)
        for (SInt32 c = 0; c < aColumns; ++c)
            EXPECT_NEAR(aMatrix(r, c), *value++, aTolerance) << "(" << r << ", " << c << ")";
}

const char * const kSingularSolve = "matrixT::Solve(): Singular matrix!";
} // namespace

TEST(X3DMatrix, CopiesShareUntilWritten)
{
    X3DMatrix first = Make(2, 2, {1, 2, 3, 4});
    X3DMatrix copy = first;
    EXPECT_TRUE(first.IsShared());
    const X3DMatrix & constCopy = copy;
    EXPECT_EQ(constCopy(1, 1), 4.0); // reading does not separate them
    EXPECT_TRUE(first.IsShared());
    copy(0, 0) = 9.0;
    EXPECT_FALSE(first.IsShared());
    EXPECT_EQ(first(0, 0), 1.0);
    EXPECT_EQ(copy(0, 0), 9.0);
    copy = first;
    copy.SetElement(1, 0, -1.0);
    EXPECT_EQ(first.GetElement(1, 0), 3.0);

    const X3DMatrix unit;
    ExpectMatrix(unit, 1, 1, {0});
    EXPECT_EQ(MatrixErrorOf([&] { unit(1, 0); }), "matrixT::operator(): Index out of range!");
    EXPECT_EQ(MatrixErrorOf([&] { first(0, -1) = 1.0; }), "matrixT::operator(): Index out of range!");
}

TEST(X3DMatrix, SolveWithPivoting)
{
    // [[2, 1], [1, 3]] x = (3, 5): x = (0.8, 1.4).
    ExpectMatrix(Make(2, 2, {2, 1, 1, 3}).Solve(X3DMatrix::ColumnVector(3, 5)), 2, 1, {0.8, 1.4});
    // A zero first pivot needs a row exchange. [[0, 1, 1], [1, 0, 1], [1, 1, 0]] x = (5, 4, 3)
    // gives (1, 2, 3); with a second right-hand side (2, 2, 2) the solution (1, 1, 1).
    const X3DMatrix a = Make(3, 3, {0, 1, 1, 1, 0, 1, 1, 1, 0});
    ExpectMatrix(a.Solve(Make(3, 2, {5, 2, 4, 2, 3, 2})), 3, 2, {1, 1, 2, 1, 3, 1});
    ExpectMatrix(a, 3, 3, {0, 1, 1, 1, 0, 1, 1, 1, 0});
}

TEST(X3DMatrix, SolveRefusesSingularAndIllShapedSystems)
{
    const X3DMatrix singular = Make(2, 2, {1, 2, 2, 4});
    EXPECT_EQ(MatrixErrorOf([&] { singular.Solve(X3DMatrix::ColumnVector(1, 2)); }), kSingularSolve);
    ExpectMatrix(singular, 2, 2, {1, 2, 2, 4});
    EXPECT_EQ(MatrixErrorOf([] { Make(2, 3, {1, 0, 0, 0, 1, 0}).Solve(X3DMatrix::ColumnVector(1, 2)); }),
              "matrixT::Solve():Inconsistent matrices!");
    EXPECT_EQ(MatrixErrorOf([] { X3DMatrix::UnitMatrix(2).Solve(X3DMatrix::ColumnVector(1, 2, 3)); }),
              "matrixT::Solve():Inconsistent matrices!");
}

TEST(X3DMatrix, Inverse)
{
    // [[4, 7], [2, 6]]: determinant 10, inverse [[0.6, -0.7], [-0.2, 0.4]].
    const X3DMatrix m = Make(2, 2, {4, 7, 2, 6});
    ExpectMatrix(!m, 2, 2, {0.6, -0.7, -0.2, 0.4});
    ExpectMatrix(m.GetInverse() * m, 2, 2, {1, 0, 0, 1});
    // A zero first pivot: [[0, 1], [1, 0]] is its own inverse.
    ExpectMatrix(Make(2, 2, {0, 1, 1, 0}).GetInverse(), 2, 2, {0, 1, 1, 0});
    EXPECT_EQ(MatrixErrorOf([] { !Make(2, 2, {1, 2, 2, 4}); }),
              "matrixT::operator!: Inversion of a singular matrix");
    EXPECT_EQ(MatrixErrorOf([] { X3DMatrix(2, 3).GetInverse(); }),
              "matrixT::operator!: Inversion of a non-square matrix");
}

TEST(X3DMatrix, ArithmeticAndSizeChecks)
{
    const X3DMatrix a = Make(2, 3, {1, 2, 3, 4, 5, 6});
    const X3DMatrix b = Make(3, 2, {1, 0, 0, 1, 1, 1});
    // Row 0: (1 + 3, 2 + 3), row 1: (4 + 6, 5 + 6).
    ExpectMatrix(a * b, 2, 2, {4, 5, 10, 11});
    ExpectMatrix(a + a, 2, 3, {2, 4, 6, 8, 10, 12});
    ExpectMatrix(a - a * 2.0, 2, 3, {-1, -2, -3, -4, -5, -6});
    ExpectMatrix(a / 2.0, 2, 3, {0.5, 1, 1.5, 2, 2.5, 3});
    X3DMatrix c = a;
    c *= 3.0;
    c /= 6.0;
    ExpectMatrix(c, 2, 3, {0.5, 1, 1.5, 2, 2.5, 3});
    ExpectMatrix(a, 2, 3, {1, 2, 3, 4, 5, 6});
    ExpectMatrix(a.GetTranspose(), 3, 2, {1, 4, 2, 5, 3, 6});

    EXPECT_EQ(MatrixErrorOf([&] { a * a; }), "matrixT::operator*: Inconsistent matrix size in multiplication!");
    EXPECT_EQ(MatrixErrorOf([&] { a - b; }), "matrixT::operator-: Inconsistent matrix size in subtraction!");
    EXPECT_EQ(MatrixErrorOf([&] { a + b; }), "matrixT::operator+: Inconsistent matrix size in addition!");
}

TEST(X3DMatrix, PiecesOfAMatrix)
{
    X3DMatrix m = Make(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    ExpectMatrix(m.GetRow(1), 1, 3, {4, 5, 6});
    ExpectMatrix(m.GetColumn(2), 3, 1, {3, 6, 9});
    ExpectMatrix(m.GetSubMatrix(1, 1, 2, 2), 2, 2, {5, 6, 8, 9});
    XVector<SInt32> order{2, 0, 2};
    ExpectMatrix(m.GetColumnsShuffledFrom(order), 3, 3, {3, 1, 3, 6, 4, 6, 9, 7, 9});
    ExpectMatrix(m.GetDiagonalisedColumn(0), 3, 3, {1, 0, 0, 0, 4, 0, 0, 0, 7});
    ExpectMatrix(m.GetDiagonalisedRow(0), 3, 3, {1, 0, 0, 0, 2, 0, 0, 0, 3});

    const X3DMatrix original = m;
    m.SetRow(0, X3DMatrix::ColumnVector(-1, -2, -3)); // a column of the row's length serves
    m.SetColumn(2, Make(1, 3, {10, 20, 30}));
    m.SetSubMatrix(1, 0, Make(2, 1, {0, 0}));
    ExpectMatrix(m, 3, 3, {-1, -2, 10, 0, 5, 20, 0, 8, 30});
    ExpectMatrix(original, 3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});

    EXPECT_EQ(MatrixErrorOf([&] { m.GetRow(3); }), "matrixT::operator(): Index out of range!");
    EXPECT_EQ(MatrixErrorOf([&] { m.GetSubMatrix(2, 2, 2, 1); }), "matrixT::operator(): Index out of range!");
    EXPECT_EQ(MatrixErrorOf([&] { m.SetRow(0, X3DMatrix::ColumnVector(1, 2)); }),
              "matrixT::operator(): Index out of range!");
    EXPECT_EQ(MatrixErrorOf([&] { m.SetSubMatrix(2, 2, X3DMatrix(2, 2)); }),
              "matrixT::operator(): Index out of range!");

    // Resizing keeps what still fits and zeroes what is new, also where a smaller size within
    // the storage hid old values; a copy taken before keeps its own size and values.
    X3DMatrix grown = original;
    grown.CopyAndResize(2, 4);
    ExpectMatrix(grown, 2, 4, {1, 2, 3, 0, 4, 5, 6, 0});
    grown.CopyAndResize(2, 2);
    grown.CopyAndResize(2, 3);
    ExpectMatrix(grown, 2, 3, {1, 2, 0, 4, 5, 0});
    grown.CopyAndResize(3, 3);
    ExpectMatrix(grown, 3, 3, {1, 2, 0, 4, 5, 0, 0, 0, 0});
    ExpectMatrix(original, 3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});

    double d[9];
    float f[9];
    original.SetCArrayFromElementValues(d);
    original.SetCArrayFromElementValues(f);
    EXPECT_EQ(d[5], 6.0);
    EXPECT_EQ(f[7], 8.f);
    ExpectMatrix(X3DMatrix::BuildMatrixFromCArray(3, 3, f), 3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    ExpectMatrix(X3DMatrix::BuildMatrixFromCArray(1, 2, d + 7), 1, 2, {8, 9});
}

TEST(X3DMatrix, ShapesAndSearches)
{
    const X3DMatrix m = Make(3, 2, {1, -7, -4, 2, 0.5, 3});
    EXPECT_TRUE(X3DMatrix::UnitMatrix(3).IsSquare(3));
    EXPECT_FALSE(m.IsSquare());
    EXPECT_TRUE(X3DMatrix::ColumnVector(XPoint(3, -2)).IsColumnVector(2));
    EXPECT_FALSE(m.IsColumnVector());
    EXPECT_TRUE(m.GetRow(0).IsRowVector(2));
    EXPECT_FALSE(m.GetRow(0).IsRowVector(3));
    ExpectMatrix(X3DMatrix::ColumnVector(XPoint(3, -2)), 2, 1, {3, -2});
    ExpectMatrix(X3DMatrix::ColumnVector(1, 2, 3, 4), 4, 1, {1, 2, 3, 4});
    ExpectMatrix(X3DMatrix::ZeroMatrix(1, 2), 1, 2, {0, 0});
    EXPECT_EQ(m.FindIndexOfLargestAbsElementInColumn(0), 1);
    EXPECT_EQ(m.FindIndexOfSmallestAbsElementInColumn(0), 2);
    EXPECT_EQ(m.FindIndexOfLargestAbsElementInRow(0), 1);
    EXPECT_EQ(m.FindIndexOfSmallestAbsElementInRow(1), 1);
    EXPECT_EQ(MatrixErrorOf([&] { m.FindIndexOfLargestAbsElementInColumn(2); }),
              "matrixT::operator(): Index out of range!");
}

TEST(X3DMatrix, VectorMeasures)
{
    const X3DMatrix v = X3DMatrix::ColumnVector(3, 0, 4);
    EXPECT_EQ(v.GetL2Length(), 5.0);
    ExpectMatrix(X3DMatrix::L2Norm(v), 3, 1, {0.6, 0, 0.8});
    EXPECT_EQ(v.DotProduct(X3DMatrix::ColumnVector(1, 2, 3)), 15.0);
    ExpectMatrix(X3DMatrix::ColumnVector(1, 0, 0).CrossProduct(X3DMatrix::ColumnVector(0, 1, 0)), 3, 1, {0, 0, 1});
    // (1, 2, 3) x (4, 5, 6) = (2*6 - 3*5, 3*4 - 1*6, 1*5 - 2*4) = (-3, 6, -3).
    ExpectMatrix(Make(1, 3, {1, 2, 3}).CrossProduct(X3DMatrix::ColumnVector(4, 5, 6)), 3, 1, {-3, 6, -3});
    EXPECT_EQ(MatrixErrorOf([&] { v.DotProduct(X3DMatrix::ColumnVector(1, 2)); }),
              "matrixT::DotProduct: Inconsistent matrix size!");
    EXPECT_EQ(MatrixErrorOf([&] { v.CrossProduct(X3DMatrix::ColumnVector(1, 2)); }),
              "matrixT::CrossProduct: Vectors of 3 elements needed!");
}

TEST(X3DMatrix, GeometricBuilders)
{
    // About z by a quarter turn: s = 1, c = 0, t = 1; (0, 1) = t x y + s z = 1, (1, 0) = -1.
    // The axis is normalised first, so (0, 0, 2) serves as well.
    ExpectMatrix(X3DMatrix::RotationMatrix(X3DMatrix::ColumnVector(0, 0, 2), std::numbers::pi / 2), 3, 3,
                 {0, 1, 0, -1, 0, 0, 0, 0, 1});
    // About (1, 1, 1) / sqrt(3) by a third of a turn the axes cycle: x -> z, y -> x, z -> y
    // for column vectors in this form.
    const X3DMatrix cycle =
        X3DMatrix::RotationMatrix(X3DMatrix::ColumnVector(1, 1, 1), 2 * std::numbers::pi / 3);
    ExpectMatrix(cycle, 3, 3, {0, 1, 0, 0, 0, 1, 1, 0, 0});

    // Columns (1, 1, 0) and (1, 0, 1): q0 = (1, 1, 0) / sqrt(2); (1, 0, 1) - (1/2)(1, 1, 0) =
    // (0.5, -0.5, 1), of length sqrt(1.5).
    const double r2 = 1 / std::sqrt(2.0), r15 = 1 / std::sqrt(1.5);
    ExpectMatrix(X3DMatrix::OrthoNormalise(Make(3, 2, {1, 1, 1, 0, 0, 1})), 3, 2,
                 {r2, 0.5 * r15, r2, -0.5 * r15, 0, r15});

    // Homogeneous columns (2, 4, 2) and (9, 3, 3) become (1, 2) and (3, 1).
    ExpectMatrix(Make(3, 2, {2, 9, 4, 3, 2, 3}).GetDehomogonisedMatrix(), 2, 2, {1, 3, 2, 1});
    try
    {
        Make(1, 2, {1, 2}).GetDehomogonisedMatrix();
        ADD_FAILURE() << "no internal error";
    }
    catch (const XInternalError & anError)
    {
        EXPECT_EQ(anError.GetExpression(), "GetHeight() > 1");
    }
}

TEST(X3DMatrix, DumpAndExceptionTexts)
{
    std::ostringstream out;
    Make(2, 2, {1, 2.5, -3, 4}).Dump(out);
    EXPECT_EQ(out.str(), "Matrix:\n1 2.5\n-3 4\n");

    try
    {
        Make(2, 2, {1, 2, 2, 4}).Solve(X3DMatrix::ColumnVector(1, 1));
        ADD_FAILURE() << "no exception";
    }
    catch (const XException & anError)
    {
        const auto & matrixError = dynamic_cast<const XMatrixException &>(anError);
        EXPECT_EQ(matrixError.GetRawErrorMessage().GetStdString(),
                  "a matrix error occurred:matrixT::Solve(): Singular matrix (2302)");
        EXPECT_EQ(anError.GetErrorMessage().GetStdString(), matrixError.GetRawErrorMessage().GetStdString());
    }
}
