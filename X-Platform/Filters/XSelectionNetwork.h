#pragma once
// A fixed sequence of compare-exchange steps that leaves, out of N values, the one that would
// stand at index K in ascending order at index K: the steps of Batcher's odd-even merge sort
// that that place depends on. It runs as straight-line code on any type with < and ?: (plain
// numbers, or vectors of the compiler's vector extensions, which select lane by lane), so one
// run selects in every lane at once. The values are reordered.
//
// The network is built at compile time: the sort of the next power of two of wires, where the
// wires from N on would hold +infinity (so their steps do nothing and are dropped), then pruned
// from the output backwards to the steps whose results are still needed, and of those to the
// half (minimum or maximum) that is needed.

#include <array>
#include <bit>
#include <utility>

#include "XTypes.h"

template <UInt32 N, UInt32 K>
class XSelectionNetwork
{
    static_assert(K < N && N <= 64, "a place among at most 64 values");

public:
    struct XStep
    {
        UInt8 itsLow;
        UInt8 itsHigh;
        bool itsMin; // the low wire's result is needed
        bool itsMax; // the high wire's result is needed
    };

    // Selects in place and returns the value at index K.
    template <typename V>
    static const V & Select(V * aValues)
    {
        Run(aValues, std::make_index_sequence<kSteps.itsCount>());
        return aValues[K];
    }

    static constexpr UInt32 GetStepCount() { return kSteps.itsCount; }

private:
    struct XPair
    {
        UInt8 itsLow;
        UInt8 itsHigh;
    };
    struct XSteps
    {
        std::array<XStep, 1024> itsSteps; // Batcher's sort of 64 wires has 543 pairs
        UInt32 itsCount;
    };

    // The pairs of Batcher's sort on wires below N, in order; their count when outPairs is null.
    static constexpr UInt32 SortPairs(XPair * outPairs)
    {
        const UInt32 padded = std::bit_ceil(N);
        UInt32 count = 0;
        for (UInt32 p = 1; p < padded; p *= 2)
            for (UInt32 k = p; k >= 1; k /= 2)
                for (UInt32 j = k % p; j + k < padded; j += 2 * k)
                    for (UInt32 i = 0; i < k && i + j + k < padded; ++i)
                        if ((i + j) / (2 * p) == (i + j + k) / (2 * p) && i + j + k < N)
                        {
                            if (outPairs != nullptr)
                                outPairs[count] = {UInt8(i + j), UInt8(i + j + k)};
                            ++count;
                        }
        return count;
    }

    static constexpr XSteps Prune()
    {
        std::array<XPair, SortPairs(nullptr)> pairs{};
        SortPairs(pairs.data());
        std::array<bool, N> needed{};
        needed[K] = true;
        XSteps steps{};
        UInt32 count = 0;
        for (UInt32 n = UInt32(pairs.size()); n-- > 0;)
        {
            const XPair pair = pairs[n];
            const bool min = needed[pair.itsLow];
            const bool max = needed[pair.itsHigh];
            if (!min && !max)
                continue;
            steps.itsSteps[count++] = {pair.itsLow, pair.itsHigh, min, max};
            needed[pair.itsLow] = true;
            needed[pair.itsHigh] = true;
        }
        for (UInt32 i = 0; i < count / 2; ++i)
            std::swap(steps.itsSteps[i], steps.itsSteps[count - 1 - i]);
        steps.itsCount = count;
        return steps;
    }

    static constexpr XSteps kSteps = Prune();

    template <XStep kStep, typename V>
    static void Step(V * aValues)
    {
        V & low = aValues[kStep.itsLow];
        V & high = aValues[kStep.itsHigh];
        if constexpr (kStep.itsMin && kStep.itsMax)
        {
            const V smaller = high < low ? high : low;
            high = high < low ? low : high;
            low = smaller;
        }
        else if constexpr (kStep.itsMin)
            low = high < low ? high : low;
        else
            high = high < low ? low : high;
    }

    template <typename V, std::size_t... I>
    static void Run(V * aValues, std::index_sequence<I...>)
    {
        (Step<kSteps.itsSteps[I]>(aValues), ...);
    }
};
