// Foundation benchmarks, each beside the plain C call that sets its limit:
//   F1 unsharing a 256 MiB memory handle           against memcpy of the same bytes
//   F2 writing and reading a 256 MiB handle on a file stream  against write() and read()
//   F3 an uncontended lock and unlock
// Rows are CSV (see XBenchCsvReporter.h).

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

#include "BrindleCore.h"
#include "XBenchCsvReporter.h"

namespace
{
constexpr UInt64 kBytes = 256ull << 20;
constexpr int kRepeats = 7;

std::string GigabytesPerSecond(double aSeconds)
{
    char text[64];
    std::snprintf(text, sizeof text, "GB/s=%.2f", double(kBytes) / aSeconds / 1e9);
    return text;
}

// A 256 MiB handle with a pattern, made once.
const XMemoryHandle & SourceHandle()
{
    static XMemoryHandle * sHandle = [] {
        XMemoryHandle::RegisterClass();
        auto * handle = new XMemoryHandle(kBytes);
        XLock lock(*handle, kLockWrite);
        auto * bytes = static_cast<UInt8 *>(handle->GetData());
        for (UInt64 i = 0; i < kBytes; ++i)
            bytes[i] = static_cast<UInt8>(i * 131);
        return handle;
    }();
    return *sHandle;
}

UInt8 * AlignedBuffer()
{
    static UInt8 * sBuffer = [] {
        void * memory = std::aligned_alloc(64, kBytes);
        std::memset(memory, 1, kBytes);
        return static_cast<UInt8 *>(memory);
    }();
    return sBuffer;
}

const UInt8 * SourceBytes()
{
    static UInt8 * sBytes = [] {
        auto * memory = static_cast<UInt8 *>(std::aligned_alloc(64, kBytes));
        std::memset(memory, 3, kBytes);
        return memory;
    }();
    return sBytes;
}

void F1_Unshare(benchmark::State & aState)
{
    const XMemoryHandle & source = SourceHandle();
    double seconds = 0;
    for (auto _ : aState)
    {
        XMemoryHandle copy(source);
        auto start = std::chrono::steady_clock::now();
        {
            XLock lock(copy, kLockReadWrite);
            benchmark::DoNotOptimize(copy.GetData());
        }
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        aState.SetIterationTime(seconds);
    }
    aState.SetLabel(GigabytesPerSecond(seconds));
}

void F1_Memcpy(benchmark::State & aState)
{
    const UInt8 * source = SourceBytes();
    UInt8 * dest = AlignedBuffer();
    double seconds = 0;
    for (auto _ : aState)
    {
        auto start = std::chrono::steady_clock::now();
        std::memcpy(dest, source, kBytes);
        benchmark::ClobberMemory();
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        aState.SetIterationTime(seconds);
    }
    aState.SetLabel(GigabytesPerSecond(seconds));
}

XFileSpec BenchFile()
{
    static XFileSpec sSpec = [] {
        return XFileSpec::MakeTemporary("brindle-bench");
    }();
    return sSpec;
}

// Removes the benchmark's file when the program ends.
struct XBenchFileRemover
{
    ~XBenchFileRemover() { BenchFile().Delete(); }
} sRemover;

void F2_StreamWrite(benchmark::State & aState)
{
    const XMemoryHandle & source = SourceHandle();
    double seconds = 0;
    for (auto _ : aState)
    {
        auto start = std::chrono::steady_clock::now();
        {
            XFileStream stream(BenchFile(), kCreate);
            stream.WriteObject(source);
            stream.Flush();
        }
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        aState.SetIterationTime(seconds);
    }
    aState.SetLabel(GigabytesPerSecond(seconds));
}

void F2_StreamRead(benchmark::State & aState)
{
    {
        XFileStream stream(BenchFile(), kCreate);
        stream.WriteObject(SourceHandle());
    }
    double seconds = 0;
    for (auto _ : aState)
    {
        auto start = std::chrono::steady_clock::now();
        std::unique_ptr<XMemoryHandle> handle;
        {
            XFileStream stream(BenchFile(), kReadOnly);
            handle.reset(stream.ReadObjectAs<XMemoryHandle>());
        }
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        aState.SetIterationTime(seconds);
        handle.reset();
    }
    aState.SetLabel(GigabytesPerSecond(seconds));
}

void F2_PlainWrite(benchmark::State & aState)
{
    const UInt8 * source = SourceBytes();
    double seconds = 0;
    for (auto _ : aState)
    {
        auto start = std::chrono::steady_clock::now();
        int fd = ::open(BenchFile().GetPath().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        for (UInt64 done = 0; done < kBytes;)
            done += UInt64(::write(fd, source + done, kBytes - done));
        ::close(fd);
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        aState.SetIterationTime(seconds);
    }
    aState.SetLabel(GigabytesPerSecond(seconds));
}

// Reads into a buffer that the process already has, as a tuned C program would.
void F2_PlainRead(benchmark::State & aState)
{
    UInt8 * dest = AlignedBuffer();
    double seconds = 0;
    for (auto _ : aState)
    {
        auto start = std::chrono::steady_clock::now();
        int fd = ::open(BenchFile().GetPath().c_str(), O_RDONLY);
        for (UInt64 done = 0; done < kBytes;)
        {
            ssize_t got = ::read(fd, dest + done, kBytes - done);
            if (got <= 0)
                break;
            done += UInt64(got);
        }
        ::close(fd);
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        aState.SetIterationTime(seconds);
    }
    aState.SetLabel(GigabytesPerSecond(seconds));
}

void F3_Lock(benchmark::State & aState)
{
    XMemoryHandle handle(64);
    for (auto _ : aState)
    {
        XLock lock(handle, XLockMode(aState.range(0)));
        benchmark::DoNotOptimize(handle.GetData());
    }
    aState.SetLabel(aState.range(0) == kLockRead ? "mode=read" : "mode=readwrite");
}
} // namespace

BENCHMARK(F1_Unshare)->Name("F1 unshare 256 MiB|brindle|1")->UseManualTime()->Iterations(1)->Repetitions(kRepeats);
BENCHMARK(F1_Memcpy)->Name("F1 unshare 256 MiB|c-memcpy (limit)|1")->UseManualTime()->Iterations(1)->Repetitions(kRepeats);
BENCHMARK(F2_StreamWrite)->Name("F2 file write 256 MiB|brindle XFileStream|1")->UseManualTime()->Iterations(1)->Repetitions(kRepeats);
BENCHMARK(F2_PlainWrite)->Name("F2 file write 256 MiB|c-write (limit)|1")->UseManualTime()->Iterations(1)->Repetitions(kRepeats);
BENCHMARK(F2_StreamRead)->Name("F2 file read 256 MiB|brindle XFileStream|1")->UseManualTime()->Iterations(1)->Repetitions(kRepeats);
BENCHMARK(F2_PlainRead)->Name("F2 file read 256 MiB|c-read (limit)|1")->UseManualTime()->Iterations(1)->Repetitions(kRepeats);
BENCHMARK(F3_Lock)->Name("F3 lock and unlock read|brindle|1")->Arg(kLockRead)->Repetitions(kRepeats);
BENCHMARK(F3_Lock)->Name("F3 lock and unlock readwrite|brindle|1")->Arg(kLockReadWrite)->Repetitions(kRepeats);

BRINDLE_BENCH_MAIN()
