// The vector kernels on 4 M floats in 16-byte aligned arrays (16 MiB each): each kernel that
// the SSE2 implementation speeds up, with the SSE2 and the portable implementation, beside a
// plain copy of one array (memcpy) that gives the bandwidth limit. The kernels bound by
// arithmetic run also on 16 K floats that stay in the cache, 256 calls a run, to show the
// arithmetic without the memory. run_vector_math.sh runs this program and numpy on the same
// data and prints the ratios. Rows are CSV (see XBenchCsvReporter.h); the result column reads
// "arrays=<arrays the kernel streams> check=<a checksum of its result>". Workload names hold no
// commas.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

#include "BrindleImaging.h"
#include "XBenchCsvReporter.h"

namespace
{
constexpr UInt64 kCount = UInt64(4) << 20;
constexpr UInt64 kCacheCount = UInt64(16) << 10;
constexpr int kRepeats = 15;

// A page-aligned array of kCount floats, touched once so that no page fault is timed.
float * NewArray()
{
    float * array = static_cast<float *>(std::aligned_alloc(4096, kCount * sizeof(float)));
    std::memset(array, 0, kCount * sizeof(float));
    return array;
}

// The inputs, made from integers so that the numpy side builds the same floats:
// a = (i * 7919 mod 1000) * 0.001 + 0.5 in [0.5, 1.5), b = (i * 104729 mod 2000) * 0.001 - 1
// in [-1, 1), and c = a + 0.25 as a divisor away from zero.
struct XData
{
    XData() : a(NewArray()), b(NewArray()), c(NewArray()), o(NewArray()), p(NewArray())
    {
        for (UInt64 i = 0; i < kCount; ++i)
        {
            a[i] = float((i * 7919) % 1000) * 0.001f + 0.5f;
            b[i] = float((i * 104729) % 2000) * 0.001f - 1.0f;
            c[i] = a[i] + 0.25f;
        }
    }
    float * a;
    float * b;
    float * c;
    float * o;
    float * p;
};

XData & Data()
{
    static XData sData;
    return sData;
}

std::string Format(double aValue)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.7g", aValue);
    return text;
}

// The sum of the output, in double, as the checksum of an element-wise kernel.
double Checksum(const float * o)
{
    double sum = 0.0;
    for (UInt64 i = 0; i < kCount; ++i)
        sum += o[i];
    return sum;
}

// One call of aKernel per iteration. The result column: anArrayCount, and as the checksum the
// sum of the output array o (anOutput) or else the value of the last call.
void Run(benchmark::State & aState, int anArrayCount, bool anOutput,
         const std::function<double()> & aKernel)
{
    double value = 0.0;
    for (auto _ : aState)
    {
        value = aKernel();
        benchmark::ClobberMemory();
    }
    const double check = anOutput ? Checksum(Data().o) : value;
    aState.SetLabel("arrays=" + std::to_string(anArrayCount) + " check=" + Format(check));
}

XVectorMathToolImp & Implementation(bool anOptimised)
{
    return anOptimised ? *XVectorMathTool::GetBestImplementation()
                       : *XVectorMathTool::GetPortableImplementation();
}

// An element-wise kernel: its workload name, the arrays it streams (inputs and output) and
// the call on the shared data.
struct XKernel
{
    const char * itsName;
    int itsArrays;
    bool itsComputeBound;
    std::function<void(XVectorMathToolImp &, XData &, UInt64 n)> itsCall;
};

using I = XVectorMathToolImp;

const XKernel kElementWise[] = {
    {"VectorAdd a+s", 2, false, [](I & m, XData & d, UInt64 n) { m.VectorAdd(d.a, 0.5f, d.o, n); }},
    {"VectorAdd a+b", 3, false, [](I & m, XData & d, UInt64 n) { m.VectorAdd(d.a, d.b, d.o, n); }},
    {"VectorSubtract", 3, false, [](I & m, XData & d, UInt64 n) { m.VectorSubtract(d.a, d.b, d.o, n); }},
    {"VectorMultiply a*s", 2, false, [](I & m, XData & d, UInt64 n) { m.VectorMultiply(d.a, 3.f, d.o, n); }},
    {"VectorMultiply a*b", 3, false, [](I & m, XData & d, UInt64 n) { m.VectorMultiply(d.a, d.b, d.o, n); }},
    {"VectorSquare", 2, false, [](I & m, XData & d, UInt64 n) { m.VectorSquare(d.b, d.o, n); }},
    {"VectorFillReal", 1, false, [](I & m, XData & d, UInt64 n) { m.VectorFillReal(0.25f, d.o, n); }},
    {"VectorClampBelow", 2, false, [](I & m, XData & d, UInt64 n) { m.VectorClampBelow(d.b, d.o, 0.f, n); }},
    {"VectorClampAbove", 2, false, [](I & m, XData & d, UInt64 n) { m.VectorClampAbove(d.b, d.o, 0.f, n); }},
    {"VectorScalarSubtract", 3, false, [](I & m, XData & d, UInt64 n) { m.VectorScalarSubtract(d.a, d.b, 2.f, 0.5f, d.o, n); }},
    {"VectorAddAndMultiply", 4, false, [](I & m, XData & d, UInt64 n) { m.VectorAddAndMultiply(d.a, d.b, d.c, d.o, n); }},
    {"VectorDivide", 3, true, [](I & m, XData & d, UInt64 n) { m.VectorDivide(d.b, d.c, d.o, n); }},
    {"VectorMultiplyAndDivide a*b/c", 4, true, [](I & m, XData & d, UInt64 n) { m.VectorMultiplyAndDivide(d.a, d.b, d.c, d.o, n); }},
    {"VectorMultiplyAndDivide s*a/b", 3, true, [](I & m, XData & d, UInt64 n) { m.VectorMultiplyAndDivide(d.b, 2.f, d.c, d.o, n); }},
    {"VectorMultiplyAndDivide a*b/s", 3, true, [](I & m, XData & d, UInt64 n) { m.VectorMultiplyAndDivide(d.a, d.b, 3.f, d.o, n); }},
    {"VectorReciprocal", 2, true, [](I & m, XData & d, UInt64 n) { m.VectorReciprocal(d.c, d.o, n); }},
    {"VectorSqrt", 2, true, [](I & m, XData & d, UInt64 n) { m.VectorSqrt(d.a, d.o, n); }},
    {"VectorReciprocalSqrt", 2, true, [](I & m, XData & d, UInt64 n) { m.VectorReciprocalSqrt(d.a, d.o, n); }},
    {"VectorLogBaseX", 2, true, [](I & m, XData & d, UInt64 n) { m.VectorLogBaseX(d.a, d.o, 10.f, n); }},
    {"VectorComplexMultiply", 3, true, [](I & m, XData & d, UInt64 n) { m.VectorComplexMultiply(d.a, d.b, d.o, n / 2); }},
    {"VectorComplexDivide", 3, true, [](I & m, XData & d, UInt64 n) { m.VectorComplexDivide(d.b, d.c, d.o, n / 2); }},
    {"VectorComplexMagnitude", 2, true, [](I & m, XData & d, UInt64 n) { m.VectorComplexMagnitude(d.b, d.o, n / 2); }},
    {"VectorComplexReciprocal", 2, true, [](I & m, XData & d, UInt64 n) { m.VectorComplexReciprocal(d.c, d.o, n / 2); }},
    {"VectorCalcSearchVec2", 3, false, [](I & m, XData & d, UInt64 n) { float q; m.VectorCalcSearchVec2(d.a, d.b, d.o, q, n); }},
};

// A reduction: its workload name, the arrays it reads and the call.
struct XSum
{
    const char * itsName;
    int itsArrays;
    std::function<double(I &, XData &)> itsCall;
};

const XSum kSums[] = {
    {"VectorDotProduct", 2, [](I & m, XData & d) { return double(m.VectorDotProduct(d.a, d.b, kCount)); }},
    {"VectorDotProduct64", 2, [](I & m, XData & d) { return m.VectorDotProduct64(d.a, d.b, kCount); }},
    {"VectorSum", 1, [](I & m, XData & d) { return double(m.VectorSum(d.b, kCount)); }},
    {"VectorSum64", 1, [](I & m, XData & d) { return m.VectorSum64(d.b, kCount); }},
    {"VectorDotProductDivide", 3, [](I & m, XData & d) { return double(m.VectorDotProductDivide(d.a, d.b, d.c, kCount)); }},
    {"VectorChiSquared", 3, [](I & m, XData & d) { return double(m.VectorChiSquared(d.a, d.b, d.c, kCount)); }},
    {"VectorSquareMultiplySum", 2, [](I & m, XData & d) { return double(m.VectorSquareMultiplySum(d.a, d.b, kCount)); }},
    {"VectorFindMaxValue", 1, [](I & m, XData & d) { return double(m.VectorFindMaxValue(d.b, kCount)); }},
};

std::string Name(const char * aKernel, const char * aSize, bool anOptimised)
{
    return std::string("V ") + aKernel + aSize + "|brindle " + (anOptimised ? "SSE2" : "portable") + "|1";
}

void RegisterAll()
{
    benchmark::RegisterBenchmark("V copy 4M floats|memcpy|1", [](benchmark::State & aState) {
        XData & d = Data();
        Run(aState, 2, true, [&] {
            std::memcpy(d.o, d.a, kCount * sizeof(float));
            return 0.0;
        });
    })->Iterations(1)->Repetitions(kRepeats);
    for (const XKernel & kernel : kElementWise)
        for (bool optimised : {true, false})
            benchmark::RegisterBenchmark(Name(kernel.itsName, " 4M floats", optimised).c_str(), [&kernel, optimised](benchmark::State & aState) {
                XVectorMathToolImp & imp = Implementation(optimised);
                Run(aState, kernel.itsArrays, true, [&] {
                    kernel.itsCall(imp, Data(), kCount);
                    return 0.0;
                });
            })->Iterations(1)->Repetitions(kRepeats);
    // The arithmetic alone: the compute-bound kernels on arrays that stay in the cache, called
    // kCacheCalls times on the first kCacheCount floats (as many floats as one call above).
    for (const XKernel & kernel : kElementWise)
        for (bool optimised : {true, false})
            if (kernel.itsComputeBound)
                benchmark::RegisterBenchmark(Name(kernel.itsName, " 16K floats x256", optimised).c_str(), [&kernel, optimised](benchmark::State & aState) {
                    XVectorMathToolImp & imp = Implementation(optimised);
                    Run(aState, kernel.itsArrays, false, [&] {
                        for (UInt64 k = 0; k < kCount / kCacheCount; ++k)
                            kernel.itsCall(imp, Data(), kCacheCount);
                        return double(Data().o[kCacheCount / 2 + 1]);
                    });
                })->Iterations(1)->Repetitions(kRepeats);
    for (const XSum & sum : kSums)
        for (bool optimised : {true, false})
            benchmark::RegisterBenchmark(Name(sum.itsName, " 4M floats", optimised).c_str(), [&sum, optimised](benchmark::State & aState) {
                XVectorMathToolImp & imp = Implementation(optimised);
                Run(aState, sum.itsArrays, false, [&] { return sum.itsCall(imp, Data()); });
            })->Iterations(1)->Repetitions(kRepeats);
}
} // namespace

int main(int argc, char ** argv)
{
    benchmark::Initialize(&argc, argv);
    RegisterAll();
    XBenchCsvReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
