#include "XLUT.h"

#include <algorithm>
#include <vector>

#include "XAssert.h"
#include "XLock.h"

namespace
{
// What differs between tables of colours and of bytes.
template <typename T>
struct XEntryRules;

template <>
struct XEntryRules<XARGB32Colour>
{
    static constexpr XARGB32Colour kLowest = XARGB32Colour::kBlack;
    static constexpr XARGB32Colour kHighest = XARGB32Colour::kWhite;

    static UInt32 Key(const XARGB32Colour & aValue) { return aValue.GetARGB(); }
    // The cache compares red, green and blue only.
    static bool SameKey(UInt32 aKey, const XARGB32Colour & aValue) { return ((aKey ^ Key(aValue)) & 0x00FFFFFFu) == 0; }
    static UInt32 Distance(const XARGB32Colour & aValue, const XARGB32Colour & anEntry)
    {
        auto above = [](UInt8 v, UInt8 e) { return v > e ? UInt32(v - e) : 0u; };
        return (above(aValue.GetRed(), anEntry.GetRed()) + above(aValue.GetGreen(), anEntry.GetGreen()) +
                above(aValue.GetBlue(), anEntry.GetBlue())) /
               3;
    }
    template <typename Mix>
    static XARGB32Colour PerByte(const XARGB32Colour & a, const XARGB32Colour & b, Mix aMix)
    {
        return XARGB32Colour(aMix(a.GetAlpha(), b.GetAlpha()), aMix(a.GetRed(), b.GetRed()),
                             aMix(a.GetGreen(), b.GetGreen()), aMix(a.GetBlue(), b.GetBlue()));
    }
};

template <>
struct XEntryRules<UInt8>
{
    static constexpr UInt8 kLowest = 0;
    static constexpr UInt8 kHighest = 255;

    static UInt32 Key(UInt8 aValue) { return aValue; }
    static bool SameKey(UInt32 aKey, UInt8 aValue) { return aKey == aValue; }
    static UInt32 Distance(UInt8 aValue, UInt8 anEntry) { return aValue > anEntry ? aValue - anEntry : anEntry - aValue; }
    // A byte blends as an opaque grey whose three channels are then averaged: with equal
    // channels, the channel itself.
    template <typename Mix>
    static UInt8 PerByte(UInt8 a, UInt8 b, Mix aMix)
    {
        return aMix(a, b);
    }
};
} // namespace

template <typename T>
std::atomic<UInt32> XLUT<T>::cNextSeed{1};

template <typename T>
XLUT<T>::XLUT(UInt32 aSize) : XBaseLUT(aSize, sizeof(T)), itsSeed(TakeSeed())
{
}

template <typename T>
XLUT<T>::XLUT(const XLUT & anOther) : XBaseLUT(anOther), itsSeed(anOther.GetSeed())
{
}

template <typename T>
XLUT<T> & XLUT<T>::operator=(const XLUT & anOther)
{
    if (this == &anOther)
        return *this;
    if (GetLastEntry() == anOther.GetLastEntry())
    {
        XBaseLUT::operator=(anOther);
        CopySeed(anOther);
    }
    else
    {
        ResampleFrom(anOther, anOther.GetLastEntry(), GetLastEntry(), GetLastEntry());
        LUTChanged();
    }
    EmptySearchCache();
    return *this;
}

template <typename T>
void XLUT<T>::ResampleFrom(const XLUT & aSource, UInt32 aSourceLast, UInt32 anOwnLast, UInt32 anEnd)
{
    if (IsEmpty())
        return;
    XAssertText(!aSource.IsEmpty(), "source.GetSize() > 0");
    XAssertText(anOwnLast > 0, "own last > 0");
    XLock lock(*this, kLockReadWrite);
    XLock sourceLock(aSource, kLockRead);
    T * entries = Entries();
    const T * source = aSource.Entries();
    const UInt32 end = std::min(anEnd, GetLastEntry());
    for (UInt64 i = 0; i <= end; ++i)
        entries[i] = source[std::min<UInt64>(UInt64(aSourceLast) * i / anOwnLast, aSource.GetLastEntry())];
}

template <typename T>
UInt32 XLUT<T>::ValueToIndex(const T & aValue) const
{
    using Rules = XEntryRules<T>;
    const UInt64 cache = itsSearchCache.load(std::memory_order_relaxed);
    if (UInt32(cache) != kNoEntry && Rules::SameKey(UInt32(cache >> 32), aValue))
        return UInt32(cache);
    UInt32 found = 0;
    if (!IsEmpty())
    {
        XAssertText(IsLocked(), "table locked");
        const T * entries = Entries();
        UInt32 best = Rules::Distance(aValue, entries[0]);
        const UInt32 last = GetLastEntry();
        for (UInt32 i = 1; best != 0 && i <= last; ++i)
        {
            const UInt32 distance = Rules::Distance(aValue, entries[i]);
            if (distance < best)
            {
                best = distance;
                found = i;
            }
        }
    }
    itsSearchCache.store((UInt64(Rules::Key(aValue)) << 32) | found, std::memory_order_relaxed);
    return found;
}

template <typename T>
void XLUT<T>::SetValue(UInt32 anIndex, const T & aValue)
{
    XAssertText(anIndex < GetSize(), "index < GetSize()");
    XAssertText(IsWriteLockedByCurrentThread(), "table locked for writing");
    Entries()[anIndex] = aValue;
    EmptySearchCache();
    LUTChanged();
}

template <typename T>
void XLUT<T>::MakeLinearLUT(UInt32 aFirst, UInt32 aLast, const T & aValueFirst, const T & aValueLast)
{
    XLock lock(*this, kLockReadWrite);
    SetValue(aFirst, aValueFirst);
    SetValue(aLast, aValueLast);
    Blend(aFirst, aLast);
}

template <typename T>
void XLUT<T>::MakeDefaultLUT()
{
    if (!IsEmpty())
        MakeLinearLUT(0, GetLastEntry(), XEntryRules<T>::kLowest, XEntryRules<T>::kHighest);
}

template <typename T>
bool XLUT<T>::ClampRange(UInt32 & aFirst, UInt32 & aLast) const
{
    if (IsEmpty())
        return false;
    aFirst = std::min(aFirst, GetLastEntry());
    aLast = std::min(aLast, GetLastEntry());
    return aFirst <= aLast;
}

template <typename T>
void XLUT<T>::Blend(UInt32 aFirst, UInt32 aLast)
{
    if (!ClampRange(aFirst, aLast))
        return;
    XLock lock(*this, kLockReadWrite);
    const T c0 = IndexToValue(aFirst), c1 = IndexToValue(aLast);
    const SInt64 n = SInt64(aLast) - aFirst;
    for (SInt64 k = 1; k <= n; ++k)
        SetValue(UInt32(aFirst + k), XEntryRules<T>::PerByte(c0, c1, [k, n](UInt8 b0, UInt8 b1) {
                     return UInt8(b0 + (k * (SInt64(b1) - b0)) / n);
                 }));
}

template <typename T>
void XLUT<T>::Reverse(UInt32 aFirst, UInt32 aLast)
{
    if (!ClampRange(aFirst, aLast))
        return;
    XLock lock(*this, kLockReadWrite);
    const std::vector<T> copy(Entries() + aFirst, Entries() + UInt64(aLast) + 1);
    const UInt32 n = aLast - aFirst;
    for (UInt64 i = 0; i <= n; ++i)
        SetValue(UInt32(aFirst + i), copy[n - i]);
}

template <typename T>
void XLUT<T>::Fill(UInt32 aFirst, UInt32 aLast, const T & aValue)
{
    if (!ClampRange(aFirst, aLast))
        return;
    XLock lock(*this, kLockReadWrite);
    for (UInt64 i = aFirst; i <= aLast; ++i)
        SetValue(UInt32(i), aValue);
}

template <typename T>
void XLUT<T>::CopyDataFrom(const XLUT & aSource, UInt32 aSourceFirst, UInt32 aSourceLast, UInt32 aDestFirst,
                           UInt32 aDestLast)
{
    if (!aSource.ClampRange(aSourceFirst, aSourceLast) || !ClampRange(aDestFirst, aDestLast))
        return;
    XAssertText(aDestFirst < aDestLast, "destFirst < destLast");
    XLock lock(*this, kLockReadWrite);
    XLock sourceLock(aSource, kLockRead);
    const UInt64 n = aDestLast - aDestFirst, span = aSourceLast - aSourceFirst;
    for (UInt64 k = 0; k <= n; ++k)
        SetValue(UInt32(aDestFirst + k), aSource.IndexToValue(UInt32(aSourceFirst + k * span / n)));
}

template class XLUT<XARGB32Colour>;
template class XLUT<UInt8>;
