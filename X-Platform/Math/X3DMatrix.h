#pragma once
// A dense matrix of doubles for small linear systems and geometry. Copies share their storage
// until one of them is written (see matrix.h), so matrices pass by value cheaply; a matrix and
// its copies belong to one thread.
//
// Row and column indices start at 0. A size that does not fit an operation, an index outside
// the matrix and a singular matrix raise XMatrixException (2302); the operands are left as they
// were.

#include <iostream>

#include "XPoint.h"
#include "XTypes.h"
#include "XVector.h"
#include "matrix.h"

class X3DMatrix
{
public:
    // A 1 by 1 zero.
    X3DMatrix();
    // aRows by aColumns, from someRowMajorValues (row after row), or zeros when it is null.
    X3DMatrix(SInt32 aRows, SInt32 aColumns, const double * someRowMajorValues = nullptr);

    SInt32 GetHeight() const { return itsMatrix.GetRowCount(); }
    SInt32 GetWidth() const { return itsMatrix.GetColumnCount(); }
    bool IsSquare() const { return GetHeight() == GetWidth(); }
    bool IsSquare(SInt32 aSize) const { return GetHeight() == aSize && GetWidth() == aSize; }
    bool IsColumnVector() const { return GetWidth() == 1; }
    bool IsColumnVector(SInt32 aLength) const { return IsColumnVector() && GetHeight() == aLength; }
    bool IsRowVector() const { return GetHeight() == 1; }
    bool IsRowVector(SInt32 aLength) const { return IsRowVector() && GetWidth() == aLength; }

    double operator()(SInt32 aRow, SInt32 aColumn) const { return itsMatrix(aRow, aColumn); }
    double & operator()(SInt32 aRow, SInt32 aColumn) { return itsMatrix(aRow, aColumn); }
    double GetElement(SInt32 aRow, SInt32 aColumn) const { return itsMatrix(aRow, aColumn); }
    void SetElement(SInt32 aRow, SInt32 aColumn, double aValue)
    {
        itsMatrix(aRow, aColumn) = aValue;
    }

    X3DMatrix & operator*=(double aScalar);
    X3DMatrix & operator/=(double aScalar);
    X3DMatrix operator*(double aScalar) const;
    X3DMatrix operator/(double aScalar) const;
    X3DMatrix operator+(const X3DMatrix & anOther) const;
    X3DMatrix operator-(const X3DMatrix & anOther) const;
    X3DMatrix operator*(const X3DMatrix & anOther) const;

    X3DMatrix GetTranspose() const;
    // The inverse, by Gauss-Jordan elimination with partial pivoting; square matrices only.
    X3DMatrix GetInverse() const;
    X3DMatrix operator!() const { return GetInverse(); }
    // The solution X of this * X = aRightHandSide, by Gaussian elimination with partial
    // pivoting; this square, aRightHandSide of the same height and any width.
    X3DMatrix Solve(const X3DMatrix & aRightHandSide) const;

    // A row as a 1 by width matrix, a column as a height by 1 matrix.
    X3DMatrix GetRow(SInt32 aRow) const;
    X3DMatrix GetColumn(SInt32 aColumn) const;
    // Overwrite a row or column with the elements of a row or column vector of its length.
    void SetRow(SInt32 aRow, const X3DMatrix & aValues);
    void SetColumn(SInt32 aColumn, const X3DMatrix & aValues);
    X3DMatrix GetSubMatrix(SInt32 aRow, SInt32 aColumn, SInt32 aRows, SInt32 aColumns) const;
    // Overwrites the block at (aRow, aColumn) with aMatrix, which must lie inside this one.
    void SetSubMatrix(SInt32 aRow, SInt32 aColumn, const X3DMatrix & aMatrix);
    // A matrix whose column i is column someIndices[i] of this one.
    X3DMatrix GetColumnsShuffledFrom(const XVector<SInt32> & someIndices) const;
    // Resizes this matrix in place, keeping the elements that still fit; new ones are zero.
    void CopyAndResize(SInt32 aRows, SInt32 aColumns);

    // The root of the sum of squares of all elements, and the matrix divided by it.
    double GetL2Length() const { return L2Length(*this); }
    X3DMatrix GetL2Norm() const { return L2Norm(*this); }
    static double L2Length(const X3DMatrix & aMatrix);
    static X3DMatrix L2Norm(const X3DMatrix & aMatrix);
    // The sum of the products of corresponding elements of two matrices of one size.
    double DotProduct(const X3DMatrix & anOther) const;
    // The cross product of two vectors of 3 elements, as a column vector.
    X3DMatrix CrossProduct(const X3DMatrix & anOther) const;

    // The index of the first element of largest or smallest absolute value in a column (a row
    // index) or in a row (a column index).
    SInt32 FindIndexOfLargestAbsElementInColumn(SInt32 aColumn) const;
    SInt32 FindIndexOfSmallestAbsElementInColumn(SInt32 aColumn) const;
    SInt32 FindIndexOfLargestAbsElementInRow(SInt32 aRow) const;
    SInt32 FindIndexOfSmallestAbsElementInRow(SInt32 aRow) const;

    // Writes the elements row after row into someValues, which holds height * width of them.
    void SetCArrayFromElementValues(double * someValues) const;
    void SetCArrayFromElementValues(float * someValues) const;

    // Every column divided by its last element, and the last row dropped: homogeneous
    // coordinates back to ordinary ones.
    X3DMatrix GetDehomogonisedMatrix() const;
    // A square matrix with the elements of a column or row on its diagonal, zeros elsewhere.
    X3DMatrix GetDiagonalisedColumn(SInt32 aColumn) const;
    X3DMatrix GetDiagonalisedRow(SInt32 aRow) const;

    static X3DMatrix ZeroMatrix(SInt32 aRows, SInt32 aColumns);
    static X3DMatrix UnitMatrix(SInt32 aSize);
    static X3DMatrix BuildMatrixFromCArray(SInt32 aRows, SInt32 aColumns,
                                           const double * someRowMajorValues);
    static X3DMatrix BuildMatrixFromCArray(SInt32 aRows, SInt32 aColumns,
                                           const float * someRowMajorValues);
    static X3DMatrix ColumnVector(double aX, double aY);
    static X3DMatrix ColumnVector(double aX, double aY, double aZ);
    static X3DMatrix ColumnVector(double aX, double aY, double aZ, double aW);
    static X3DMatrix ColumnVector(const XPoint & aPoint);
    // The 3 by 3 rotation by aRadians about anAxis (three elements, normalised here), in the
    // form whose element (0, 1) is t x y + s z (s, c the sine and cosine, t = 1 - c): it turns
    // column vectors clockwise about the axis seen from its tip.
    static X3DMatrix RotationMatrix(const X3DMatrix & anAxis, double aRadians);
    // Gram-Schmidt over the columns in order: each column loses its projections on the earlier
    // ones and is then scaled to length 1.
    static X3DMatrix OrthoNormalise(const X3DMatrix & aMatrix);

    // Writes "Matrix:" and the rows, one line each, to aStream (the debug log by default).
    void Dump(std::ostream & aStream = std::clog) const;

    // True when this matrix shares its storage with a copy (for tests and diagnostics).
    bool IsShared() const { return itsMatrix.IsShared(); }

private:
    // Gaussian elimination with partial pivoting of the square left part of aWork, whose
    // first aSize columns are the matrix and the rest the right-hand sides, down to the unit
    // matrix; the right part is then the solution. aSingularMessage when a pivot is zero.
    static void Eliminate(matrix<double> & aWork, SInt32 aSize, const char * aSingularMessage);
    // The index of the first element of a column (aColumnWise) or row whose absolute value no
    // other element's beats by aBetter.
    template <typename Better>
    SInt32 FindIndex(bool aColumnWise, SInt32 anIndex, Better aBetter) const;
    void CheckRow(SInt32 aRow) const;
    void CheckColumn(SInt32 aColumn) const;
    X3DMatrix Combine(const X3DMatrix & anOther, double aSign, const char * aMessage) const;

    matrix<double> itsMatrix;
};
