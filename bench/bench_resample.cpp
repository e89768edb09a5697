// W8 of the peers' benchmarks: the 8-bit stack B8 (512x512x64) resampled to 384x384x48 by
// XVolumeResampleTool on one thread, into a destination made beforehand (as ITK keeps its output
// buffer between runs). bench/run_resample_bench.sh runs it beside ITK's ResampleImageFilter and
// scipy's zoom in one session. Rows:
//   triangle                 the linear filter, one tool for every call: its weights are made
//                            at the first call and kept, as for a series of images of one size
//   triangle (new tool)      the same with a new tool, so weights are made in each call
//   lanczos3                 the widest filter of the library, for reference (its own workload)
// With BRINDLE_BENCH_DATA naming the peers' data folder, B8.raw is read from there; otherwise a
// stack of the same size is made from a fixed seed. Rows are CSV (see XBenchCsvReporter.h); the
// result column is the mean of the output voxels.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
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
constexpr int kRepeats = 7;
const X3DRect kTarget(kWidth * 3 / 4, kHeight * 3 / 4, kDepth * 3 / 4);
const bool kClassesRegistered = [] {
    XRegisterImagingClasses();
    return true;
}();

const XGrey8Volume & B8()
{
    static const XGrey8Volume sVolume = [] {
        std::vector<UInt8> voxels(kVoxels);
        bool loaded = false;
        if (const char * folder = std::getenv("BRINDLE_BENCH_DATA"))
        {
            std::ifstream file(std::string(folder) + "/B8.raw", std::ios::binary);
            loaded = bool(file.read(reinterpret_cast<char *>(voxels.data()), std::streamsize(kVoxels)));
        }
        if (!loaded)
        {
            std::mt19937 random(1002);
            for (UInt8 & voxel : voxels)
                voxel = UInt8(random() % 200);
        }
        XGrey8Volume volume(kWidth, kHeight, kDepth);
        XLock lock(volume, kLockWrite);
        std::memcpy(volume.GetBaseVoxelPtr(), voxels.data(), kVoxels);
        return volume;
    }();
    return sVolume;
}

std::string MeanOf(const XGrey8Volume & aVolume)
{
    char text[32];
    std::snprintf(text, sizeof(text), "mean=%.4f", aVolume.FindSum() / double(aVolume.GetBounds().GetVolume()));
    return text;
}

// One warm-up call, then one timed call per iteration.
void W8(benchmark::State & aState, XFilterMode aMode, bool aNewTool)
{
    XGrey8Volume dest(kTarget);
    auto tool = std::make_unique<XVolumeResampleTool>();
    const auto run = [&] {
        if (aNewTool)
            tool = std::make_unique<XVolumeResampleTool>();
        tool->SetFilter(aMode);
        tool->ApplyTool(B8(), dest, B8().GetBounds(), kTarget);
    };
    run();
    for (auto _ : aState)
    {
        const auto start = std::chrono::steady_clock::now();
        run();
        benchmark::ClobberMemory();
        aState.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    aState.SetLabel(MeanOf(dest));
}
} // namespace

#define BRINDLE_W8(mode, newTool, name)                                                               \
    BENCHMARK_CAPTURE(W8, mode, mode, newTool)->Name(name)->UseManualTime()->Iterations(1)->Repetitions(kRepeats)

BRINDLE_W8(kFilterTriangle, false, "W8 resize B8 -> 384x384x48 linear|brindle XVolumeResampleTool triangle|1");
BRINDLE_W8(kFilterTriangle, true,
           "W8 resize B8 -> 384x384x48 linear|brindle XVolumeResampleTool triangle (new tool)|1");
BRINDLE_W8(kFilterLanczos3, false, "W8 resize B8 -> 384x384x48 lanczos3|brindle XVolumeResampleTool lanczos3|1");

BRINDLE_BENCH_MAIN()
