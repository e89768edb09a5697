// Colours in voxel loops: blending and saturating sums over a million ARGB32 colours against the
// same arithmetic written by hand on plain bytes. The colour type should cost nothing over the
// hand-written loop. Rows are CSV (see XBenchCsvReporter.h).

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "BrindleImaging.h"
#include "XBenchCsvReporter.h"

namespace
{
constexpr int kColours = 1 << 20;
constexpr int kRepeats = 9;

std::vector<XARGB32Colour> RandomColours(unsigned aSeed)
{
    std::mt19937 random(aSeed);
    std::vector<XARGB32Colour> colours(kColours);
    for (XARGB32Colour & colour : colours)
        colour.SetARGB(UInt32(random()));
    return colours;
}

const std::vector<XARGB32Colour> & Overlay()
{
    static const std::vector<XARGB32Colour> sColours = RandomColours(7);
    return sColours;
}

UInt64 Checksum(const std::vector<XARGB32Colour> & aColours)
{
    UInt64 sum = 0;
    for (const XARGB32Colour & colour : aColours)
        sum += colour.GetRed() + colour.GetGreen() + colour.GetBlue();
    return sum;
}

template <typename Kernel>
void Run(benchmark::State & aState, Kernel aKernel)
{
    const std::vector<XARGB32Colour> base = RandomColours(3);
    const std::vector<XARGB32Colour> & overlay = Overlay();
    std::vector<XARGB32Colour> colours;
    for (auto _ : aState)
    {
        aState.PauseTiming();
        colours = base;
        aState.ResumeTiming();
        aKernel(colours.data(), overlay.data());
        benchmark::ClobberMemory();
    }
    aState.SetLabel("sum=" + std::to_string(Checksum(colours)));
}

void C1_Blend(benchmark::State & aState)
{
    Run(aState, [](XARGB32Colour * aColours, const XARGB32Colour * anOverlay) {
        for (int i = 0; i < kColours; ++i)
            aColours[i].BlendRGBWith(anOverlay[i]);
    });
}

void C1_PlainBlend(benchmark::State & aState)
{
    Run(aState, [](XARGB32Colour * aColours, const XARGB32Colour * anOverlay) {
        UInt8 * bytes = reinterpret_cast<UInt8 *>(aColours);
        const UInt8 * over = reinterpret_cast<const UInt8 *>(anOverlay);
        for (int i = 0; i < kColours * 4; i += 4)
        {
            const UInt32 t = over[i], u = 255 - t;
            for (int c = 1; c < 4; ++c)
                bytes[i + c] = UInt8((over[i + c] * t + bytes[i + c] * u) >> 8);
        }
    });
}

void C2_Add(benchmark::State & aState)
{
    Run(aState, [](XARGB32Colour * aColours, const XARGB32Colour * anOverlay) {
        for (int i = 0; i < kColours; ++i)
            aColours[i] += anOverlay[i];
    });
}

void C2_PlainAdd(benchmark::State & aState)
{
    Run(aState, [](XARGB32Colour * aColours, const XARGB32Colour * anOverlay) {
        UInt8 * bytes = reinterpret_cast<UInt8 *>(aColours);
        const UInt8 * over = reinterpret_cast<const UInt8 *>(anOverlay);
        for (int i = 0; i < kColours * 4; i += 4)
            for (int c = 1; c < 4; ++c)
            {
                const UInt32 sum = UInt32(bytes[i + c]) + over[i + c];
                bytes[i + c] = UInt8(sum > 255 ? 255 : sum);
            }
    });
}
} // namespace

BENCHMARK(C1_Blend)->Name("C1 blend 1M ARGB32 colours|brindle XARGB32Colour|1")->Iterations(1)->Repetitions(kRepeats);
BENCHMARK(C1_PlainBlend)->Name("C1 blend 1M ARGB32 colours|c-loop (reference)|1")->Iterations(1)->Repetitions(kRepeats);
BENCHMARK(C2_Add)->Name("C2 saturating add 1M ARGB32 colours|brindle XARGB32Colour|1")->Iterations(1)->Repetitions(kRepeats);
BENCHMARK(C2_PlainAdd)->Name("C2 saturating add 1M ARGB32 colours|c-loop (reference)|1")->Iterations(1)->Repetitions(kRepeats);

BRINDLE_BENCH_MAIN()
