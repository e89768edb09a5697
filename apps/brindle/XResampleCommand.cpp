#include "XResampleCommand.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>

#include "XCommandError.h"
#include "XException.h"
#include "XImagingErrors.h"
#include "XVolume.h"

namespace
{
struct XFilterName
{
    const char * itsName;
    XFilterMode itsMode;
};

constexpr XFilterName kFilters[] = {{"simple", kFilterSimple},
                                    {"triangle", kFilterTriangle},
                                    {"bell", kFilterBell},
                                    {"bspline", kFilterBSpline},
                                    {"lanczos3", kFilterLanczos3}};

const char * const kGridUsage = "give the new grid as --size WxHxD or --scale S[,SY,SZ]";

// The parts of aText between aSeparator.
std::vector<std::string> Split(const std::string & aText, char aSeparator)
{
    std::vector<std::string> parts(1);
    for (char c : aText)
    {
        if (c == aSeparator)
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

UInt32 ParseExtent(const std::string & aText, const std::string & aWhole)
{
    char * end = nullptr;
    errno = 0;
    const long long value = std::strtoll(aText.c_str(), &end, 10);
    if (aText.empty() || aText[0] == '-' || aText[0] == '+' || *end != '\0' || errno != 0 || value < 1 ||
        value > 0x7FFFFFFF)
        throw XCommandError("option '--size' needs three whole numbers in 1..2147483647 as WxHxD, not '" + aWhole + "'",
                            XCommandError::kUsage);
    return UInt32(value);
}

double ParseFactor(const std::string & aText, const std::string & aWhole)
{
    char * end = nullptr;
    errno = 0;
    const double value = std::strtod(aText.c_str(), &end);
    if (aText.empty() || *end != '\0' || errno != 0 || !std::isfinite(value) || value <= 0.0)
        throw XCommandError("option '--scale' needs one or three numbers above 0 as S or SX,SY,SZ, not '" + aWhole +
                                "'",
                            XCommandError::kUsage);
    return value;
}

// The new extent of anExtent voxels scaled by aFactor: rounded, at least 1.
UInt32 ScaledExtent(UInt32 anExtent, double aFactor)
{
    const double extent = std::max(1.0, std::floor(double(anExtent) * aFactor + 0.5));
    if (extent > 2147483647.0)
        throw XCommandError("option '--scale' makes an extent of more than 2147483647 voxels", XCommandError::kUsage);
    return UInt32(extent);
}
} // namespace

const std::vector<XCommandLine::XOptionSpec> & XResampleCommand::GetOptions()
{
    static const std::vector<XCommandLine::XOptionSpec> options = {
        {"size", true}, {"scale", true}, {"filter", true}, {"plane", true}, {"bits", true}, {"bigtiff", false}};
    return options;
}

XFilterMode XResampleCommand::GetFilterMode(const XCommandLine & aLine)
{
    const std::optional<std::string> name = aLine.GetValue("filter");
    if (!name)
        return kFilterAutomatic;
    for (const XFilterName & filter : kFilters)
        if (*name == filter.itsName)
            return filter.itsMode;
    throw XCommandError("unknown filter '" + *name + "' (simple|triangle|bell|bspline|lanczos3)", XCommandError::kUsage);
}

X3DRect XResampleCommand::GetTargetBounds(const XCommandLine & aLine, const X3DRect & aBounds)
{
    const std::optional<std::string> size = aLine.GetValue("size");
    const std::optional<std::string> scale = aLine.GetValue("scale");
    if (size.has_value() == scale.has_value())
        throw XCommandError(kGridUsage, XCommandError::kUsage);
    UInt32 extents[3];
    const UInt32 old[3] = {aBounds.GetWidth(), aBounds.GetHeight(), aBounds.GetDepth()};
    if (size)
    {
        const std::vector<std::string> parts = Split(*size, 'x');
        if (parts.size() != 3)
            throw XCommandError("option '--size' needs three whole numbers in 1..2147483647 as WxHxD, not '" + *size +
                                    "'",
                                XCommandError::kUsage);
        for (int a = 0; a < 3; ++a)
            extents[a] = ParseExtent(parts[a], *size);
    }
    else
    {
        const std::vector<std::string> parts = Split(*scale, ',');
        if (parts.size() != 1 && parts.size() != 3)
            throw XCommandError("option '--scale' needs one or three numbers above 0 as S or SX,SY,SZ, not '" + *scale +
                                    "'",
                                XCommandError::kUsage);
        for (int a = 0; a < 3; ++a)
            extents[a] = ScaledExtent(old[a], ParseFactor(parts[parts.size() == 1 ? 0 : a], *scale));
    }
    // Each pass of the tool makes a volume of the new extents on the axes done and the old on
    // the others: none is larger than the larger extents of every axis.
    double largest = 1.0;
    for (int a = 0; a < 3; ++a)
        largest *= double(std::max(extents[a], old[a]));
    const std::string grid = std::to_string(extents[0]) + "x" + std::to_string(extents[1]) + "x" +
                             std::to_string(extents[2]);
    if (largest > kMaxVoxels)
        throw XCommandError("the grid " + grid + " is too large: on the way to it resampling would hold " +
                                std::to_string(UInt64(largest)) + " voxels, more than 2^32",
                            XCommandError::kUsage);
    X3DRect bounds = aBounds;
    if (SInt64(bounds.GetLeft()) + extents[0] > 0x7FFFFFFF || SInt64(bounds.GetTop()) + extents[1] > 0x7FFFFFFF ||
        SInt64(bounds.GetFront()) + extents[2] > 0x7FFFFFFF)
        throw XCommandError("the grid " + grid + " does not fit the volume's coordinates from its origin",
                            XCommandError::kUsage);
    bounds.SetDimensions(extents[0], extents[1], extents[2]);
    return bounds;
}

std::unique_ptr<XVolume> XResampleCommand::Resample(const XVolume & aVolume, const X3DRect & aBounds,
                                                    XFilterMode aMode)
{
    std::unique_ptr<XVolume> result(aVolume.CloneWithoutCopy(aBounds));
    XVolumeResampleTool tool;
    tool.SetFilter(aMode);
    try
    {
        tool.ApplyTool(aVolume, *result, aVolume.GetBounds(), aBounds);
    }
    catch (const XException & anError)
    {
        if (anError.GetErrorNumber() != kErrVolumeTypeRefused)
            throw;
        throw XCommandError(anError.GetDetail() + "; resample takes 8-bit grey and colour volumes (grey8, mask, "
                                                  "argb32, bgra32): convert others first");
    }
    const X3DRect & old = aVolume.GetBounds();
    if (!old.IsEmpty())
    {
        result->SetXCalibration(aVolume.GetXCalibration() * old.GetWidth() / aBounds.GetWidth());
        result->SetYCalibration(aVolume.GetYCalibration() * old.GetHeight() / aBounds.GetHeight());
        result->SetZCalibration(aVolume.GetZCalibration() * old.GetDepth() / aBounds.GetDepth());
    }
    return result;
}
