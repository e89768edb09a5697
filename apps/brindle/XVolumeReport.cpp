#include "XVolumeReport.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey32Volume.h"
#include "XImageRenderer.h"
#include "XLock.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XVolumeKinds.h"

namespace
{
template <typename T>
XVolumeReport::XChannelStatistics MeasureGrey(const XNumberVolume<T> & aVolume)
{
    T lowest{};
    T highest{};
    aVolume.FindMinMax(lowest, highest);
    const double mean = aVolume.FindSum() / double(aVolume.GetBounds().GetVolume());
    return {"", double(lowest), double(highest), mean};
}

template <class V>
std::vector<XVolumeReport::XChannelStatistics> MeasureColour(const V & aVolume)
{
    double lowest[3] = {1e300, 1e300, 1e300};
    double highest[3] = {-1e300, -1e300, -1e300};
    double sum[3] = {0.0, 0.0, 0.0};
    XLock lock(aVolume, kLockRead);
    const X3DRect & b = aVolume.GetBounds();
    for (SInt32 z = b.GetFront(); z < b.GetBack(); ++z)
        for (SInt32 y = b.GetTop(); y < b.GetBottom(); ++y)
        {
            const auto * row = aVolume.GetVoxelPtr(b.GetLeft(), y, z);
            for (UInt32 x = 0; x < aVolume.GetWidth(); ++x)
            {
                const double channels[3] = {double(row[x].GetRed()), double(row[x].GetGreen()),
                                            double(row[x].GetBlue())};
                for (int c = 0; c < 3; ++c)
                {
                    lowest[c] = std::min(lowest[c], channels[c]);
                    highest[c] = std::max(highest[c], channels[c]);
                    sum[c] += channels[c];
                }
            }
        }
    const double count = double(b.GetVolume());
    return {{"red", lowest[0], highest[0], sum[0] / count},
            {"green", lowest[1], highest[1], sum[1] / count},
            {"blue", lowest[2], highest[2], sum[2] / count}};
}

void Line(std::string & aText, const char * aName, const std::string & aValue)
{
    char name[16];
    std::snprintf(name, sizeof(name), "%-13s", aName);
    aText += name + aValue + "\n";
}

// "red 1, green 2, blue 3", or the one grey value.
template <class Field>
std::string PerChannel(const std::vector<XVolumeReport::XChannelStatistics> & aChannels, Field aField)
{
    std::string text;
    for (const auto & channel : aChannels)
    {
        if (!text.empty())
            text += ", ";
        if (!channel.itsName.empty())
            text += channel.itsName + " ";
        text += XVolumeReport::Rounded(aField(channel));
    }
    return text;
}
} // namespace

std::vector<XVolumeReport::XChannelStatistics> XVolumeReport::Measure(const XVolume & aVolume)
{
    if (aVolume.GetBounds().IsEmpty())
        return {};
    switch (XVolumeKinds::Of(aVolume).itsID)
    {
    case kMaskKind:
    case kGrey8Kind:
        return {MeasureGrey(dynamic_cast<const XGrey8Volume &>(aVolume))};
    case kGrey16Kind:
        return {MeasureGrey(dynamic_cast<const XGrey16Volume &>(aVolume))};
    case kGrey32Kind:
        return {MeasureGrey(dynamic_cast<const XGrey32Volume &>(aVolume))};
    case kFloatKind:
        return {MeasureGrey(dynamic_cast<const XFPVolume &>(aVolume))};
    case kARGB32Kind:
        return MeasureColour(dynamic_cast<const XARGB32Volume &>(aVolume));
    case kBGRA32Kind:
        return MeasureColour(dynamic_cast<const XBGRA32Volume &>(aVolume));
    case kRGB48Kind:
        return MeasureColour(dynamic_cast<const XRGB48Volume &>(aVolume));
    }
    return {};
}

std::string XVolumeReport::Describe(const XVolume & aVolume)
{
    const XVolumeKind & kind = XVolumeKinds::Of(aVolume);
    const X3DRect & b = aVolume.GetBounds();
    std::string text;
    Line(text, "class", std::string(kind.itsClassName) + " (" + aVolume.GetDescription().GetStdString() + ")");
    Line(text, "voxels", kind.itsVoxelText);
    char megabytes[32];
    std::snprintf(megabytes, sizeof(megabytes), "%.1f MiB", double(aVolume.GetMemoryUsage()) / (1 << 20));
    Line(text, "size", std::to_string(b.GetWidth()) + " x " + std::to_string(b.GetHeight()) + " x " +
                           std::to_string(b.GetDepth()) + " (" + std::to_string(b.GetVolume()) + " voxels, " +
                           megabytes + ")");
    Line(text, "bounds", "x " + std::to_string(b.GetLeft()) + ".." + std::to_string(b.GetRight()) + ", y " +
                             std::to_string(b.GetTop()) + ".." + std::to_string(b.GetBottom()) + ", z " +
                             std::to_string(b.GetFront()) + ".." + std::to_string(b.GetBack()));
    Line(text, "origin", std::to_string(b.GetLeft()) + ", " + std::to_string(b.GetTop()) + ", " +
                             std::to_string(b.GetFront()));
    Line(text, "calibration", Number(aVolume.GetXCalibration()) + " x " + Number(aVolume.GetYCalibration()) + " x " +
                                  Number(aVolume.GetZCalibration()));
    if (aVolume.HasPlaneRenderer())
    {
        const XImageRenderer & renderer = aVolume.GetPlaneRenderer();
        Line(text, "renderer", "black " + Number(renderer.GetBlack()) + ", white " + Number(renderer.GetWhite()) +
                                   ", gamma " + Number(renderer.GetGamma()) + ", gain " + Number(renderer.GetGain()) +
                                   ", offset " + Number(renderer.GetOffset()));
    }
    else
    {
        Line(text, "renderer", "none");
    }
    const std::vector<XChannelStatistics> channels = Measure(aVolume);
    if (channels.empty())
    {
        Line(text, "minimum", "none (no voxels)");
        return text;
    }
    Line(text, "minimum", PerChannel(channels, [](const XChannelStatistics & s) { return s.itsMinimum; }));
    Line(text, "maximum", PerChannel(channels, [](const XChannelStatistics & s) { return s.itsMaximum; }));
    Line(text, "mean", PerChannel(channels, [](const XChannelStatistics & s) { return s.itsMean; }));
    return text;
}

std::string XVolumeReport::Number(double aValue)
{
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof(buffer), aValue);
    return std::string(buffer, result.ptr);
}

std::string XVolumeReport::Rounded(double aValue)
{
    char buffer[64];
    std::snprintf(buffer, sizeof(buffer), "%.6g", aValue);
    return buffer;
}
