#include "XMiniSquareMatrix.h"

#include <cmath>

#include "XAssert.h"
#include "XMiniVector.h"

namespace
{
constexpr SInt32 kN = XMiniSquareMatrix::kMaxSize;
constexpr SInt32 kMaxSweeps = 128;

// The Jacobi rotation of one pair of elements, g at (i, j) and h at (k, l).
template <typename T, typename S>
void Rotate(T & g, T & h, S s, S tau)
{
    const T gOld = g;
    const T hOld = h;
    g = T(gOld - s * (hOld + gOld * tau));
    h = T(hOld + s * (gOld - hOld * tau));
}

// One rotation that zeroes a[p][q] (p < q), with its angle from t: the upper triangle of a,
// the diagonal d with its sweep increments z, and the eigenvector columns v in float.
void RotatePair(double (&a)[kN][kN], double * d, double * z, float * v, SInt32 n, SInt32 p,
                SInt32 q, double t)
{
    const double c = 1.0 / std::sqrt(1.0 + t * t);
    const double s = t * c;
    const double tau = s / (1.0 + c);
    const double h = t * a[p][q];
    z[p] -= h;
    z[q] += h;
    d[p] -= h;
    d[q] += h;
    a[p][q] = 0.0;
    for (SInt32 j = 0; j < p; ++j)
        Rotate(a[j][p], a[j][q], s, tau);
    for (SInt32 j = p + 1; j < q; ++j)
        Rotate(a[p][j], a[j][q], s, tau);
    for (SInt32 j = q + 1; j < n; ++j)
        Rotate(a[p][j], a[q][j], s, tau);
    const float fs = float(s);
    const float ftau = float(tau);
    for (SInt32 j = 0; j < n; ++j)
        Rotate(v[j * kN + p], v[j * kN + q], fs, ftau);
}

// The tangent of the rotation angle that zeroes apq between the diagonal values dp and dq.
double RotationTangent(double apq, double dp, double dq, double g)
{
    const double h = dq - dp;
    if (std::fabs(h) + g == std::fabs(h))
        return apq / h;
    const double theta = 0.5 * h / apq;
    const double t = 1.0 / (std::fabs(theta) + std::sqrt(1.0 + theta * theta));
    return theta < 0.0 ? -t : t;
}
} // namespace

XMiniSquareMatrix::XMiniSquareMatrix(SInt32 theSize)
    : itsSize(theSize), itsElements{}, itsEigenVectors{}, itsEigenValues{}
{
    XAssert(theSize <= kMaxSize);
    XAssertText(theSize >= 0, "theSize >= 0");
}

XMiniSquareMatrix::XMiniSquareMatrix(const float * someValues, SInt32 theSize)
    : XMiniSquareMatrix(theSize)
{
    for (SInt32 j = 0; j < theSize; ++j)
        itsElements[j] = someValues[j];
}

void XMiniSquareMatrix::Set(SInt32 i, SInt32 j, float aValue)
{
    XAssert((i>=0) && (i<kMaxSize));
    XAssert((j>=0) && (j<kMaxSize));
    itsElements[i * kMaxSize + j] = aValue;
}

float XMiniSquareMatrix::Get(SInt32 i, SInt32 j) const
{
    XAssert((i>=0) && (i<kMaxSize));
    XAssert((j>=0) && (j<kMaxSize));
    return itsElements[i * kMaxSize + j];
}

void XMiniSquareMatrix::GetRow(SInt32 anIndex, XMiniVector & aVector) const
{
    XAssertText(aVector.GetSize() == GetSize(), "vector.GetSize() == GetSize()");
    for (SInt32 j = 0; j < itsSize; ++j)
        aVector[j] = Get(anIndex, j);
}

void XMiniSquareMatrix::Transpose()
{
    for (SInt32 i = 0; i < itsSize; ++i)
        for (SInt32 j = i + 1; j < itsSize; ++j)
        {
            const float upper = itsElements[i * kMaxSize + j];
            itsElements[i * kMaxSize + j] = itsElements[j * kMaxSize + i];
            itsElements[j * kMaxSize + i] = upper;
        }
}

void XMiniSquareMatrix::ForceSymmetric()
{
    for (SInt32 i = 0; i < itsSize; ++i)
        for (SInt32 j = i + 1; j < itsSize; ++j)
        {
            const float mean =
                0.5f * (itsElements[i * kMaxSize + j] + itsElements[j * kMaxSize + i]);
            itsElements[i * kMaxSize + j] = itsElements[j * kMaxSize + i] = mean;
        }
}

void XMiniSquareMatrix::GetEigenVectors(XMiniSquareMatrix & dest) const
{
    XAssert(dest.GetSize() == GetSize());
    if (itsEigenSystemNeedsCalc != 0)
    {
        CalcEigenSystem();
        itsEigenSystemNeedsCalc = 0;
    }
    for (SInt32 k = 0; k < kMaxSize * kMaxSize; ++k)
        dest.itsElements[k] = itsEigenVectors[k];
    dest.itsEigenSystemNeedsCalc = 1;
}

void XMiniSquareMatrix::GetEigenValues(XMiniVector & dest) const
{
    XAssertText(dest.GetSize() == itsSize, "dest.GetSize() == size");
    if (itsEigenSystemNeedsCalc != 0)
    {
        CalcEigenSystem();
        itsEigenSystemNeedsCalc = 0;
    }
    for (SInt32 i = 0; i < itsSize; ++i)
        dest[i] = itsEigenValues[i];
}

void XMiniSquareMatrix::CalcEigenSystem() const
{
    const SInt32 n = itsSize;
    double a[kN][kN];
    double d[kN], b[kN], z[kN];
    for (SInt32 i = 0; i < kN * kN; ++i)
        itsEigenVectors[i] = (i % (kN + 1) == 0) ? 1.f : 0.f;
    for (SInt32 i = 0; i < n; ++i)
    {
        for (SInt32 j = 0; j < n; ++j)
            a[i][j] = itsElements[i * kN + j];
        b[i] = d[i] = a[i][i];
        z[i] = 0.0;
        itsEigenValues[i] = float(d[i]);
    }
    for (SInt32 sweep = 1; sweep <= kMaxSweeps; ++sweep)
    {
        double sm = 0.0;
        for (SInt32 p = 0; p < n; ++p)
            for (SInt32 q = p + 1; q < n; ++q)
                sm += std::fabs(a[p][q]);
        if (sm == 0.0)
            return;
        // Early sweeps rotate only the larger elements; later ones every non-zero element.
        const double threshold = sweep < 4 ? 0.2 * sm / double(n * n) : 0.0;
        for (SInt32 p = 0; p < n; ++p)
            for (SInt32 q = p + 1; q < n; ++q)
            {
                const double g = 100.0 * std::fabs(a[p][q]);
                // An element too small to change either diagonal value is dropped.
                if (sweep > 4 && std::fabs(d[p]) + g == std::fabs(d[p]) &&
                    std::fabs(d[q]) + g == std::fabs(d[q]))
                    a[p][q] = 0.0;
                else if (std::fabs(a[p][q]) > threshold)
                    RotatePair(a, d, z, itsEigenVectors, n, p, q,
                               RotationTangent(a[p][q], d[p], d[q], g));
            }
        for (SInt32 i = 0; i < n; ++i)
        {
            b[i] += z[i];
            d[i] = b[i];
            z[i] = 0.0;
            itsEigenValues[i] = float(d[i]);
        }
    }
}
