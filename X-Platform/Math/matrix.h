#pragma once
// The storage of X3DMatrix: a dense matrix whose representation (the row pointers, the sizes,
// the capacities and a reference count; each row an array of its own) is shared between
// copies. Copying and assigning share; the first write through a non-const accessor of a
// shared matrix gives it a representation of its own with the same values (copy on write).
//
// The reference count is a plain integer: a matrix and its copies belong to one thread.

#include <algorithm>
#include <utility>

#include "XAssert.h"
#include "XMatrixException.h"
#include "XTypes.h"

template <typename T>
class matrix
{
public:
    // aRows by aColumns zeros.
    matrix(SInt32 aRows = 1, SInt32 aColumns = 1) : itsRep(MakeRep(aRows, aColumns)) {}
    matrix(const matrix & anOther) : itsRep(anOther.itsRep) { ++itsRep->itsRefCount; }
    matrix & operator=(const matrix & anOther)
    {
        ++anOther.itsRep->itsRefCount;
        Release(itsRep);
        itsRep = anOther.itsRep;
        return *this;
    }
    ~matrix() { Release(itsRep); }

    SInt32 GetRowCount() const { return itsRep->itsRowCount; }
    SInt32 GetColumnCount() const { return itsRep->itsColumnCount; }
    // True when another matrix shares this one's representation.
    bool IsShared() const { return itsRep->itsRefCount > 1; }

    // Checked element access; XMatrixException for an index outside the matrix.
    T operator()(SInt32 aRow, SInt32 aColumn) const
    {
        CheckIndex(aRow, aColumn);
        return itsRep->itsRows[aRow][aColumn];
    }
    T & operator()(SInt32 aRow, SInt32 aColumn)
    {
        CheckIndex(aRow, aColumn);
        return MutableRow(aRow)[aColumn];
    }

    // Unchecked rows for the loops of the matrix operations; the mutable one detaches.
    const T * Row(SInt32 aRow) const { return itsRep->itsRows[aRow]; }
    T * MutableRow(SInt32 aRow)
    {
        Detach();
        return itsRep->itsRows[aRow];
    }
    // Exchanges two rows by their pointers.
    void SwapRows(SInt32 aFirst, SInt32 aSecond)
    {
        Detach();
        std::swap(itsRep->itsRows[aFirst], itsRep->itsRows[aSecond]);
    }

    // Changes the size in place, keeping the values that still fit; new elements are zero.
    // Within the capacity the rows are kept.
    void Resize(SInt32 aRows, SInt32 aColumns)
    {
        XRep * old = itsRep;
        if (old->itsRefCount == 1 && aRows <= old->itsRowCapacity &&
            aColumns <= old->itsColumnCapacity)
        {
            for (SInt32 r = 0; r < aRows; ++r)
                std::fill(old->itsRows[r] + (r < old->itsRowCount ? old->itsColumnCount : 0),
                          old->itsRows[r] + old->itsColumnCapacity, T(0));
            old->itsRowCount = aRows;
            old->itsColumnCount = aColumns;
            return;
        }
        itsRep = MakeRep(aRows, aColumns);
        CopyValues(*old, *itsRep);
        Release(old);
    }

private:
    struct XRep
    {
        T ** itsRows;
        SInt32 itsRowCount;
        SInt32 itsColumnCount;
        SInt32 itsRowCapacity;
        SInt32 itsColumnCapacity;
        SInt32 itsRefCount;
    };

    void CheckIndex(SInt32 aRow, SInt32 aColumn) const
    {
        if (aRow < 0 || aRow >= itsRep->itsRowCount || aColumn < 0 ||
            aColumn >= itsRep->itsColumnCount)
            throw XMatrixException("matrixT::operator(): Index out of range!");
    }

    static XRep * MakeRep(SInt32 aRows, SInt32 aColumns)
    {
        XAssert(aRows >= 0 && aColumns >= 0);
        XRep * rep = new XRep{new T *[std::size_t(aRows)], aRows, aColumns, aRows, aColumns, 1};
        for (SInt32 r = 0; r < aRows; ++r)
            rep->itsRows[r] = new T[std::size_t(aColumns)]();
        return rep;
    }

    static void CopyValues(const XRep & aSource, XRep & aDest)
    {
        const SInt32 rows = std::min(aSource.itsRowCount, aDest.itsRowCount);
        const SInt32 columns = std::min(aSource.itsColumnCount, aDest.itsColumnCount);
        for (SInt32 r = 0; r < rows; ++r)
            std::copy(aSource.itsRows[r], aSource.itsRows[r] + columns, aDest.itsRows[r]);
    }

    static void Release(XRep * aRep)
    {
        if (--aRep->itsRefCount > 0)
            return;
        for (SInt32 r = 0; r < aRep->itsRowCapacity; ++r)
            delete[] aRep->itsRows[r];
        delete[] aRep->itsRows;
        delete aRep;
    }

    void Detach()
    {
        if (itsRep->itsRefCount == 1)
            return;
        XRep * copy = MakeRep(itsRep->itsRowCount, itsRep->itsColumnCount);
        CopyValues(*itsRep, *copy);
        --itsRep->itsRefCount;
        itsRep = copy;
    }

    XRep * itsRep;
};
