// Table look-up: 4 M 8-bit indices turned into ARGB32 colours through an XIntToColourLUT (the
// table locked once, IndexToValue per index), beside the same look-up in a plain C array of 256
// colours on the same indices. The table should cost next to nothing over the array. Rows are
// CSV (see XBenchCsvReporter.h).

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "BrindleImaging.h"
#include "XBenchCsvReporter.h"

namespace
{
constexpr int kIndices = 4 << 20;
constexpr int kRepeats = 15;

const std::vector<UInt8> & Indices()
{
    static const std::vector<UInt8> sIndices = [] {
        std::mt19937 random(11);
        std::vector<UInt8> indices(kIndices);
        for (UInt8 & index : indices)
            index = UInt8(random());
        return indices;
    }();
    return sIndices;
}

const XIntToColourLUT & Palette()
{
    static const XIntToColourLUT sPalette = XNiceColours::GetWavelengthLUT();
    return sPalette;
}

UInt64 Checksum(const std::vector<XARGB32Colour> & aColours)
{
    UInt64 sum = 0;
    for (const XARGB32Colour & colour : aColours)
        sum += colour.GetARGB();
    return sum;
}

template <typename Kernel>
void Run(benchmark::State & aState, Kernel aKernel)
{
    const std::vector<UInt8> & indices = Indices();
    std::vector<XARGB32Colour> colours(kIndices);
    for (auto _ : aState)
    {
        aKernel(indices.data(), colours.data());
        benchmark::ClobberMemory();
    }
    aState.SetLabel("sum=" + std::to_string(Checksum(colours)));
}

void L1_Table(benchmark::State & aState)
{
    Run(aState, [](const UInt8 * anIndices, XARGB32Colour * aColours) {
        const XLUT<XARGB32Colour> & table = Palette();
        XLock lock(table, kLockRead);
        for (int i = 0; i < kIndices; ++i)
            aColours[i] = table.IndexToValue(anIndices[i]);
    });
}

void L1_PlainArray(benchmark::State & aState)
{
    static XARGB32Colour sPlain[256];
    const XVector<XARGB32Colour> colours = Palette().GetVectorOfColours();
    std::copy(colours.begin(), colours.end(), sPlain);
    Run(aState, [](const UInt8 * anIndices, XARGB32Colour * aColours) {
        for (int i = 0; i < kIndices; ++i)
            aColours[i] = sPlain[anIndices[i]];
    });
}
} // namespace

BENCHMARK(L1_Table)->Name("L1 look-up 4M 8-bit indices to ARGB32|brindle XIntToColourLUT|1")->Iterations(1)->Repetitions(kRepeats);
BENCHMARK(L1_PlainArray)->Name("L1 look-up 4M 8-bit indices to ARGB32|c-array (reference)|1")->Iterations(1)->Repetitions(kRepeats);

BRINDLE_BENCH_MAIN()
