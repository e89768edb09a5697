// Volumes at work on a 512x512x64 stack (the peers' input B, and B8 = min(B >> 4, 255)),
// each beside the limit of the memory system for the same bytes:
//   V1  same-type CopyIn of the whole Grey16 volume         against memcpy of its bytes
//   W12 Grey16 to Grey8 (v >> 8)                            against memcpy of the output bytes
//   V2  Grey8 to ARGB32 (255, v, v, v)                      against memcpy of the output bytes
//   W6  FindMinMax and FindSum of B                         against one streaming read
//   V3  operator+= with a value                             against memcpy of the bytes
//   V4  XFileStream write and read of the volume            against plain write and read,
//       and the write in the other byte order (voxels turned on the way out)
//   V5  FlipV, Rotate180 and Rotate90CW                     against memcpy of the bytes
// With BRINDLE_BENCH_DATA naming the peers' data folder, B.raw and B8.raw are read from there,
// so that the numpy rows of bench/volume_peers.py work on the same bytes; otherwise a stack of
// the same size is made from a fixed seed. Rows are CSV (see XBenchCsvReporter.h).

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

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
constexpr int kRepeats = 7;
const bool kClassesRegistered = [] {
    XRegisterImagingClasses();
    return true;
}();

template <typename T>
std::vector<T> LoadOrMake(const char * aName, UInt32 aSeed)
{
    std::vector<T> voxels(kVoxels);
    if (const char * folder = std::getenv("BRINDLE_BENCH_DATA"))
    {
        std::ifstream file(std::string(folder) + "/" + aName, std::ios::binary);
        if (file.read(reinterpret_cast<char *>(voxels.data()), std::streamsize(kVoxels * sizeof(T))))
            return voxels;
    }
    std::mt19937 random(aSeed);
    for (T & voxel : voxels)
        voxel = T(200 + random() % 3000);
    return voxels;
}

template <class V>
const V & Source(const char * aName)
{
    static const V sVolume = [aName] {
        V volume(kWidth, kHeight, kDepth);
        const auto voxels = LoadOrMake<typename V::XVoxel>(aName, 1002);
        XLock lock(volume, kLockWrite);
        std::memcpy(volume.GetBaseVoxelPtr(), voxels.data(), kVoxels * sizeof(typename V::XVoxel));
        return volume;
    }();
    return sVolume;
}
const XGrey16Volume & B() { return Source<XGrey16Volume>("B.raw"); }
const XGrey8Volume & B8() { return Source<XGrey8Volume>("B8.raw"); }

// Runs aWork once per iteration and reports its time alone; aPrepare runs outside the clock.
template <typename Prepare, typename Work>
void Timed(benchmark::State & aState, Prepare aPrepare, Work aWork)
{
    for (auto _ : aState)
    {
        aPrepare();
        const auto start = std::chrono::steady_clock::now();
        aWork();
        benchmark::ClobberMemory();
        aState.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
}

// memcpy of aBytes between two buffers that were touched before.
void Memcpy(benchmark::State & aState, UInt64 aBytes)
{
    std::unique_ptr<UInt8[]> source(new UInt8[aBytes]), dest(new UInt8[aBytes]);
    std::memset(source.get(), 1, aBytes);
    std::memset(dest.get(), 2, aBytes);
    Timed(aState, [] {}, [&] { std::memcpy(dest.get(), source.get(), aBytes); });
    aState.SetLabel("bytes=" + std::to_string(aBytes));
}

template <typename T>
UInt64 Checksum(const XPackedVolume<T> & aVolume)
{
    XLock lock(aVolume, kLockRead);
    const UInt8 * bytes = static_cast<const UInt8 *>(aVolume.GetBasePtr());
    UInt64 sum = 0;
    for (UInt64 i = 0; i < aVolume.GetVolumeBytes(); ++i)
        sum += bytes[i];
    return sum;
}

void V1_CopyIn(benchmark::State & aState)
{
    XGrey16Volume dest(kWidth, kHeight, kDepth);
    dest.Fill(1);
    Timed(aState, [] {}, [&] { dest.CopyIn(B(), B().GetBounds(), dest.GetBounds(), nullptr); });
    aState.SetLabel("bytesum=" + std::to_string(Checksum(dest)));
}

void W12_Grey16ToGrey8(benchmark::State & aState)
{
    XGrey8Volume dest(kWidth, kHeight, kDepth);
    dest.Fill(1);
    Timed(aState, [] {}, [&] { dest.CopyIn(B(), B().GetBounds(), dest.GetBounds(), nullptr); });
    aState.SetLabel("sum=" + std::to_string(UInt64(dest.FindSum())));
}

void V2_Grey8ToARGB32(benchmark::State & aState)
{
    XARGB32Volume dest(kWidth, kHeight, kDepth);
    dest.Fill(XARGB32Colour(1));
    Timed(aState, [] {}, [&] { dest.CopyIn(B8(), B8().GetBounds(), dest.GetBounds(), nullptr); });
    aState.SetLabel("bytesum=" + std::to_string(Checksum(dest)));
}

void W6_FindMinMax(benchmark::State & aState)
{
    UInt16 low = 0, high = 0;
    Timed(aState, [] {}, [&] { B().FindMinMax(low, high); });
    aState.SetLabel("min=" + std::to_string(low) + ";max=" + std::to_string(high));
}

void W6_FindSum(benchmark::State & aState)
{
    double sum = 0.0;
    Timed(aState, [] {}, [&] { sum = B().FindSum(); });
    aState.SetLabel("sum=" + std::to_string(UInt64(sum)));
}

void W6_StreamingRead(benchmark::State & aState)
{
    XLock lock(B(), kLockRead);
    const UInt64 * words = static_cast<const UInt64 *>(B().GetBasePtr());
    UInt64 sum = 0;
    Timed(aState, [] {}, [&] {
        UInt64 a = 0, b = 0;
        for (UInt64 i = 0; i < kVoxels * 2 / 8; i += 2)
            a += words[i], b += words[i + 1];
        sum = a + b;
        benchmark::DoNotOptimize(sum);
    });
    aState.SetLabel("bytes=" + std::to_string(kVoxels * 2));
}

// The addition alone: the copy of B shares B's voxels, and the read-write lock taken before the
// clock gives it voxels of its own, so that the copy-on-write is not timed with the addition.
void V3_AddValue(benchmark::State & aState)
{
    XGrey16Volume volume(B());
    Timed(aState, [&] { XLock unshare(volume, kLockReadWrite); }, [&] { volume += UInt16(7); });
    aState.SetLabel("bytes=" + std::to_string(kVoxels * 2));
}

XFileSpec BenchFile()
{
    static XFileSpec sSpec = XFileSpec::MakeTemporary("brindle-volume-bench");
    return sSpec;
}

struct XBenchFileRemover
{
    ~XBenchFileRemover() { BenchFile().Delete(); }
} sRemover;

void WriteVolume(XByteOrder anOrder)
{
    XFileStream stream(BenchFile(), kCreate, XFileStream::kDefaultBufferSize, anOrder);
    stream.WriteStreamInfo();
    stream.WriteObject(B());
    stream.Flush();
}

void V4_StreamWrite(benchmark::State & aState)
{
    const XByteOrder order = aState.range(0) != 0 ? (GetByteOrderFromPlatform() == kLittleEndian ? kBigEndian : kLittleEndian)
                                                  : GetByteOrderFromPlatform();
    Timed(aState, [] {}, [&] { WriteVolume(order); });
    aState.SetLabel("bytes=" + std::to_string(kVoxels * 2));
}

void V4_StreamRead(benchmark::State & aState)
{
    WriteVolume(GetByteOrderFromPlatform());
    std::unique_ptr<XGrey16Volume> volume;
    Timed(aState, [&] { volume.reset(); }, [&] {
        XFileStream stream(BenchFile(), kReadOnly);
        stream.ReadStreamInfo();
        volume.reset(stream.ReadObjectAs<XGrey16Volume>());
        XLock lock(*volume, kLockRead);
    });
    aState.SetLabel(*volume == B() ? "equal=1" : "equal=0");
}

void V4_PlainWrite(benchmark::State & aState)
{
    XLock lock(B(), kLockRead);
    const UInt8 * bytes = static_cast<const UInt8 *>(B().GetBasePtr());
    const UInt64 count = kVoxels * 2;
    Timed(aState, [] {}, [&] {
        int fd = ::open(BenchFile().GetPath().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        for (UInt64 done = 0; done < count;)
            done += UInt64(::write(fd, bytes + done, count - done));
        ::close(fd);
    });
    aState.SetLabel("bytes=" + std::to_string(count));
}

void V4_PlainRead(benchmark::State & aState)
{
    WriteVolume(GetByteOrderFromPlatform());
    const UInt64 count = kVoxels * 2;
    std::unique_ptr<UInt8[]> dest(new UInt8[count]);
    std::memset(dest.get(), 0, count);
    Timed(aState, [] {}, [&] {
        int fd = ::open(BenchFile().GetPath().c_str(), O_RDONLY);
        for (UInt64 done = 0; done < count;)
        {
            const ssize_t got = ::read(fd, dest.get() + done, count - done);
            if (got <= 0)
                break;
            done += UInt64(got);
        }
        ::close(fd);
    });
    aState.SetLabel("bytes=" + std::to_string(count));
}

// The tools' own work, into a destination made beforehand (Flip and RotateCopy), and ApplyTool,
// which also makes the destination: a new volume whose pages the system supplies at first touch.
template <class Tool>
void V5_Work(benchmark::State & aState)
{
    Tool tool;
    std::unique_ptr<XVolume> dest(tool.ApplyTool(B()));
    auto & packed = dynamic_cast<XGrey16Volume &>(*dest);
    Timed(aState, [] {}, [&] {
        if constexpr (std::is_base_of_v<XFlipVolumeTool, Tool>)
            tool.Flip(B(), packed);
        else
            tool.RotateCopy(B(), packed);
    });
    aState.SetLabel("bytesum=" + std::to_string(Checksum(packed)));
}

template <class Tool>
void V5_ApplyTool(benchmark::State & aState)
{
    Tool tool;
    std::unique_ptr<XVolume> result;
    Timed(aState, [&] { result.reset(); }, [&] { result.reset(tool.ApplyTool(B())); });
    aState.SetLabel("bytesum=" + std::to_string(Checksum(dynamic_cast<const XGrey16Volume &>(*result))));
}
} // namespace

#define BRINDLE_VOLUME_BENCH(function, name) \
    BENCHMARK(function)->Name(name)->UseManualTime()->Iterations(1)->Repetitions(kRepeats)

BRINDLE_VOLUME_BENCH(V1_CopyIn, "V1 copy u16 512x512x64|brindle CopyIn|1");
BENCHMARK_CAPTURE(Memcpy, v1, kVoxels * 2)->Name("V1 copy u16 512x512x64|c-memcpy (limit)|1")->UseManualTime()->Iterations(1)->Repetitions(kRepeats);
BRINDLE_VOLUME_BENCH(W12_Grey16ToGrey8, "W12 u16->u8 (v>>8) B|brindle CopyIn Grey16->Grey8|1");
BENCHMARK_CAPTURE(Memcpy, w12, kVoxels)->Name("W12 u16->u8 (v>>8) B|c-memcpy output (limit)|1")->UseManualTime()->Iterations(1)->Repetitions(kRepeats);
BRINDLE_VOLUME_BENCH(V2_Grey8ToARGB32, "V2 u8->argb32 B8|brindle CopyIn Grey8->ARGB32|1");
BENCHMARK_CAPTURE(Memcpy, v2, kVoxels * 4)->Name("V2 u8->argb32 B8|c-memcpy output (limit)|1")->UseManualTime()->Iterations(1)->Repetitions(kRepeats);
BRINDLE_VOLUME_BENCH(W6_FindMinMax, "W6 min+max B|brindle FindMinMax|1");
BRINDLE_VOLUME_BENCH(W6_FindSum, "W6 sum B|brindle FindSum|1");
BRINDLE_VOLUME_BENCH(W6_StreamingRead, "W6 streaming read B|c-loop (limit)|1");
BRINDLE_VOLUME_BENCH(V3_AddValue, "V3 add value u16 B|brindle operator+=|1");
BENCHMARK_CAPTURE(Memcpy, v3, kVoxels * 2)->Name("V3 add value u16 B|c-memcpy (limit)|1")->UseManualTime()->Iterations(1)->Repetitions(kRepeats);
BRINDLE_VOLUME_BENCH(V4_StreamWrite, "V4 file write u16 B|brindle XFileStream|1")->Arg(0);
BRINDLE_VOLUME_BENCH(V4_StreamWrite, "V4 file write u16 B swapped|brindle XFileStream|1")->Arg(1);
BRINDLE_VOLUME_BENCH(V4_PlainWrite, "V4 file write u16 B|c-write (limit)|1");
BRINDLE_VOLUME_BENCH(V4_StreamRead, "V4 file read u16 B|brindle XFileStream|1");
BRINDLE_VOLUME_BENCH(V4_PlainRead, "V4 file read u16 B|c-read (limit)|1");
BRINDLE_VOLUME_BENCH(V5_Work<XFlipVVolumeTool>, "V5 move voxels u16 B|brindle FlipV|1");
BRINDLE_VOLUME_BENCH(V5_Work<XRotate180VolumeTool>, "V5 move voxels u16 B|brindle Rotate180|1");
BRINDLE_VOLUME_BENCH(V5_Work<XRotate90CWVolumeTool>, "V5 move voxels u16 B|brindle Rotate90CW|1");
BRINDLE_VOLUME_BENCH(V5_ApplyTool<XFlipVVolumeTool>, "V5 move voxels u16 B|brindle FlipV ApplyTool (new volume)|1");
BRINDLE_VOLUME_BENCH(V5_ApplyTool<XRotate90CWVolumeTool>, "V5 move voxels u16 B|brindle Rotate90CW ApplyTool (new volume)|1");
BENCHMARK_CAPTURE(Memcpy, v5, kVoxels * 2)->Name("V5 move voxels u16 B|c-memcpy (limit)|1")->UseManualTime()->Iterations(1)->Repetitions(kRepeats);

BRINDLE_BENCH_MAIN()
