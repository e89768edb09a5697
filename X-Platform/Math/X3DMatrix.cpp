#include "X3DMatrix.h"

#include <cmath>

#include "XAssert.h"

namespace
{
const char * const kIndexMessage = "matrixT::operator(): Index out of range!";
const char * const kAdditionMessage = "matrixT::operator+: Inconsistent matrix size in addition!";
const char * const kSubtractionMessage =
    "matrixT::operator-: Inconsistent matrix size in subtraction!";
const char * const kMultiplicationMessage =
    "matrixT::operator*: Inconsistent matrix size in multiplication!";
const char * const kSolveSizeMessage = "matrixT::Solve():Inconsistent matrices!";
const char * const kSolveSingularMessage = "matrixT::Solve(): Singular matrix!";
const char * const kInverseSizeMessage = "matrixT::operator!: Inversion of a non-square matrix";
const char * const kInverseSingularMessage = "matrixT::operator!: Inversion of a singular matrix";
const char * const kDotProductMessage = "matrixT::DotProduct: Inconsistent matrix size!";
const char * const kCrossProductMessage = "matrixT::CrossProduct: Vectors of 3 elements needed!";
const char * const kRotationMessage = "matrixT::RotationMatrix: An axis of 3 elements needed!";
} // namespace

X3DMatrix::X3DMatrix() : itsMatrix(1, 1) {}

X3DMatrix::X3DMatrix(SInt32 aRows, SInt32 aColumns, const double * someRowMajorValues)
    : itsMatrix(aRows, aColumns)
{
    if (someRowMajorValues == nullptr)
        return;
    for (SInt32 r = 0; r < aRows; ++r)
    {
        double * row = itsMatrix.MutableRow(r);
        for (SInt32 c = 0; c < aColumns; ++c)
            row[c] = someRowMajorValues[r * aColumns + c];
    }
}

X3DMatrix & X3DMatrix::operator*=(double aScalar)
{
    for (SInt32 r = 0; r < GetHeight(); ++r)
    {
        double * row = itsMatrix.MutableRow(r);
        for (SInt32 c = 0; c < GetWidth(); ++c)
            row[c] *= aScalar;
    }
    return *this;
}

X3DMatrix & X3DMatrix::operator/=(double aScalar)
{
    for (SInt32 r = 0; r < GetHeight(); ++r)
    {
        double * row = itsMatrix.MutableRow(r);
        for (SInt32 c = 0; c < GetWidth(); ++c)
            row[c] /= aScalar;
    }
    return *this;
}

X3DMatrix X3DMatrix::operator*(double aScalar) const
{
    X3DMatrix result(*this);
    return result *= aScalar;
}

X3DMatrix X3DMatrix::operator/(double aScalar) const
{
    X3DMatrix result(*this);
    return result /= aScalar;
}

X3DMatrix X3DMatrix::Combine(const X3DMatrix & anOther, double aSign, const char * aMessage) const
{
    if (GetHeight() != anOther.GetHeight() || GetWidth() != anOther.GetWidth())
        throw XMatrixException(aMessage);
    X3DMatrix result(GetHeight(), GetWidth());
    for (SInt32 r = 0; r < GetHeight(); ++r)
    {
        const double * left = itsMatrix.Row(r);
        const double * right = anOther.itsMatrix.Row(r);
        double * out = result.itsMatrix.MutableRow(r);
        for (SInt32 c = 0; c < GetWidth(); ++c)
            out[c] = left[c] + aSign * right[c];
    }
    return result;
}

X3DMatrix X3DMatrix::operator+(const X3DMatrix & anOther) const
{
    return Combine(anOther, 1.0, kAdditionMessage);
}

X3DMatrix X3DMatrix::operator-(const X3DMatrix & anOther) const
{
    return Combine(anOther, -1.0, kSubtractionMessage);
}

X3DMatrix X3DMatrix::operator*(const X3DMatrix & anOther) const
{
    if (GetWidth() != anOther.GetHeight())
        throw XMatrixException(kMultiplicationMessage);
    X3DMatrix result(GetHeight(), anOther.GetWidth());
    for (SInt32 r = 0; r < GetHeight(); ++r)
    {
        const double * left = itsMatrix.Row(r);
        double * out = result.itsMatrix.MutableRow(r);
        for (SInt32 c = 0; c < anOther.GetWidth(); ++c)
        {
            double sum = 0.0;
            for (SInt32 k = 0; k < GetWidth(); ++k)
                sum += left[k] * anOther.itsMatrix.Row(k)[c];
            out[c] = sum;
        }
    }
    return result;
}

X3DMatrix X3DMatrix::GetTranspose() const
{
    X3DMatrix result(GetWidth(), GetHeight());
    for (SInt32 r = 0; r < GetHeight(); ++r)
        for (SInt32 c = 0; c < GetWidth(); ++c)
            result.itsMatrix.MutableRow(c)[r] = itsMatrix.Row(r)[c];
    return result;
}

void X3DMatrix::Eliminate(matrix<double> & aWork, SInt32 aSize, const char * aSingularMessage)
{
    const SInt32 width = aWork.GetColumnCount();
    for (SInt32 col = 0; col < aSize; ++col)
    {
        SInt32 pivotRow = col;
        for (SInt32 r = col + 1; r < aSize; ++r)
            if (std::fabs(aWork.Row(r)[col]) > std::fabs(aWork.Row(pivotRow)[col]))
                pivotRow = r;
        if (aWork.Row(pivotRow)[col] == 0.0)
            throw XMatrixException(aSingularMessage);
        aWork.SwapRows(col, pivotRow);
        double * pivot = aWork.MutableRow(col);
        const double divisor = pivot[col];
        for (SInt32 c = col; c < width; ++c)
            pivot[c] /= divisor;
        for (SInt32 r = col + 1; r < aSize; ++r)
        {
            double * row = aWork.MutableRow(r);
            const double factor = row[col];
            for (SInt32 c = col; c < width; ++c)
                row[c] -= factor * pivot[c];
        }
    }
    // Back substitution: clear the upper triangle from the last pivot up.
    for (SInt32 col = aSize - 1; col > 0; --col)
    {
        const double * pivot = aWork.Row(col);
        for (SInt32 r = 0; r < col; ++r)
        {
            double * row = aWork.MutableRow(r);
            const double factor = row[col];
            for (SInt32 c = col; c < width; ++c)
                row[c] -= factor * pivot[c];
        }
    }
}

X3DMatrix X3DMatrix::Solve(const X3DMatrix & aRightHandSide) const
{
    const SInt32 n = GetHeight();
    if (!IsSquare() || aRightHandSide.GetHeight() != n)
        throw XMatrixException(kSolveSizeMessage);
    const SInt32 m = aRightHandSide.GetWidth();
    matrix<double> work(n, n + m);
    for (SInt32 r = 0; r < n; ++r)
    {
        double * row = work.MutableRow(r);
        std::copy(itsMatrix.Row(r), itsMatrix.Row(r) + n, row);
        std::copy(aRightHandSide.itsMatrix.Row(r), aRightHandSide.itsMatrix.Row(r) + m, row + n);
    }
    Eliminate(work, n, kSolveSingularMessage);
    X3DMatrix result(n, m);
    for (SInt32 r = 0; r < n; ++r)
        std::copy(work.Row(r) + n, work.Row(r) + n + m, result.itsMatrix.MutableRow(r));
    return result;
}

X3DMatrix X3DMatrix::GetInverse() const
{
    if (!IsSquare())
        throw XMatrixException(kInverseSizeMessage);
    const SInt32 n = GetHeight();
    matrix<double> work(n, 2 * n);
    for (SInt32 r = 0; r < n; ++r)
    {
        double * row = work.MutableRow(r);
        std::copy(itsMatrix.Row(r), itsMatrix.Row(r) + n, row);
        row[n + r] = 1.0;
    }
    Eliminate(work, n, kInverseSingularMessage);
    X3DMatrix result(n, n);
    for (SInt32 r = 0; r < n; ++r)
        std::copy(work.Row(r) + n, work.Row(r) + 2 * n, result.itsMatrix.MutableRow(r));
    return result;
}

void X3DMatrix::CheckRow(SInt32 aRow) const
{
    if (aRow < 0 || aRow >= GetHeight())
        throw XMatrixException(kIndexMessage);
}

void X3DMatrix::CheckColumn(SInt32 aColumn) const
{
    if (aColumn < 0 || aColumn >= GetWidth())
        throw XMatrixException(kIndexMessage);
}

X3DMatrix X3DMatrix::GetRow(SInt32 aRow) const
{
    return GetSubMatrix(aRow, 0, 1, GetWidth());
}

X3DMatrix X3DMatrix::GetColumn(SInt32 aColumn) const
{
    return GetSubMatrix(0, aColumn, GetHeight(), 1);
}

void X3DMatrix::SetRow(SInt32 aRow, const X3DMatrix & aValues)
{
    if (aValues.GetHeight() * aValues.GetWidth() != GetWidth())
        throw XMatrixException(kIndexMessage);
    SetSubMatrix(aRow, 0, aValues.IsRowVector() ? aValues : aValues.GetTranspose());
}

void X3DMatrix::SetColumn(SInt32 aColumn, const X3DMatrix & aValues)
{
    if (aValues.GetHeight() * aValues.GetWidth() != GetHeight())
        throw XMatrixException(kIndexMessage);
    SetSubMatrix(0, aColumn, aValues.IsColumnVector() ? aValues : aValues.GetTranspose());
}

X3DMatrix X3DMatrix::GetSubMatrix(SInt32 aRow, SInt32 aColumn, SInt32 aRows, SInt32 aColumns) const
{
    if (aRow < 0 || aColumn < 0 || aRows < 0 || aColumns < 0 || aRow + aRows > GetHeight() ||
        aColumn + aColumns > GetWidth())
        throw XMatrixException(kIndexMessage);
    X3DMatrix result(aRows, aColumns);
    for (SInt32 r = 0; r < aRows; ++r)
    {
        const double * source = itsMatrix.Row(aRow + r) + aColumn;
        std::copy(source, source + aColumns, result.itsMatrix.MutableRow(r));
    }
    return result;
}

void X3DMatrix::SetSubMatrix(SInt32 aRow, SInt32 aColumn, const X3DMatrix & aMatrix)
{
    if (aRow < 0 || aColumn < 0 || aRow + aMatrix.GetHeight() > GetHeight() ||
        aColumn + aMatrix.GetWidth() > GetWidth())
        throw XMatrixException(kIndexMessage);
    for (SInt32 r = 0; r < aMatrix.GetHeight(); ++r)
    {
        const double * source = aMatrix.itsMatrix.Row(r);
        std::copy(source, source + aMatrix.GetWidth(), itsMatrix.MutableRow(aRow + r) + aColumn);
    }
}

X3DMatrix X3DMatrix::GetColumnsShuffledFrom(const XVector<SInt32> & someIndices) const
{
    X3DMatrix result(GetHeight(), SInt32(someIndices.size()));
    for (SInt32 c = 0; c < result.GetWidth(); ++c)
        result.SetColumn(c, GetColumn(someIndices[std::size_t(c)]));
    return result;
}

void X3DMatrix::CopyAndResize(SInt32 aRows, SInt32 aColumns)
{
    XAssert(aRows >= 0 && aColumns >= 0);
    itsMatrix.Resize(aRows, aColumns);
}

double X3DMatrix::L2Length(const X3DMatrix & aMatrix)
{
    return std::sqrt(aMatrix.DotProduct(aMatrix));
}

X3DMatrix X3DMatrix::L2Norm(const X3DMatrix & aMatrix)
{
    return aMatrix / L2Length(aMatrix);
}

double X3DMatrix::DotProduct(const X3DMatrix & anOther) const
{
    if (GetHeight() != anOther.GetHeight() || GetWidth() != anOther.GetWidth())
        throw XMatrixException(kDotProductMessage);
    double sum = 0.0;
    for (SInt32 r = 0; r < GetHeight(); ++r)
        for (SInt32 c = 0; c < GetWidth(); ++c)
            sum += itsMatrix.Row(r)[c] * anOther.itsMatrix.Row(r)[c];
    return sum;
}

X3DMatrix X3DMatrix::CrossProduct(const X3DMatrix & anOther) const
{
    if (GetHeight() * GetWidth() != 3 || anOther.GetHeight() * anOther.GetWidth() != 3)
        throw XMatrixException(kCrossProductMessage);
    double u[3], v[3];
    SetCArrayFromElementValues(u);
    anOther.SetCArrayFromElementValues(v);
    return ColumnVector(u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                        u[0] * v[1] - u[1] * v[0]);
}

template <typename Better>
SInt32 X3DMatrix::FindIndex(bool aColumnWise, SInt32 anIndex, Better aBetter) const
{
    if (aColumnWise)
        CheckColumn(anIndex);
    else
        CheckRow(anIndex);
    const SInt32 count = aColumnWise ? GetHeight() : GetWidth();
    auto valueAt = [&](SInt32 k) {
        return std::fabs(aColumnWise ? itsMatrix.Row(k)[anIndex] : itsMatrix.Row(anIndex)[k]);
    };
    SInt32 found = 0;
    for (SInt32 k = 1; k < count; ++k)
        if (aBetter(valueAt(k), valueAt(found)))
            found = k;
    return found;
}

SInt32 X3DMatrix::FindIndexOfLargestAbsElementInColumn(SInt32 aColumn) const
{
    return FindIndex(true, aColumn, [](double a, double b) { return a > b; });
}

SInt32 X3DMatrix::FindIndexOfSmallestAbsElementInColumn(SInt32 aColumn) const
{
    return FindIndex(true, aColumn, [](double a, double b) { return a < b; });
}

SInt32 X3DMatrix::FindIndexOfLargestAbsElementInRow(SInt32 aRow) const
{
    return FindIndex(false, aRow, [](double a, double b) { return a > b; });
}

SInt32 X3DMatrix::FindIndexOfSmallestAbsElementInRow(SInt32 aRow) const
{
    return FindIndex(false, aRow, [](double a, double b) { return a < b; });
}

void X3DMatrix::SetCArrayFromElementValues(double * someValues) const
{
    for (SInt32 r = 0; r < GetHeight(); ++r)
        for (SInt32 c = 0; c < GetWidth(); ++c)
            *someValues++ = itsMatrix.Row(r)[c];
}

void X3DMatrix::SetCArrayFromElementValues(float * someValues) const
{
    for (SInt32 r = 0; r < GetHeight(); ++r)
        for (SInt32 c = 0; c < GetWidth(); ++c)
            *someValues++ = float(itsMatrix.Row(r)[c]);
}

X3DMatrix X3DMatrix::GetDehomogonisedMatrix() const
{
    XAssert(GetHeight() > 1);
    const SInt32 last = GetHeight() - 1;
    X3DMatrix result(last, GetWidth());
    for (SInt32 c = 0; c < GetWidth(); ++c)
    {
        const double w = itsMatrix.Row(last)[c];
        for (SInt32 r = 0; r < last; ++r)
            result.itsMatrix.MutableRow(r)[c] = itsMatrix.Row(r)[c] / w;
    }
    return result;
}

X3DMatrix X3DMatrix::GetDiagonalisedColumn(SInt32 aColumn) const
{
    CheckColumn(aColumn);
    X3DMatrix result(GetHeight(), GetHeight());
    for (SInt32 k = 0; k < GetHeight(); ++k)
        result.itsMatrix.MutableRow(k)[k] = itsMatrix.Row(k)[aColumn];
    return result;
}

X3DMatrix X3DMatrix::GetDiagonalisedRow(SInt32 aRow) const
{
    CheckRow(aRow);
    X3DMatrix result(GetWidth(), GetWidth());
    for (SInt32 k = 0; k < GetWidth(); ++k)
        result.itsMatrix.MutableRow(k)[k] = itsMatrix.Row(aRow)[k];
    return result;
}

X3DMatrix X3DMatrix::ZeroMatrix(SInt32 aRows, SInt32 aColumns)
{
    return X3DMatrix(aRows, aColumns);
}

X3DMatrix X3DMatrix::UnitMatrix(SInt32 aSize)
{
    X3DMatrix result(aSize, aSize);
    for (SInt32 k = 0; k < aSize; ++k)
        result.itsMatrix.MutableRow(k)[k] = 1.0;
    return result;
}

X3DMatrix X3DMatrix::BuildMatrixFromCArray(SInt32 aRows, SInt32 aColumns,
                                           const double * someRowMajorValues)
{
    return X3DMatrix(aRows, aColumns, someRowMajorValues);
}

X3DMatrix X3DMatrix::BuildMatrixFromCArray(SInt32 aRows, SInt32 aColumns,
                                           const float * someRowMajorValues)
{
    X3DMatrix result(aRows, aColumns);
    for (SInt32 r = 0; r < aRows; ++r)
        for (SInt32 c = 0; c < aColumns; ++c)
            result.itsMatrix.MutableRow(r)[c] = someRowMajorValues[r * aColumns + c];
    return result;
}

X3DMatrix X3DMatrix::ColumnVector(double aX, double aY)
{
    const double values[] = {aX, aY};
    return X3DMatrix(2, 1, values);
}

X3DMatrix X3DMatrix::ColumnVector(double aX, double aY, double aZ)
{
    const double values[] = {aX, aY, aZ};
    return X3DMatrix(3, 1, values);
}

X3DMatrix X3DMatrix::ColumnVector(double aX, double aY, double aZ, double aW)
{
    const double values[] = {aX, aY, aZ, aW};
    return X3DMatrix(4, 1, values);
}

X3DMatrix X3DMatrix::ColumnVector(const XPoint & aPoint)
{
    return ColumnVector(aPoint.x, aPoint.y);
}

X3DMatrix X3DMatrix::RotationMatrix(const X3DMatrix & anAxis, double aRadians)
{
    if (anAxis.GetHeight() * anAxis.GetWidth() != 3)
        throw XMatrixException(kRotationMessage);
    double axis[3];
    L2Norm(anAxis).SetCArrayFromElementValues(axis);
    const double x = axis[0], y = axis[1], z = axis[2];
    const double s = std::sin(aRadians), c = std::cos(aRadians), t = 1.0 - c;
    const double values[] = {t * x * x + c,     t * x * y + s * z, t * x * z - s * y,
                             t * x * y - s * z, t * y * y + c,     t * y * z + s * x,
                             t * x * z + s * y, t * y * z - s * x, t * z * z + c};
    return X3DMatrix(3, 3, values);
}

X3DMatrix X3DMatrix::OrthoNormalise(const X3DMatrix & aMatrix)
{
    X3DMatrix result(aMatrix);
    for (SInt32 i = 0; i < result.GetWidth(); ++i)
    {
        X3DMatrix column = result.GetColumn(i);
        for (SInt32 j = 0; j < i; ++j)
        {
            const X3DMatrix earlier = result.GetColumn(j);
            column = column - earlier * column.DotProduct(earlier);
        }
        result.SetColumn(i, L2Norm(column));
    }
    return result;
}

void X3DMatrix::Dump(std::ostream & aStream) const
{
    aStream << "Matrix:\n";
    for (SInt32 r = 0; r < GetHeight(); ++r)
    {
        for (SInt32 c = 0; c < GetWidth(); ++c)
            aStream << (c == 0 ? "" : " ") << itsMatrix.Row(r)[c];
        aStream << '\n';
    }
}
