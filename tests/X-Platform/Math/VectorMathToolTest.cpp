// The entry points of XVectorMathTool: the fast logarithm's exact values, the entropy kernels'
// weight summed in order on every implementation, the forms built on other operations, the
// assertions, the choice of implementation by processor feature, VectorTransform on every
// implementation, and the session-log lines of TestFunctions.
// Expected values are worked out by hand.

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

#include <unistd.h>

#include "WSSE2VectorMathToolImp.h"
#include "WSSEVectorMathToolImp.h"
#include "XFileSpec.h"
#include "XIntelCPUInfo.h"
#include "XInternalError.h"
#include "XTestFloatBuffer.h"
#include "XTestSupport.h"
#include "XVectorMathTool.h"

namespace
{
constexpr float kLn2 = 0.6931472f;

// Makes each implementation current in turn, and the best one again at the end.
void ForEachImplementation(const std::function<void()> & aCheck)
{
    for (auto implementation : {XVectorMathTool::kPortableImplementation, XVectorMathTool::kBestImplementation})
    {
        SCOPED_TRACE(implementation == 0 ? "portable" : "best");
        XVectorMathTool::SetImplementation(implementation);
        aCheck();
    }
}
} // namespace

TEST(FastLogarithm, ExactAtPowersOfTwoLinearBetween)
{
    using I = XVectorMathToolImp;
    EXPECT_EQ(I::FastLn(1.f), 0.f);
    EXPECT_EQ(I::FastLn(2.f), kLn2);
    EXPECT_EQ(I::FastLn(8.f), 3.f * kLn2);
    EXPECT_EQ(I::FastLn(0.25f), -2.f * kLn2);
    EXPECT_EQ(I::FastLn(1024.f), 10.f * kLn2);
    // Between powers of two log2 is interpolated: 3 = 1.5 * 2 gives 1.5, 1.5 gives 0.5,
    // 6 = 1.5 * 4 gives 2.5, 0.75 = 1.5 / 2 gives -0.5.
    EXPECT_EQ(I::FastLn(3.f), 1.5f * kLn2);
    EXPECT_EQ(I::FastLn(1.5f), 0.5f * kLn2);
    EXPECT_EQ(I::FastLn(6.f), 2.5f * kLn2);
    EXPECT_EQ(I::FastLn(0.75f), -0.5f * kLn2);
    // The sign stays on the mantissa: -2 has E = 0 and m = -1. Zero has E = -128 and m = 1.
    EXPECT_EQ(I::FastLn(-2.f), -kLn2);
    EXPECT_EQ(I::FastLn(0.f), -127.f * kLn2);
}

TEST(FastLogarithm, LogarithmsToABaseUseIt)
{
    // fastln(100) = (5 + 1.5625 - 1) ln2 = 6.5625 ln2 (100 = 1.5625 * 64), fastln(10) = 3.25 ln2
    // (10 = 1.25 * 8): the decimal logarithm of 100 is 6.5625 / 3.25 = 2.0192308, not 2.
    // fastln(e) = 1.3591409 ln2 (e = 1.3591409 * 2): the natural logarithm of 2 is
    // 1 / 1.3591409 = 0.7357589, and of 1 it is 0.
    ForEachImplementation([] {
        alignas(16) float in[5] = {100.f, 100.f, 1.f, 2.f, 100.f};
        alignas(16) float out[5];
        XVectorMathTool::VectorLogBaseTen(in, out, 5);
        EXPECT_FLOAT_EQ(out[0], 2.0192308f);
        EXPECT_FLOAT_EQ(out[4], 2.0192308f);
        EXPECT_EQ(out[2], 0.f);
        XVectorMathTool::VectorLogNatural(in, out, 5);
        EXPECT_FLOAT_EQ(out[3], 0.7357589f);
        XVectorMathTool::VectorLogBaseX(in + 3, out, 2.f, 1);
        EXPECT_FLOAT_EQ(out[0], 1.f);
    });
}

TEST(FastLogarithm, EntropyGradientOfTheSearchKernels)
{
    // g(a, s) = -((fastln(a * s) + 1) * s). a = 2, s = 0.5: a * s = 1, g = -0.5, o = a * g = -1,
    // q = o * g = 0.5. a = 8: fastln(4) = 2 ln2, g = -(2 ln2 + 1) / 2 = -1.1931472,
    // o = -9.5451776, q = 8 g^2 = 11.388802.
    ForEachImplementation([] {
        alignas(16) float a[2] = {2.f, 8.f};
        alignas(16) float o[2];
        float q = 0.f;
        XVectorMathTool::VectorCalcSearchVec1(a, o, 0.5f, q, 1);
        EXPECT_EQ(o[0], -1.f);
        EXPECT_EQ(q, 0.5f);
        XVectorMathTool::VectorCalcSearchVec1(a + 1, o + 1, 0.5f, q, 1);
        EXPECT_FLOAT_EQ(o[1], -9.5451776f);
        EXPECT_FLOAT_EQ(q, 11.388802f);
    });
}

TEST(FastLogarithm, WeightedEntropySumsInOrderOnEveryImplementation)
{
    // 2^24 and then 999 ones. In order, each 1 added to 2^24 rounds back to it (a tie, to even):
    // w = 16777216. The four running sums of the processor forms hold 2^24 plus 249 ones (still
    // 2^24) and 250 ones in each other lane: 16777216 + 750 = 16777966. fastln(1) = 0, and
    // fastln(2^24) = 24 * 0.6931472f = 24 * 11629080 / 2^24 is exact in float, so
    // e = 24 * 11629080 = 279097920. In double, log(1) = 0 and logf(2^24) rounds to the same
    // float; the weight is exact: 16777216 + 999.
    XTestFloatBuffer a(1000, 0);
    a[0] = 16777216.f;
    for (UInt64 i = 1; i < 1000; ++i)
        a[i] = 1.f;
    auto expectEntropy = [&](XVectorMathToolImp & anImp) {
        float e = 0.f, w = 0.f;
        anImp.VectorWeightedEntropy(a, e, w, 1000);
        EXPECT_EQ(w, 16777216.f);
        EXPECT_EQ(e, 279097920.f);
        double e64 = 0.0, w64 = 0.0;
        anImp.VectorWeightedEntropy64(a, e64, w64, 1000);
        EXPECT_EQ(w64, 16778215.0);
        EXPECT_EQ(e64, 279097920.0);
    };
    ForEachImplementation([&] { expectEntropy(*XVectorMathTool::GetCurrentImplementation()); });
    XIntelCPUInfo::SetFeatureEnabled(kCPUFeatureSSE2, false);
    std::unique_ptr<XVectorMathToolImp> sse(XVectorMathTool::BuildOptimisedImplementation());
    XIntelCPUInfo::ResetFeatures();
    SCOPED_TRACE("SSE");
    expectEntropy(*sse);
    // The processor's own sum does differ on this array.
    EXPECT_EQ(sse->VectorSum(a, 1000), 16777966.f);
    EXPECT_EQ(XVectorMathTool::GetBestImplementation()->VectorSum(a, 1000), 16777966.f);
}

TEST(VectorMathTool, FormsBuiltOnOtherOperations)
{
    ForEachImplementation([] {
        alignas(16) float a[8] = {1.f, 2.f, 3.f, 4.f, 5.f, 6.f, 7.f, 8.f};
        alignas(16) float b[8] = {8.f, 7.f, 6.f, 5.f, 4.f, 3.f, 2.f, 1.f};
        alignas(16) float o[8];
        XVectorMathTool::VectorSubtract(a, 1.5f, o, 5);
        EXPECT_EQ(o[0], -0.5f);
        EXPECT_EQ(o[4], 3.5f);
        // Complex counts are complex values: 3 of them are 6 floats.
        XVectorMathTool::VectorComplexAdd(a, b, o, 3);
        EXPECT_EQ(o[5], 9.f);
        XVectorMathTool::VectorComplexSubtract(a, b, o, 3);
        EXPECT_EQ(o[5], 3.f);
        XVectorMathTool::VectorComplexMultiply(a, 2.f, o, 4);
        EXPECT_EQ(o[7], 16.f);
        // (1 + 2i)(8 + 7i) = 8 - 14 + (7 + 16)i = -6 + 23i.
        XVectorMathTool::VectorComplexMultiply(a, b, o, 4);
        EXPECT_EQ(o[0], -6.f);
        EXPECT_EQ(o[1], 23.f);
        // Division by a scalar multiplies by its reciprocal: 5 * float(1/3) rounds to
        // 1.66666675, one step above 5 / 3 = 1.66666663.
        XVectorMathTool::VectorDivide(a + 4, 3.f, o, 1);
        EXPECT_EQ(o[0], 1.66666675f);
        EXPECT_NE(o[0], 5.f / 3.f);
    });
}

TEST(VectorMathTool, AssertionsOfTheStaticAndPortableForms)
{
    alignas(16) float a[4] = {1.f, 2.f, 3.f, 4.f};
    alignas(16) float o[4];
    ForEachImplementation([&] {
        EXPECT_EQ(AssertionOf([&] { XVectorMathTool::VectorDivide(a, 0.f, o, 4); }), "aScalar != 0.0");
        EXPECT_EQ(AssertionOf([&] { XVectorMathTool::VectorMultiplyAndDivide(a, a, 0.f, o, 4); }),
                  "aScalar != 0.0");
        EXPECT_EQ(AssertionOf([&] { XVectorMathTool::VectorLogBaseX(a, o, 0.f, 4); }), "aBase > 0");
        EXPECT_EQ(AssertionOf([&] { XVectorMathTool::VectorLogBaseX(a, o, -2.f, 4); }), "aBase > 0");
    });
    XVectorMathToolImp & portable = *XVectorMathTool::GetPortableImplementation();
    EXPECT_EQ(AssertionOf([&] { portable.VectorLogBaseX(a, o, 0.f, 4); }), "aBase > 0.f");
    EXPECT_EQ(AssertionOf([&] { portable.VectorMultiplyAndDivide(a, a, 1.f, o, 4); }), "");
}

TEST(VectorMathTool, ImplementationChosenByProcessorFeature)
{
    // Every x86-64 processor has SSE2.
    ASSERT_NE(XVectorMathTool::GetBestImplementation(), nullptr);
    EXPECT_EQ(typeid(*XVectorMathTool::GetBestImplementation()), typeid(WSSE2VectorMathToolImp));
    EXPECT_EQ(typeid(*XVectorMathTool::GetPortableImplementation()), typeid(XVectorMathToolImp));
    EXPECT_EQ(XVectorMathTool::GetCurrentImplementation(), XVectorMathTool::GetBestImplementation());

    XVectorMathTool::SetImplementation(XVectorMathTool::kPortableImplementation);
    EXPECT_EQ(XVectorMathTool::GetCurrentImplementation(), XVectorMathTool::GetPortableImplementation());
    XVectorMathTool::SetImplementation(XVectorMathTool::XImplementation(7));
    EXPECT_EQ(XVectorMathTool::GetCurrentImplementation(), XVectorMathTool::GetBestImplementation());

    XIntelCPUInfo::SetFeatureEnabled(kCPUFeatureSSE2, false);
    XVectorMathToolImp * sse = XVectorMathTool::BuildOptimisedImplementation();
    EXPECT_EQ(typeid(*sse), typeid(WSSEVectorMathToolImp));
    delete sse;
    XIntelCPUInfo::SetFeatureEnabled(kCPUFeatureSSE, false);
    EXPECT_EQ(XVectorMathTool::BuildOptimisedImplementation(), nullptr);
    XIntelCPUInfo::ResetFeatures();
}

TEST(VectorMathTool, TransformMapsPlanesThroughTheMatrix)
{
    // M = [[1, 2], [3, 4]] on x = (x0, x1): (x0 + 2 x1, 3 x0 + 4 x1). Five samples: one group
    // of four and a tail of one on the optimised implementation.
    XMiniSquareMatrix matrix(2);
    matrix.Set(0, 0, 1.f), matrix.Set(0, 1, 2.f), matrix.Set(1, 0, 3.f), matrix.Set(1, 1, 4.f);
    ForEachImplementation([&] {
        for (int offset : {0, 1})
        {
            alignas(16) float plane0[6] = {0.f, 0.f, 0.f, 0.f, 0.f, 0.f};
            alignas(16) float plane1[8] = {10.f, 20.f, 30.f, 40.f, 50.f, 60.f, 0.f, 0.f};
            float * start0 = plane0 + offset;
            for (int i = 0; i < 5; ++i)
                start0[i] = float(i + 1);
            float * planes[2] = {start0, plane1};
            XVectorMathTool::VectorTransform(planes, 2, matrix, 5);
            EXPECT_EQ(planes[0], start0 + 5);
            EXPECT_EQ(planes[1], plane1 + 5);
            const float row0[] = {21.f, 42.f, 63.f, 84.f, 105.f};
            const float row1[] = {43.f, 86.f, 129.f, 172.f, 215.f};
            for (int i = 0; i < 5; ++i)
            {
                EXPECT_EQ(start0[i], row0[i]) << i;
                EXPECT_EQ(plane1[i], row1[i]) << i;
            }
            EXPECT_EQ(plane1[5], 60.f);
            XVectorMathTool::VectorTransform(planes, 2, matrix, 0);
            EXPECT_EQ(planes[0], start0 + 5);
        }
        float * none[3] = {nullptr, nullptr, nullptr};
        EXPECT_EQ(AssertionOf([&] { XVectorMathTool::VectorTransform(none, 3, matrix, 0); }),
                  "dimension <= matrix.GetSize()");
    });
}

TEST(VectorMathTool, TestFunctionsLogsOneLinePerOperation)
{
    const std::string folder = XFileSpec::MakeTemporary("vector-math-test").GetPath().GetStdString();
    const std::string log = folder + "/session.log";
    {
        XScopedEnvironment environment("BRINDLE_SESSION_LOG", log.c_str());
        XVectorMathTool::SetImplementation(XVectorMathTool::kPortableImplementation);
        XVectorMathTool::TestFunctions(5, 3, 2);
        EXPECT_EQ(XVectorMathTool::GetCurrentImplementation(), XVectorMathTool::GetPortableImplementation());
    }
    std::ifstream file(log);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    ::unlink(log.c_str());
    ::rmdir(folder.c_str());

    ASSERT_EQ(lines.size(), 38u);
    auto text = [&](std::size_t k) { return lines[k].substr(lines[k].find("] ") + 2); };
    EXPECT_EQ(text(0).rfind("Operation = VectorAdd : Percentage speed up = ", 0), 0u) << text(0);
    EXPECT_NE(text(0).find(" : Max percent diff = 0.00"), std::string::npos) << text(0);
    EXPECT_EQ(text(6).rfind("Operation = VectorDotProduct : Percentage speed up = ", 0), 0u);
    EXPECT_EQ(text(6).find("Max percent diff"), std::string::npos);
    EXPECT_EQ(text(10).rfind("Operation = VectorLogNatural : ", 0), 0u);
    EXPECT_EQ(text(37).rfind("Operation = VectorCalcSearchVecs1And2_64 : ", 0), 0u);
    EXPECT_NE(text(37).find("Max percent diff = 0.00"), std::string::npos);
}
