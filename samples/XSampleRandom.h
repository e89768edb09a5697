#pragma once
// The random numbers of the sample generators: xoshiro256** seeded through splitmix64, with
// uniform and normal draws written out here rather than taken from <random>, whose
// distributions differ between standard libraries. The same seed gives the same numbers on
// every platform and compiler.

#include <cmath>
#include <numbers>

#include "XTypes.h"

class XSampleRandom
{
public:
    explicit XSampleRandom(UInt64 aSeed)
    {
        UInt64 state = aSeed;
        for (UInt64 & word : itsState)
        {
            // splitmix64: spreads any seed, 0 included, over the four words.
            state += 0x9E3779B97F4A7C15ull;
            UInt64 z = state;
            z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
            z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
            word = z ^ (z >> 31);
        }
    }

    UInt64 Next()
    {
        const UInt64 result = RotateLeft(itsState[1] * 5, 7) * 9;
        const UInt64 t = itsState[1] << 17;
        itsState[2] ^= itsState[0];
        itsState[3] ^= itsState[1];
        itsState[1] ^= itsState[2];
        itsState[0] ^= itsState[3];
        itsState[2] ^= t;
        itsState[3] = RotateLeft(itsState[3], 45);
        return result;
    }

    // Uniform in [0, 1), from the top 53 bits.
    double NextUnit() { return double(Next() >> 11) * 0x1.0p-53; }
    // Uniform in [aLow, aHigh).
    double NextUniform(double aLow, double aHigh) { return aLow + (aHigh - aLow) * NextUnit(); }

    // Standard normal, by the Box-Muller transform; the second value of each pair is kept for
    // the next call.
    double NextNormal()
    {
        if (itsHasSpare)
        {
            itsHasSpare = false;
            return itsSpare;
        }
        const double u = 1.0 - NextUnit(); // in (0, 1], so the logarithm is finite
        const double v = NextUnit();
        const double radius = std::sqrt(-2.0 * std::log(u));
        const double angle = 2.0 * std::numbers::pi * v;
        itsSpare = radius * std::sin(angle);
        itsHasSpare = true;
        return radius * std::cos(angle);
    }

private:
    static UInt64 RotateLeft(UInt64 aValue, int aShift) { return (aValue << aShift) | (aValue >> (64 - aShift)); }

    UInt64 itsState[4];
    double itsSpare = 0.0;
    bool itsHasSpare = false;
};
