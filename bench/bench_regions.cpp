// Region algebra on two masked regions of 512x512x64: the peers' mask C (B > 1000) and a second
// mask from the same stack (B > 600), against numpy's &, | and & ~ on the same boolean arrays
// (bench/region_peers.py). Each operation works on a copy of the first region, as the free
// operators do, and ends in canonical form (tight box, mask dropped when full).
// With BRINDLE_BENCH_DATA naming the peers' data folder, B.raw is read from there; otherwise a
// stack of the same size is made from a fixed seed. Rows are CSV (see XBenchCsvReporter.h).

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "BrindleImaging.h"
#include "XBenchCsvReporter.h"

namespace
{
constexpr UInt32 kWidth = 512, kHeight = 512, kDepth = 64;
constexpr UInt64 kVoxels = UInt64(kWidth) * kHeight * kDepth;
// Timed repetitions: BENCH_REPEATS, as on the numpy side, else 7.
const int kRepeats = [] {
    const char * repeats = std::getenv("BENCH_REPEATS");
    return repeats != nullptr && std::atoi(repeats) > 0 ? std::atoi(repeats) : 7;
}();
const bool kClassesRegistered = [] {
    XRegisterImagingClasses();
    return true;
}();

const std::vector<UInt16> & B()
{
    static const std::vector<UInt16> sVoxels = [] {
        std::vector<UInt16> voxels(kVoxels);
        if (const char * folder = std::getenv("BRINDLE_BENCH_DATA"))
        {
            std::ifstream file(std::string(folder) + "/B.raw", std::ios::binary);
            if (file.read(reinterpret_cast<char *>(voxels.data()), std::streamsize(kVoxels * 2)))
                return voxels;
        }
        std::mt19937 random(1002);
        for (UInt16 & voxel : voxels)
            voxel = UInt16(200 + random() % 3000);
        return voxels;
    }();
    return sVoxels;
}

X3DRegion Threshold(UInt16 aLevel)
{
    XMaskVolume mask(kWidth, kHeight, kDepth);
    {
        XLock lock(mask, kLockWrite);
        UInt8 * out = mask.GetBaseVoxelPtr();
        for (UInt64 i = 0; i < kVoxels; ++i)
            out[i] = B()[i] > aLevel ? 255 : 0;
    }
    return X3DRegion(mask);
}

const X3DRegion & C() { static const X3DRegion sRegion = Threshold(1000); return sRegion; }
const X3DRegion & D() { static const X3DRegion sRegion = Threshold(600); return sRegion; }

template <typename Operation>
void Run(benchmark::State & aState, Operation anOperation)
{
    // The inputs are made, and one warm-up call is made, before the clock starts (as on the
    // numpy side).
    const X3DRegion & c = C();
    const X3DRegion & d = D();
    std::unique_ptr<X3DRegion> result = std::make_unique<X3DRegion>(anOperation(c, d));
    for (auto _ : aState)
    {
        result.reset();
        const auto start = std::chrono::steady_clock::now();
        result = std::make_unique<X3DRegion>(anOperation(c, d));
        aState.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    aState.SetLabel("voxels=" + std::to_string(result->GetVolume()));
}

void R1_Sect(benchmark::State & aState) { Run(aState, [](const X3DRegion & a, const X3DRegion & b) { return a & b; }); }
void R2_Union(benchmark::State & aState) { Run(aState, [](const X3DRegion & a, const X3DRegion & b) { return a | b; }); }
void R3_Difference(benchmark::State & aState) { Run(aState, [](const X3DRegion & a, const X3DRegion & b) { return a - b; }); }

void R4_GreaterOrEqual(benchmark::State & aState)
{
    const X3DRegion & c = C();
    bool answer = false;
    for (auto _ : aState)
    {
        const auto start = std::chrono::steady_clock::now();
        answer = c.IsVolumeGreaterThanOrEqualTo(1000);
        aState.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    aState.SetLabel(answer ? "answer=1" : "answer=0");
}

void R4_GetVolume(benchmark::State & aState)
{
    const X3DRegion & c = C();
    UInt32 count = 0;
    for (auto _ : aState)
    {
        const auto start = std::chrono::steady_clock::now();
        count = c.GetVolume();
        aState.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    aState.SetLabel("voxels=" + std::to_string(count));
}
} // namespace

#define BRINDLE_REGION_BENCH(function, name) \
    BENCHMARK(function)->Name(name)->UseManualTime()->Iterations(1)->Repetitions(kRepeats)

BRINDLE_REGION_BENCH(R1_Sect, "R1 region and (B>1000)&(B>600)|brindle X3DRegion operator&|1");
BRINDLE_REGION_BENCH(R2_Union, "R2 region or (B>1000) or (B>600)|brindle X3DRegion operator or|1");
BRINDLE_REGION_BENCH(R3_Difference, "R3 region minus (B>1000)&~(B>600)|brindle X3DRegion operator-|1");
BRINDLE_REGION_BENCH(R4_GreaterOrEqual, "R4 region has 1000 voxels B>1000|brindle IsVolumeGreaterThanOrEqualTo|1");
BRINDLE_REGION_BENCH(R4_GetVolume, "R4 region count voxels B>1000|brindle GetVolume|1");

BRINDLE_BENCH_MAIN()
