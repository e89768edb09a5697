#pragma once
// A square matrix of at most kMaxSize by kMaxSize floats, held in place with its eigen system:
// it allocates nothing and is copied by value (assignment copies the whole record, the cached
// eigen system with it). XVectorMathTool::VectorTransform takes one, e.g. to unmix up to 8
// channels.
//
// The eigen system of a symmetric matrix is computed at the first GetEigenVectors or
// GetEigenValues and kept: nothing clears the cache afterwards, not Set, Transpose or
// ForceSymmetric, so build the matrix completely before the first query. Eigenvector k is
// column k of the eigenvector matrix; eigenvalues are not sorted.
//
// Set and Get check the indices against kMaxSize, not against the size: cells beyond the size
// are storage like any other.

#include "XTypes.h"

class XMiniVector;

class XMiniSquareMatrix
{
public:
    static constexpr SInt32 kMaxSize = 8;

    // A theSize by theSize matrix; the elements start at zero.
    explicit XMiniSquareMatrix(SInt32 theSize = 0);
    // Copies theSize floats from someValues, one row, into the first row; the other rows stay
    // zero. Build the rest with Set.
    XMiniSquareMatrix(const float * someValues, SInt32 theSize);

    SInt32 GetSize() const { return itsSize; }
    void Set(SInt32 i, SInt32 j, float aValue);
    float Get(SInt32 i, SInt32 j) const;
    // Copies row anIndex into aVector, whose size must be this matrix's size.
    void GetRow(SInt32 anIndex, XMiniVector & aVector) const;

    // Swaps the elements across the diagonal, in place.
    void Transpose();
    // Gives each pair of elements mirrored across the diagonal the mean of the two.
    void ForceSymmetric();

    // The eigenvectors as the columns of aDest, whose size must be this matrix's size. aDest's
    // own eigen system is marked as not yet computed.
    void GetEigenVectors(XMiniSquareMatrix & aDest) const;
    // The eigenvalues, in the order of the eigenvector columns.
    void GetEigenValues(XMiniVector & aDest) const;

private:
    // Cyclic Jacobi rotations in double on the elements, taken as symmetric.
    void CalcEigenSystem() const;

    // 1 while the eigen system has still to be computed.
    mutable SInt32 itsEigenSystemNeedsCalc = 1;
    SInt32 itsSize;
    float itsElements[kMaxSize * kMaxSize];
    mutable float itsEigenVectors[kMaxSize * kMaxSize];
    mutable float itsEigenValues[kMaxSize];
};
