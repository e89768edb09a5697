#pragma once
// A look-up table of entries T (XARGB32Colour or unsigned char) indexed from 0.
//
// Entries are read and written only under an XLock on the table. IndexToValue checks nothing,
// for loops that look up many values; SetValue asserts that the calling thread holds a write
// lock (a read lock may still share the entries with a copy of the table).
//
// Seeds: every table takes a seed from its class's counter when it is made, and again for
// every entry that SetValue writes and every LUTChanged. Copies keep the seed of their source,
// so two tables of one seed hold the same entries; renderers compare seeds to see a change.
//
// Ranges: Blend, Reverse, Fill and CopyDataFrom clamp their indices to the last entry, do
// nothing when the first index lies above the last, take the locks they need and write through
// SetValue.
//
// ValueToIndex keeps the last value searched and the index found in a cache of one word,
// written from const calls on any thread without a lock; SetValue and assignment empty it.

#include <atomic>
#include <type_traits>

#include "XARGB32Colour.h"
#include "XBaseLUT.h"

template <typename T>
class XLUT : public XBaseLUT
{
    static_assert(std::is_same_v<T, XARGB32Colour> || std::is_same_v<T, UInt8>, "tables of colours or bytes");

public:
    using XEntry = T;

    explicit XLUT(UInt32 aSize);
    // Shares the entries and keeps the seed; the search cache starts empty.
    XLUT(const XLUT & anOther);
    // Same size: takes the other's entries and seed. Another size: resamples, entry i taking
    // the other's entry (other's last * i) / (own last), and takes a new seed.
    XLUT & operator=(const XLUT & anOther);

    // The entry, unchecked; the table must be locked (for writing, to write through it).
    T & IndexToValue(UInt32 anIndex) { return Entries()[anIndex]; }
    const T & IndexToValue(UInt32 anIndex) const { return Entries()[anIndex]; }
    void IndexToValue(UInt32 anIndex, T & outValue) const { outValue = Entries()[anIndex]; }
    // The first entry nearest to aValue; the table must be locked. Bytes: the smallest absolute
    // difference. Colours: the distance is one-sided, the sum over red, green and blue of how
    // far aValue lies above the entry, divided by 3, so the first entry at least as bright in
    // all three channels wins; alpha plays no part, also in the cache. An empty table gives 0.
    UInt32 ValueToIndex(const T & aValue) const;

    // Under a write lock: SetValue(aFirst, aValueFirst), SetValue(aLast, aValueLast), then
    // Blend(aFirst, aLast).
    void MakeLinearLUT(UInt32 aFirst, UInt32 aLast, const T & aValueFirst, const T & aValueLast);
    // A linear table over every entry: opaque black to opaque white, or 0 to 255.
    virtual void MakeDefaultLUT();
    // Entry aFirst + k, for k = 1 to n = aLast - aFirst, becomes c0 + (k * (c1 - c0)) / n for
    // each byte (alpha included), in signed arithmetic truncating toward zero.
    virtual void Blend(UInt32 aFirst, UInt32 aLast);
    // Turns the range round.
    virtual void Reverse(UInt32 aFirst, UInt32 aLast);
    // Stores the entry (the calling thread holding a write lock), empties the search cache and
    // takes a new seed.
    virtual void SetValue(UInt32 anIndex, const T & aValue);
    virtual void Fill(UInt32 aFirst, UInt32 aLast, const T & aValue);
    // Destination entry aDestFirst + k takes source entry
    // aSourceFirst + (k * (aSourceLast - aSourceFirst)) / (aDestLast - aDestFirst): entries are
    // dropped or repeated, never interpolated. A destination range of one entry is refused.
    virtual void CopyDataFrom(const XLUT & aSource, UInt32 aSourceFirst, UInt32 aSourceLast, UInt32 aDestFirst,
                              UInt32 aDestLast);

    UInt32 GetSeed() const { return itsSeed.load(std::memory_order_relaxed); }

protected:
    // Takes a new seed; the search cache stays.
    void LUTChanged() { itsSeed.store(TakeSeed(), std::memory_order_relaxed); }
    void EmptySearchCache() { itsSearchCache.store(kEmptyCache, std::memory_order_relaxed); }
    // Keeps another table's seed, for copies of equal contents.
    void CopySeed(const XLUT & anOther) { itsSeed.store(anOther.GetSeed(), std::memory_order_relaxed); }
    // Clamps both indices to the last entry; false when there is nothing to do (an empty table,
    // or aFirst above aLast).
    bool ClampRange(UInt32 & aFirst, UInt32 & aLast) const;
    T * Entries() const { return static_cast<T *>(GetDataPointer()); }
    // Entry i of this table (own last > 0) gets entry (source last * i) / (own last) of
    // aSource, for i up to anEnd, with the locks taken. No seed is taken.
    void ResampleFrom(const XLUT & aSource, UInt32 aSourceLast, UInt32 anOwnLast, UInt32 anEnd);

private:
    // The counter of the class's seeds.
    static std::atomic<UInt32> cNextSeed;
    static UInt32 TakeSeed() { return cNextSeed.fetch_add(1, std::memory_order_relaxed); }

    // Index in the low half, the value's bits in the high half; an index of 0xFFFFFFFF is empty.
    static constexpr UInt64 kEmptyCache = kNoEntry;

    std::atomic<UInt32> itsSeed;
    mutable std::atomic<UInt64> itsSearchCache{kEmptyCache};
};

extern template class XLUT<XARGB32Colour>;
extern template class XLUT<UInt8>;
