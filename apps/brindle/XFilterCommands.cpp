#include "XFilterCommands.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>

#include "XCommandError.h"
#include "XDilateFilterVolumeTool.h"
#include "XErodeFilterVolumeTool.h"
#include "XHybridMedianFilterVolumeTool.h"
#include "XMedianFilterVolumeTool.h"
#include "XSpatialFilterVolumeTool.h"
#include "XVolume.h"

namespace
{
// A kernel file larger than this cannot hold a kernel of kMaxWeights weights in any sane form.
constexpr std::streamoff kMaxKernelFileBytes = 1 << 20;

// The number that aText spells out in full, if it is a finite one.
std::optional<double> ParseNumber(const std::string & aText)
{
    char * end = nullptr;
    errno = 0;
    const double value = std::strtod(aText.c_str(), &end);
    if (aText.empty() || *end != '\0' || errno != 0 || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::string Text(double aValue)
{
    std::ostringstream text;
    text << aValue;
    return text.str();
}
} // namespace

XFilterCommands::XFilterCommands(const std::string & aCommand, const XCommandLine & aLine) : itsCommand(aCommand)
{
    if (aCommand == "median")
    {
        itsSize = UInt32(aLine.GetInteger("size", 1, 99).value_or(3));
        itsHybrid = aLine.HasFlag("hybrid");
    }
    else if (aCommand == "dilate" || aCommand == "erode")
    {
        itsIterations = UInt32(aLine.GetInteger("iterations", 1, 100).value_or(1));
        const std::string element = aLine.GetValue("element").value_or("cross");
        if (element == "box")
        {
            for (SInt32 z = -1; z <= 1; ++z)
                for (SInt32 y = -1; y <= 1; ++y)
                    for (SInt32 x = -1; x <= 1; ++x)
                        if (x != 0 || y != 0 || z != 0)
                            itsElement.push_back(X3DPoint(x, y, z));
        }
        else if (element != "cross")
            throw XCommandError("option '--element' is cross or box, not '" + element + "'", XCommandError::kUsage);
        itsEdgeBlack = aLine.HasFlag("edge-black");
    }
    else
    {
        const int given = int(aLine.GetValue("kernel").has_value()) + int(aLine.GetValue("mean").has_value()) +
                          int(aLine.GetValue("gaussian").has_value());
        if (given != 1)
            throw XCommandError("one of '--kernel FILE', '--mean N' and '--gaussian SIGMA' is needed",
                                XCommandError::kUsage);
        itsMean = UInt32(aLine.GetInteger("mean", 1, 21).value_or(0));
        itsSigma = GetNumber(aLine, "gaussian").value_or(0.0);
        if (aLine.GetValue("gaussian") && !(itsSigma > 0.0 && itsSigma <= 10.0))
            throw XCommandError("option '--gaussian' needs a sigma above 0 and at most 10", XCommandError::kUsage);
        itsBias = float(GetNumber(aLine, "bias").value_or(0.0));
        if (const std::optional<std::string> path = aLine.GetValue("kernel"))
            itsKernel = ReadKernel(*path);
    }
}

std::unique_ptr<X1To1VolumeTool> XFilterCommands::MakeTool(const XVolume & aVolume) const
{
    if (itsCommand == "median")
    {
        if (itsHybrid)
            return std::make_unique<XHybridMedianFilterVolumeTool>(itsSize);
        return std::make_unique<XMedianFilterVolumeTool>(itsSize);
    }
    if (itsCommand == "dilate")
        return std::make_unique<XDilateFilterVolumeTool>(itsIterations, itsElement);
    if (itsCommand == "erode")
        return std::make_unique<XErodeFilterVolumeTool>(itsIterations, itsElement, itsEdgeBlack);
    const bool flat = aVolume.GetDepth() == 1;
    const XKernel kernel = itsMean != 0      ? MakeMean(itsMean, flat ? 1 : itsMean)
                           : itsSigma != 0.0 ? MakeGaussian(itsSigma, flat)
                                             : itsKernel;
    return std::make_unique<XSpatialFilterVolumeTool>(kernel.itsWeights.data(), kernel.itsWidth, kernel.itsHeight,
                                                      kernel.itsDepth, itsBias);
}

XFilterCommands::XKernel XFilterCommands::ReadKernel(const std::string & aPath)
{
    std::ifstream file(aPath, std::ios::binary | std::ios::ate);
    if (!file)
        throw XCommandError("cannot read the kernel file '" + aPath + "'");
    if (file.tellg() > kMaxKernelFileBytes)
        throw XCommandError("the kernel file '" + aPath + "' is too large for a kernel of at most " +
                            std::to_string(kMaxWeights) + " weights");
    file.seekg(0);
    std::vector<double> numbers;
    std::string word;
    while (file >> word)
    {
        const std::optional<double> number = ParseNumber(word);
        if (!number)
            throw XCommandError("the kernel file '" + aPath + "' holds '" + word + "', which is not a number");
        numbers.push_back(*number);
    }
    const auto extent = [&](std::size_t i) {
        if (i >= numbers.size() || numbers[i] < 1 || numbers[i] > double(kMaxWeights) ||
            numbers[i] != std::floor(numbers[i]))
            throw XCommandError("the kernel file '" + aPath +
                                "' does not begin with its width, height and depth (whole numbers from 1)");
        return UInt32(numbers[i]);
    };
    XKernel kernel;
    kernel.itsWidth = extent(0);
    kernel.itsHeight = extent(1);
    kernel.itsDepth = extent(2);
    const UInt64 count = UInt64(kernel.itsWidth) * kernel.itsHeight * kernel.itsDepth;
    if (count > kMaxWeights)
        throw XCommandError("the kernel of '" + aPath + "' has " + std::to_string(count) + " weights; at most " +
                            std::to_string(kMaxWeights) + " are allowed");
    if (numbers.size() - 3 != count)
        throw XCommandError("the kernel file '" + aPath + "' holds " + std::to_string(numbers.size() - 3) +
                            " weights for a kernel of " + std::to_string(kernel.itsWidth) + " x " +
                            std::to_string(kernel.itsHeight) + " x " + std::to_string(kernel.itsDepth));
    for (std::size_t i = 3; i < numbers.size(); ++i)
        kernel.itsWeights.push_back(float(numbers[i]));
    return kernel;
}

XFilterCommands::XKernel XFilterCommands::MakeMean(UInt32 aSize, UInt32 aDepth)
{
    return XKernel{aSize, aSize, aDepth, std::vector<float>(UInt64(aSize) * aSize * aDepth, 1.0f)};
}

XFilterCommands::XKernel XFilterCommands::MakeGaussian(double aSigma, bool aFlat)
{
    const SInt32 radius = SInt32(std::ceil(3.0 * aSigma));
    const UInt32 size = UInt32(2 * radius + 1);
    const UInt32 depth = aFlat ? 1 : size;
    const UInt64 count = UInt64(size) * size * depth;
    if (count > kMaxWeights)
        throw XCommandError("a Gaussian of sigma " + Text(aSigma) + " needs " + std::to_string(count) +
                                " weights; at most " + std::to_string(kMaxWeights) + " are allowed",
                            XCommandError::kUsage);
    std::vector<double> profile;
    for (SInt32 d = -radius; d <= radius; ++d)
        profile.push_back(std::exp(-double(d) * d / (2.0 * aSigma * aSigma)));
    XKernel kernel{size, size, depth, {}};
    for (UInt32 k = 0; k < depth; ++k)
        for (UInt32 j = 0; j < size; ++j)
            for (UInt32 i = 0; i < size; ++i)
                kernel.itsWeights.push_back(float(profile[i] * profile[j] * (aFlat ? 1.0 : profile[k])));
    return kernel;
}

std::optional<double> XFilterCommands::GetNumber(const XCommandLine & aLine, const std::string & aName)
{
    const std::optional<std::string> text = aLine.GetValue(aName);
    if (!text)
        return std::nullopt;
    const std::optional<double> value = ParseNumber(*text);
    if (!value || std::abs(*value) > double(std::numeric_limits<float>::max()))
        throw XCommandError("option '--" + aName + "' needs a number, not '" + *text + "'", XCommandError::kUsage);
    return value;
}
