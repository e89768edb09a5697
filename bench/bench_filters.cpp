// The neighbourhood filters on the peers' stack A (256x256x64, 16-bit): W1 median 3x3x3, W2 mean
// 3x3x3 (A as float, a kernel of 27 ones), W3 dilation with the 3x3x3 box; and the median of
// sizes 5 and 7 on A and on A8 = min(A >> 4, 255), and the hybrid median of size 3. Every
// workload of the peers also runs on the baseline processor (AVX2 turned off) and by the plain
// rule of each filter (the fast paths turned off), which shows what the fast paths gain.
//
// Results: W1 and W2 darken or shrink their neighbourhoods at the faces where the peers repeat
// the edge voxels, so their rows also give the sum (mean) over the interior, the voxels one away
// from every face, which filter_interior.py gives for scipy. Dilation with skipped outside
// points equals the peers' repeated edges, so W3's sum compares directly.
//
// With BRINDLE_BENCH_DATA naming the peers' data folder, A.raw is read from there; otherwise a
// stack of the same size is made from a fixed seed. Rows are CSV (see XBenchCsvReporter.h).

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "BrindleImaging.h"
#include "XBenchCsvReporter.h"

namespace
{
constexpr UInt32 kWidth = 256, kHeight = 256, kDepth = 64;
constexpr UInt64 kVoxels = UInt64(kWidth) * kHeight * kDepth;
const bool kClassesRegistered = [] {
    XRegisterImagingClasses();
    return true;
}();

const std::vector<UInt16> & A()
{
    static const std::vector<UInt16> sVoxels = [] {
        std::vector<UInt16> voxels(kVoxels);
        if (const char * folder = std::getenv("BRINDLE_BENCH_DATA"))
        {
            std::ifstream file(std::string(folder) + "/A.raw", std::ios::binary);
            if (file.read(reinterpret_cast<char *>(voxels.data()), std::streamsize(kVoxels * 2)))
                return voxels;
        }
        std::mt19937 random(1001);
        for (UInt16 & voxel : voxels)
            voxel = UInt16(200 + random() % 3000);
        return voxels;
    }();
    return sVoxels;
}

template <class V, typename Convert>
const V & Volume(Convert aConvert)
{
    static const V sVolume = [&] {
        V volume(kWidth, kHeight, kDepth);
        XLock lock(volume, kLockWrite);
        auto * out = volume.GetBaseVoxelPtr();
        for (UInt64 i = 0; i < kVoxels; ++i)
            out[i] = aConvert(A()[i]);
        return volume;
    }();
    return sVolume;
}

const XGrey16Volume & A16() { return Volume<XGrey16Volume>([](UInt16 v) { return v; }); }
const XGrey8Volume & A8() { return Volume<XGrey8Volume>([](UInt16 v) { return UInt8(std::min(v >> 4, 255)); }); }
const XFPVolume & AF() { return Volume<XFPVolume>([](UInt16 v) { return float(v); }); }

// The sum of all voxels and of those one away from every face, as doubles.
template <class V>
std::pair<double, double> Sums(const XVolume & aVolume)
{
    const V & volume = dynamic_cast<const V &>(aVolume);
    XLock lock(volume, kLockRead);
    double all = 0.0;
    double interior = 0.0;
    for (UInt32 z = 0; z < kDepth; ++z)
        for (UInt32 y = 0; y < kHeight; ++y)
            for (UInt32 x = 0; x < kWidth; ++x)
            {
                const double v = double(volume.GetVoxel(SInt32(x), SInt32(y), SInt32(z)));
                all += v;
                if (x > 0 && y > 0 && z > 0 && x + 1 < kWidth && y + 1 < kHeight && z + 1 < kDepth)
                    interior += v;
            }
    return {all, interior};
}

std::string SumLabel(const std::pair<double, double> & aSums)
{
    char text[96];
    std::snprintf(text, sizeof text, "sum=%.0f;interior_sum=%.0f", aSums.first, aSums.second);
    return text;
}

std::string MeanLabel(const std::pair<double, double> & aSums)
{
    const double interior = double(kWidth - 2) * (kHeight - 2) * (kDepth - 2);
    char text[96];
    std::snprintf(text, sizeof text, "mean=%.4f;interior_mean=%.4f", aSums.first / double(kVoxels),
                  aSums.second / interior);
    return text;
}

// How a row runs: with the fast paths and AVX2 where the processor has it, with AVX2 off, or
// by the plain rule.
enum XPath
{
    kFast,
    kBaseline,
    kPlain
};

// Times aTool on aSource, one call an iteration, and labels the row with aLabel of the result.
void Run(benchmark::State & aState, X1To1VolumeTool & aTool, const XVolume & aSource, XPath aPath,
         const std::function<std::string(const XVolume &)> & aLabel)
{
    XIntelCPUInfo::SetFeatureEnabled(kCPUFeatureAVX2, aPath != kBaseline);
    XNeighbourhoodScanner::SetFastPathsEnabled(aPath != kPlain);
    std::unique_ptr<XVolume> result;
    for (auto _ : aState)
    {
        result.reset();
        const auto start = std::chrono::steady_clock::now();
        result.reset(aTool.ApplyTool(aSource));
        aState.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    XIntelCPUInfo::ResetFeatures();
    XNeighbourhoodScanner::SetFastPathsEnabled(true);
    aState.SetLabel(aLabel(*result));
}

XVector<X3DPoint> Box()
{
    XVector<X3DPoint> box;
    for (SInt32 z = -1; z <= 1; ++z)
        for (SInt32 y = -1; y <= 1; ++y)
            for (SInt32 x = -1; x <= 1; ++x)
                box.push_back(X3DPoint(x, y, z));
    return box;
}

template <class V>
void Median(benchmark::State & aState, UInt32 aSize, const V & aSource, XPath aPath)
{
    XMedianFilterVolumeTool median(aSize);
    Run(aState, median, aSource, aPath, [](const XVolume & aResult) { return SumLabel(Sums<V>(aResult)); });
}

void HybridMedian(benchmark::State & aState)
{
    XHybridMedianFilterVolumeTool hybrid(3);
    Run(aState, hybrid, A16(), kFast, [](const XVolume & aResult) { return SumLabel(Sums<XGrey16Volume>(aResult)); });
}

void Mean(benchmark::State & aState, XPath aPath)
{
    const std::vector<float> ones(27, 1.0f);
    XSpatialFilterVolumeTool mean(ones.data(), 3, 3, 3, 0.0f);
    Run(aState, mean, AF(), aPath, [](const XVolume & aResult) { return MeanLabel(Sums<XFPVolume>(aResult)); });
}

void Dilate(benchmark::State & aState, XPath aPath)
{
    XDilateFilterVolumeTool dilate(1, Box());
    Run(aState, dilate, A16(), aPath, [](const XVolume & aResult) {
        return "sum=" + std::to_string(UInt64(Sums<XGrey16Volume>(aResult).first));
    });
}
// Registers the row "workload|tool|1", one call an iteration, aRepeats times.
void Register(const std::string & aWorkload, const std::string & aTool, int aRepeats,
              const std::function<void(benchmark::State &)> & aRun)
{
    benchmark::RegisterBenchmark((aWorkload + "|" + aTool + "|1").c_str(), aRun)
        ->UseManualTime()
        ->Iterations(1)
        ->Repetitions(aRepeats);
}

// The same on each path: the fast one, without AVX2, and by the plain rule (3 times, being slow).
void RegisterPaths(const std::string & aWorkload, const std::string & aTool, int aRepeats,
                   const std::function<void(benchmark::State &, XPath)> & aRun)
{
    Register(aWorkload, aTool, aRepeats, [aRun](benchmark::State & aState) { aRun(aState, kFast); });
    Register(aWorkload, aTool + " baseline", aRepeats, [aRun](benchmark::State & aState) { aRun(aState, kBaseline); });
    Register(aWorkload, aTool + " plain rule", 3, [aRun](benchmark::State & aState) { aRun(aState, kPlain); });
}

std::string Extent(UInt32 aSize)
{
    return std::to_string(aSize) + "x" + std::to_string(aSize) + "x" + std::to_string(aSize);
}
} // namespace

int main(int argc, char ** argv)
{
    benchmark::Initialize(&argc, argv);
    const int repeats = std::getenv("BENCH_REPEATS") != nullptr ? std::atoi(std::getenv("BENCH_REPEATS")) : 5;
    RegisterPaths("W1 median 3x3x3 A u16", "brindle XMedianFilterVolumeTool", repeats,
                  [](benchmark::State & aState, XPath aPath) { Median(aState, 3, A16(), aPath); });
    for (UInt32 size : {5u, 7u})
        Register("W1 median " + Extent(size) + " A u16", "brindle XMedianFilterVolumeTool", repeats,
                 [size](benchmark::State & aState) { Median(aState, size, A16(), kFast); });
    for (UInt32 size : {3u, 5u, 7u})
        Register("W1 median " + Extent(size) + " A8 u8", "brindle XMedianFilterVolumeTool", repeats,
                 [size](benchmark::State & aState) { Median(aState, size, A8(), kFast); });
    Register("W1 hybrid median 3x3x3 A u16", "brindle XHybridMedianFilterVolumeTool", repeats, HybridMedian);
    RegisterPaths("W2 mean 3x3x3 A f32", "brindle XSpatialFilterVolumeTool", repeats, Mean);
    RegisterPaths("W3 dilate 3x3x3 A u16", "brindle XDilateFilterVolumeTool box", repeats, Dilate);
    XBenchCsvReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
