// Geometry in voxel loops: X3DRect::Contains over a million points against the same box test
// written by hand on plain integers. Both should compile to the same compare-and-branch code.
// Rows are CSV (see XBenchCsvReporter.h).

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "BrindleImaging.h"
#include "XBenchCsvReporter.h"

namespace
{
constexpr int kPoints = 1 << 20;
constexpr int kRepeats = 9;

struct XPlainBox
{
    SInt32 itsLeft, itsRight, itsTop, itsBottom, itsFront, itsBack;
};

const std::vector<X3DPoint> & Points()
{
    static const std::vector<X3DPoint> sPoints = [] {
        std::mt19937 random(42);
        std::uniform_int_distribution<SInt32> coordinate(-64, 576);
        std::vector<X3DPoint> points(kPoints);
        for (X3DPoint & point : points)
            point = X3DPoint(coordinate(random), coordinate(random), coordinate(random));
        return points;
    }();
    return sPoints;
}

void G1_BoxContains(benchmark::State & aState)
{
    const X3DRect box(0, 0, 0, 512, 512, 512);
    benchmark::DoNotOptimize(&box);
    const std::vector<X3DPoint> & points = Points();
    UInt32 inside = 0;
    for (auto _ : aState)
    {
        inside = 0;
        for (const X3DPoint & point : points)
            inside += box.Contains(point) ? 1 : 0;
        benchmark::DoNotOptimize(inside);
    }
    aState.SetLabel("inside=" + std::to_string(inside));
}

void G1_PlainContains(benchmark::State & aState)
{
    const XPlainBox box{0, 512, 0, 512, 0, 512};
    benchmark::DoNotOptimize(&box);
    const std::vector<X3DPoint> & points = Points();
    UInt32 inside = 0;
    for (auto _ : aState)
    {
        inside = 0;
        for (const X3DPoint & point : points)
            inside += (box.itsLeft <= point.x && point.x < box.itsRight && box.itsTop <= point.y &&
                       point.y < box.itsBottom && box.itsFront <= point.z && point.z < box.itsBack)
                          ? 1
                          : 0;
        benchmark::DoNotOptimize(inside);
    }
    aState.SetLabel("inside=" + std::to_string(inside));
}
} // namespace

BENCHMARK(G1_BoxContains)->Name("G1 box contains 1M points|brindle X3DRect|1")->Iterations(1)->Repetitions(kRepeats);
BENCHMARK(G1_PlainContains)->Name("G1 box contains 1M points|c-loop (reference)|1")->Iterations(1)->Repetitions(kRepeats);

BRINDLE_BENCH_MAIN()
