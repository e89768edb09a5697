#pragma once
// The filter commands of the tool: median, dilate, erode and convolve. The options are read and
// checked when the object is made, the kernel file of convolve too, so that a bad command line
// fails before any volume is read; MakeTool then makes the library's tool for a volume.
//
//   median    --size N (1..99, default 3), --hybrid
//   dilate    --iterations N (1..100, default 1), --element cross|box
//   erode     the same, and --edge-black
//   convolve  one of --kernel FILE, --mean N, --gaussian SIGMA; --bias B
//
// Elements: cross is the six face neighbours, box the 26 neighbours of the 3 x 3 x 3 cube. The
// kernels of --mean (N x N x N equal weights) and --gaussian (out to 3 sigma, ceil(3 sigma)
// voxels each way) are flat on a volume of one plane, where a kernel of depth would only darken.
// A kernel file holds whitespace-separated numbers: width, height and depth, then the weights,
// x fastest. No kernel may have more than kMaxWeights weights.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "X3DPoint.h"
#include "XCommandLine.h"
#include "XTypes.h"
#include "XVector.h"

class X1To1VolumeTool;
class XVolume;

class XFilterCommands
{
public:
    static constexpr UInt64 kMaxWeights = 10000;

    // XCommandError of usage for a bad option; of failure for a kernel file that cannot be read.
    XFilterCommands(const std::string & aCommand, const XCommandLine & aLine);

    std::unique_ptr<X1To1VolumeTool> MakeTool(const XVolume & aVolume) const;

    // A kernel: its extents and weights, x fastest.
    struct XKernel
    {
        UInt32 itsWidth = 0;
        UInt32 itsHeight = 0;
        UInt32 itsDepth = 0;
        std::vector<float> itsWeights;
    };
    // The kernel of a file; XCommandError when it cannot be read or does not hold a kernel.
    static XKernel ReadKernel(const std::string & aPath);
    // aSize voxels each way of weight 1 (aDepth voxels in z).
    static XKernel MakeMean(UInt32 aSize, UInt32 aDepth);
    // exp(-d^2 / (2 sigma^2)) along each axis, multiplied, out to ceil(3 sigma) voxels (and flat
    // when aFlat).
    static XKernel MakeGaussian(double aSigma, bool aFlat);

private:
    // The value of a numeric option, when given; XCommandError of usage unless it is a number
    // that a float holds.
    static std::optional<double> GetNumber(const XCommandLine & aLine, const std::string & aName);

    std::string itsCommand;
    UInt32 itsSize = 3;
    bool itsHybrid = false;
    UInt32 itsIterations = 1;
    XVector<X3DPoint> itsElement;
    bool itsEdgeBlack = false;
    XKernel itsKernel;   // read from a file
    UInt32 itsMean = 0;  // --mean, 0 when not given
    double itsSigma = 0; // --gaussian, 0 when not given
    float itsBias = 0.0f;
};
