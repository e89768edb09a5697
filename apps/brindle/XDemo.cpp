#include "XDemo.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "X1To1VolumeTool.h"
#include "X3DPoint.h"
#include "XARGB32Volume.h"
#include "XCommandError.h"
#include "XFPVolume.h"
#include "XGrey8Volume.h"
#include "XFileStream.h"
#include "XGrey16Volume.h"
#include "XHandleStream.h"
#include "XImageRenderer.h"
#include "XImagingLibrary.h"
#include "XLock.h"
#include "XMedianFilterVolumeTool.h"
#include "XMemoryHandle.h"
#include "XProgress.h"
#include "XResampleCommand.h"
#include "XRGB48Volume.h"
#include "XSampleStack.h"
#include "XTiffStackReader.h"
#include "XToolsByName.h"
#include "XVolumeFiles.h"
#include "XVolumeKinds.h"
#include "XVolumeReport.h"

namespace
{
// The middle plane, shown in the PNGs of the tools.
constexpr SInt32 kMiddlePlane = SInt32(XSampleStack::kDepth / 2);

std::string Size(const XVolume & aVolume)
{
    return std::to_string(aVolume.GetWidth()) + " x " + std::to_string(aVolume.GetHeight()) + " x " +
           std::to_string(aVolume.GetDepth());
}

std::string Statistics(const XVolume & aVolume)
{
    std::string text;
    for (const XVolumeReport::XChannelStatistics & channel : XVolumeReport::Measure(aVolume))
    {
        text += text.empty() ? "" : "; ";
        text += (channel.itsName.empty() ? "" : channel.itsName + " ") + "min " +
                XVolumeReport::Rounded(channel.itsMinimum) + ", max " + XVolumeReport::Rounded(channel.itsMaximum) +
                ", mean " + XVolumeReport::Rounded(channel.itsMean);
    }
    return text;
}

// The voxels that the checks of conversions and tools look at: the corners of the middle
// plane and the centres of the cells.
std::vector<X3DPoint> ProbePoints()
{
    const SInt32 right = SInt32(XSampleStack::kWidth) - 1;
    const SInt32 bottom = SInt32(XSampleStack::kHeight) - 1;
    std::vector<X3DPoint> points = {X3DPoint(0, 0, kMiddlePlane), X3DPoint(right, 0, kMiddlePlane),
                                    X3DPoint(0, bottom, kMiddlePlane), X3DPoint(right, bottom, kMiddlePlane)};
    for (const XSampleStack::XCell & cell : XSampleStack::GetCells())
        points.push_back(X3DPoint(SInt32(cell.itsX), SInt32(cell.itsY), SInt32(cell.itsZ)));
    return points;
}

// True when aTest holds for the sample's voxel at every probe p and the voxel of aVolume
// (class V) at aMove(p).
template <class V, class Test, class Move>
bool HoldsAtProbes(const XVolume & aVolume, const XGrey16Volume & aSample, Test aTest, Move aMove)
{
    const auto & typed = dynamic_cast<const V &>(aVolume);
    XLock lockSample(aSample, kLockRead);
    XLock lockVolume(typed, kLockRead);
    for (const X3DPoint & p : ProbePoints())
    {
        const X3DPoint q = aMove(p);
        if (!aTest(aSample.GetVoxel(p.GetX(), p.GetY(), p.GetZ()), typed.GetVoxel(q.GetX(), q.GetY(), q.GetZ())))
            return false;
    }
    return true;
}

template <class V, class Test>
bool HoldsAtProbes(const XVolume & aVolume, const XGrey16Volume & aSample, Test aTest)
{
    return HoldsAtProbes<V>(aVolume, aSample, aTest, [](const X3DPoint & p) { return p; });
}

std::unique_ptr<XVolume> Apply(const std::string & aTool, const XVolume & aVolume)
{
    return std::unique_ptr<XVolume>(XToolsByName::Make(aTool)->ApplyTool(aVolume));
}

// Times one step of the demo for the report.
class XStepTimer
{
public:
    XStepTimer() : itsStart(std::chrono::steady_clock::now()) {}
    std::string Elapsed() const
    {
        const auto elapsed = std::chrono::steady_clock::now() - itsStart;
        return std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count()) + " ms";
    }

private:
    std::chrono::steady_clock::time_point itsStart;
};
} // namespace

XDemo::XDemo(const std::string & aFolder) : itsFolder(aFolder)
{
    std::error_code error;
    if (std::filesystem::exists(aFolder, error) && !std::filesystem::is_directory(aFolder, error))
        throw XCommandError("cannot write into '" + aFolder + "': it is not a folder");
    if (!std::filesystem::create_directories(aFolder, error) && error)
        throw XCommandError("cannot make the folder '" + aFolder + "': " + error.message());
}

XDemo::~XDemo() = default;

std::string XDemo::Run()
{
    itsReport = "BrindleImaging " + XImagingLibrary::GetVersionString().GetStdString() +
                ": the typical road on the built-in sample stack\n";
    struct XStep
    {
        const char * itsTitle;
        void (XDemo::*itsRun)();
    };
    const XStep steps[] = {{"The sample stack", &XDemo::MakeSample},
                           {"Statistics", &XDemo::MeasureSample},
                           {"Stream round trips", &XDemo::RoundTripStreams},
                           {"TIFF round trip", &XDemo::RoundTripTiff},
                           {"Conversions (CopyIn)", &XDemo::ConvertTypes},
                           {"Tools", &XDemo::ApplyTools},
                           {"Planes", &XDemo::ExtractPlanes},
                           {"Resampling", &XDemo::ResampleSample},
                           {"Median filter", &XDemo::FilterMedian}};
    XProgress progress(std::size(steps), XProgress::kProgressWithEstimate, XProgress::kDefaultDelayMs, false);
    UInt32 number = 0;
    for (const XStep & step : steps)
    {
        progress.SetMessage(step.itsTitle);
        const XStepTimer timer;
        const std::size_t heading = itsReport.size();
        (this->*step.itsRun)();
        // Appended to "\n" rather than "\n" + ...: g++ 12 at -O3 warns falsely (-Wrestrict) of the
        // prepending that operator+ inlines.
        std::string title = "\n";
        title += std::to_string(++number) + ". " + step.itsTitle + " (" + timer.Elapsed() + ")\n";
        itsReport.insert(heading, title);
        progress.Increment();
    }

    itsReport += "\nChecks: " + std::to_string(itsChecks - itsFailedChecks) + " passed, " +
                 std::to_string(itsFailedChecks) + " failed\n";
    itsReport += "Files in " + itsFolder + ":";
    for (const std::string & file : itsFiles)
        itsReport += " " + file;
    itsReport += " report.txt\n";

    const std::string reportPath = PathOf("report.txt");
    std::ofstream report(reportPath, std::ios::binary | std::ios::trunc);
    report << itsReport;
    report.close();
    if (!report)
        throw XCommandError("cannot write '" + reportPath + "'");
    return itsReport;
}

std::string XDemo::PathOf(const std::string & aName) const
{
    return (std::filesystem::path(itsFolder) / aName).string();
}

void XDemo::WriteFile(const XVolume & aVolume, const std::string & aName, SInt32 aPlane, UInt32 aBits)
{
    XVolumeFiles::Write(aVolume, PathOf(aName), aPlane, aBits);
    itsFiles.push_back(aName);
}

void XDemo::Say(const std::string & aLine)
{
    itsReport += "   " + aLine + "\n";
}

void XDemo::Check(const std::string & aWhat, bool aPassed)
{
    ++itsChecks;
    if (!aPassed)
        ++itsFailedChecks;
    Say(std::string(aPassed ? "ok      " : "FAILED  ") + aWhat);
}

void XDemo::MakeSample()
{
    itsStack = std::make_unique<XSampleStack>();
    itsSample = itsStack->MakeVolume();
    Say(Size(*itsSample) + " voxels of 16-bit grey, voxel size " + XVolumeReport::Number(XSampleStack::kXCalibration) +
        " x " + XVolumeReport::Number(XSampleStack::kYCalibration) + " x " +
        XVolumeReport::Number(XSampleStack::kZCalibration) + " micrometres, seed " +
        std::to_string(itsStack->GetSeed()));
    Say(std::to_string(itsStack->GetSpots().size()) + " spots (sigma " +
        XVolumeReport::Number(XSampleStack::kSpotSigmaXY) + " voxels across, " +
        XVolumeReport::Number(XSampleStack::kSpotSigmaZ) + " plane in depth) and " +
        std::to_string(XSampleStack::GetCells().size()) + " cells:");
    UInt32 number = 0;
    for (const XSampleStack::XCell & cell : XSampleStack::GetCells())
        Say("  cell " + std::to_string(++number) + " at x " + XVolumeReport::Number(cell.itsX) + ", y " +
            XVolumeReport::Number(cell.itsY) + ", z " + XVolumeReport::Number(cell.itsZ) + ": radius " +
            XVolumeReport::Number(cell.itsRadiusXY) + " across, " + XVolumeReport::Number(cell.itsRadiusZ) +
            " planes deep, " + XVolumeReport::Number(cell.itsLevel) + " above the background");
    WriteFile(*itsSample, "sample.bvol");
    WriteFile(*itsSample, "sample-xy-16.png", kMiddlePlane, 8);
    WriteFile(*itsSample, "sample-xy-16-raw.png", kMiddlePlane, 16);
    Say("wrote sample.bvol, and plane 16 as sample-xy-16.png (8 bits, black to white of the renderer)");
    Say("and as sample-xy-16-raw.png (the 16-bit voxels as they are)");
}

void XDemo::MeasureSample()
{
    UInt16 lowest = 0;
    UInt16 highest = 0;
    itsSample->FindMinMax(lowest, highest);
    const UInt16 mean = itsSample->FindMean();
    const double sum = itsSample->FindSum();
    const double count = double(itsSample->GetBounds().GetVolume());
    Say("FindMinMax " + std::to_string(lowest) + " .. " + std::to_string(highest) + ", FindMean " +
        std::to_string(mean) + ", FindSum " + XVolumeReport::Number(sum) + " over " +
        XVolumeReport::Number(count) + " voxels");
    Say("renderer: black " + XVolumeReport::Number(itsSample->GetPlaneRenderer().GetBlack()) + ", white " +
        XVolumeReport::Number(itsSample->GetPlaneRenderer().GetWhite()));
    Check("FindMean is the sum over the count, truncated", mean == UInt16(std::floor(sum / count)));
    Check("the renderer spans the voxels", itsSample->GetPlaneRenderer().GetBlack() == lowest &&
                                               itsSample->GetPlaneRenderer().GetWhite() == highest);
}

void XDemo::RoundTripStreams()
{
    const std::unique_ptr<XVolume> back = XVolumeFiles::ReadStream(PathOf("sample.bvol"));
    const bool same = *back == *itsSample && back->GetXCalibration() == XSampleStack::kXCalibration &&
                      back->GetYCalibration() == XSampleStack::kYCalibration &&
                      back->GetZCalibration() == XSampleStack::kZCalibration;
    Say("sample.bvol: " + XVolumeReport::Number(double(std::filesystem::file_size(PathOf("sample.bvol")))) +
        " bytes, little-endian");
    Check("sample.bvol reads back as the same voxels and calibrations", same);
    Say("(a volume's stream form holds no renderer: one read back has the default display range)");

    XMemoryHandle storage;
    {
        XHandleStream stream(storage);
        stream.SetByteOrder(kBigEndian);
        stream.WriteStreamInfo();
        stream.WriteObject(*itsSample);
    }
    XHandleStream stream(storage);
    stream.ReadStreamInfo();
    const std::unique_ptr<XVolume> swapped(stream.ReadObjectAs<XVolume>());
    Check("a big-endian stream in memory reads back as the same volume",
          stream.GetByteOrder() == kBigEndian && swapped && *swapped == *itsSample);
}

void XDemo::RoundTripTiff()
{
    WriteFile(*itsSample, "sample.tif");
    const std::unique_ptr<XVolume> back = XTiffStackReader(PathOf("sample.tif")).Read();
    Say("sample.tif: " + std::to_string(XSampleStack::kDepth) + " pages of 16-bit grey, " +
        XVolumeReport::Number(double(std::filesystem::file_size(PathOf("sample.tif")))) + " bytes");
    Check("sample.tif reads back as the same voxels", *back == *itsSample);
    Check("and the same calibrations and display range",
          back->GetXCalibration() == itsSample->GetXCalibration() &&
              back->GetYCalibration() == itsSample->GetYCalibration() &&
              back->GetZCalibration() == itsSample->GetZCalibration() &&
              back->GetPlaneRenderer().GetBlack() == itsSample->GetPlaneRenderer().GetBlack() &&
              back->GetPlaneRenderer().GetWhite() == itsSample->GetPlaneRenderer().GetWhite());
}

void XDemo::ConvertTypes()
{
    const auto grey8 = XVolumeKinds::Convert(*itsSample, XVolumeKinds::FindTarget("grey8"));
    Say("grey8:  " + Statistics(*grey8));
    Check("grey16 into grey8 keeps the high byte",
          HoldsAtProbes<XGrey8Volume>(*grey8, *itsSample, [](UInt16 v, UInt8 c) { return c == (v >> 8); }));
    WriteFile(*grey8, "sample-grey8.bvol");

    const auto real = XVolumeKinds::Convert(*itsSample, XVolumeKinds::FindTarget("float"));
    Say("float:  " + Statistics(*real));
    Check("grey16 into float keeps the values",
          HoldsAtProbes<XFPVolume>(*real, *itsSample, [](UInt16 v, float c) { return c == float(v); }));
    WriteFile(*real, "sample-float.bvol");
    WriteFile(*real, "sample-float-xy-16.png", kMiddlePlane, 8);

    const auto colour = XVolumeKinds::Convert(*itsSample, XVolumeKinds::FindTarget("argb32"));
    Say("argb32: " + Statistics(*colour));
    Check("grey16 into argb32 puts the high byte in every channel",
          HoldsAtProbes<XARGB32Volume>(*colour, *itsSample, [](UInt16 v, const XARGB32Colour & c) {
              return c.GetAlpha() == 255 && c.GetRed() == (v >> 8) && c.GetGreen() == (v >> 8) &&
                     c.GetBlue() == (v >> 8);
          }));

    const auto deep = XVolumeKinds::Convert(*itsSample, XVolumeKinds::FindTarget("rgb48"));
    Say("rgb48:  " + Statistics(*deep));
    Check("grey16 into rgb48 puts the value in every channel",
          HoldsAtProbes<XRGB48Volume>(*deep, *itsSample, [](UInt16 v, const XRGB48Colour & c) {
              return c == XRGB48Colour(v);
          }));

    const auto back = XVolumeKinds::Convert(*real, XVolumeKinds::FindTarget("grey16"));
    UInt16 lowest = 0;
    UInt16 highest = 0;
    dynamic_cast<const XGrey16Volume &>(*back).FindMinMax(lowest, highest);
    Say("float back into grey16: " + Statistics(*back));
    // The stretch truncates: the white point may land a hair below 65535.
    Check("float into grey16 stretches the renderer's black..white onto 0..65535", lowest == 0 && highest >= 65534);
    Say("wrote sample-grey8.bvol, sample-float.bvol and sample-float-xy-16.png");
}

void XDemo::ApplyTools()
{
    const char * const names[] = {"flip-h", "flip-v", "rotate-cw", "rotate-ccw", "rotate-180", "invert"};
    std::vector<std::unique_ptr<XVolume>> results;
    for (const char * name : names)
    {
        results.push_back(Apply(name, *itsSample));
        XVolume & result = *results.back();
        if (std::string(name) == "invert")
        {
            // The display range turns over with the voxels.
            XImageRenderer & renderer = result.GetPlaneRenderer();
            const double black = renderer.GetBlack();
            renderer.SetBlack(65535.0 - renderer.GetWhite());
            renderer.SetWhite(65535.0 - black);
        }
        WriteFile(result, std::string("sample-") + name + "-xy-16.png", kMiddlePlane, 8);
    }
    Say("wrote the middle plane of each result as sample-TOOL-xy-16.png");
    const XVolume & flippedH = *results[0];
    const XVolume & clockwise = *results[2];
    const XVolume & turned = *results[4];
    const XVolume & inverted = *results[5];
    const SInt32 last = SInt32(XSampleStack::kWidth) - 1; // the planes are square
    const auto same = [](UInt16 v, UInt16 c) { return c == v; };
    Check("flip-h moves voxel (x, y) to (255 - x, y)",
          HoldsAtProbes<XGrey16Volume>(flippedH, *itsSample, same,
                                       [&](const X3DPoint & p) { return X3DPoint(last - p.GetX(), p.GetY(), p.GetZ()); }));
    Check("rotate-cw moves voxel (x, y) to (255 - y, x)",
          HoldsAtProbes<XGrey16Volume>(clockwise, *itsSample, same,
                                       [&](const X3DPoint & p) { return X3DPoint(last - p.GetY(), p.GetX(), p.GetZ()); }));
    Check("flip-h twice gives the original", *Apply("flip-h", flippedH) == *itsSample);
    Check("rotate-ccw after rotate-cw gives the original", *Apply("rotate-ccw", clockwise) == *itsSample);
    Check("rotate-180 is flip-v after flip-h", turned == *Apply("flip-v", flippedH));
    Check("invert gives 65535 - value",
          HoldsAtProbes<XGrey16Volume>(inverted, *itsSample, [](UInt16 v, UInt16 c) { return c == 65535 - v; }));
    Check("invert twice gives the original", *Apply("invert", inverted) == *itsSample);
}

void XDemo::ExtractPlanes()
{
    const std::unique_ptr<XVolume> xy(itsSample->XYPlaneToVolume(kMiddlePlane, false));
    // Row 70 passes through cells 1 and 2, column 128 through cell 3.
    const std::unique_ptr<XVolume> xz(itsSample->XZPlaneToVolume(70, true));
    const std::unique_ptr<XVolume> yz(itsSample->YZPlaneToVolume(128, true));
    Say("XY plane 16: " + Size(*xy) + "; XZ plane 70, scaled to square pixels: " + Size(*xz) +
        "; YZ plane 128, scaled: " + Size(*yz));
    const std::unique_ptr<XVolume> cut(itsSample->Clone(itsSample->GetBounds().GetXYPlane(kMiddlePlane)));
    Check("the XY plane is that plane of the stack, at its own coordinates", *xy == *cut);
    // z steps are 2.5 times the x steps, so 32 planes become 80 rows.
    Check("the scaled XZ plane is 256 x 80", xz->GetWidth() == 256 && xz->GetHeight() == 80);
    WriteFile(*xy, "plane-xy-16.png", 0, 8);
    WriteFile(*xz, "plane-xz-70.png", 0, 8);
    WriteFile(*yz, "plane-yz-128.png", 0, 8);
    Say("wrote plane-xy-16.png, plane-xz-70.png and plane-yz-128.png");
}

void XDemo::ResampleSample()
{
    // Through float, so that the display range (black to white) spans the 8 bits.
    const auto real = XVolumeKinds::Convert(*itsSample, XVolumeKinds::FindTarget("float"));
    const auto grey8 = XVolumeKinds::Convert(*real, XVolumeKinds::FindTarget("grey8"));
    const X3DRect half(XSampleStack::kWidth / 2, XSampleStack::kHeight / 2, XSampleStack::kDepth / 2);
    const auto reduced = XResampleCommand::Resample(*grey8, half, kFilterTriangle);
    Say("grey8 " + Size(*grey8) + " reduced with the triangle filter to " + Size(*reduced) + ", voxel size " +
        XVolumeReport::Number(reduced->GetXCalibration()) + " x " + XVolumeReport::Number(reduced->GetYCalibration()) +
        " x " + XVolumeReport::Number(reduced->GetZCalibration()) + " micrometres");
    const XVolumeReport::XChannelStatistics before = XVolumeReport::Measure(*grey8).front();
    const XVolumeReport::XChannelStatistics after = XVolumeReport::Measure(*reduced).front();
    Say("before: " + Statistics(*grey8) + "; after: " + Statistics(*reduced));
    Check("the voxel size doubles as the grid halves",
          reduced->GetXCalibration() == 2 * XSampleStack::kXCalibration &&
              reduced->GetYCalibration() == 2 * XSampleStack::kYCalibration &&
              reduced->GetZCalibration() == 2 * XSampleStack::kZCalibration);
    // Weights of one sign that sum to at most 1 cannot leave the source's range, but for a
    // level that the fixed point's floor may take off in each of the three passes.
    Check("the reduced voxels stay within the stack's range",
          after.itsMinimum + 3 >= before.itsMinimum && after.itsMaximum <= before.itsMaximum);
    WriteFile(*reduced, "sample-half.bvol");
    WriteFile(*reduced, "sample-half-xy-8.png", SInt32(XSampleStack::kDepth / 4));
    Say("wrote sample-half.bvol and its middle plane as sample-half-xy-8.png");
}

void XDemo::FilterMedian()
{
    const XStepTimer timer;
    XMedianFilterVolumeTool median(3);
    const std::unique_ptr<XVolume> result(median.ApplyTool(*itsSample));
    Say("median of 3 x 3 x 3 in " + timer.Elapsed() + ": " + Statistics(*result));
    const auto & smoothed = dynamic_cast<const XGrey16Volume &>(*result);
    // The median of the voxels of the cube that lie inside, taken here with the standard library.
    const auto cubeMedian = [&](const X3DPoint & p) {
        std::vector<UInt16> values;
        const X3DRect & b = itsSample->GetBounds();
        for (SInt32 z = std::max(p.GetZ() - 1, b.GetFront()); z <= std::min(p.GetZ() + 1, b.GetBack() - 1); ++z)
            for (SInt32 y = std::max(p.GetY() - 1, b.GetTop()); y <= std::min(p.GetY() + 1, b.GetBottom() - 1); ++y)
                for (SInt32 x = std::max(p.GetX() - 1, b.GetLeft()); x <= std::min(p.GetX() + 1, b.GetRight() - 1); ++x)
                    values.push_back(itsSample->GetVoxel(x, y, z));
        std::nth_element(values.begin(), values.begin() + std::ptrdiff_t((values.size() - 1) / 2), values.end());
        return values[(values.size() - 1) / 2];
    };
    bool same = true;
    // The mean step between neighbours along x, before and after: the noise that the filter takes.
    double before = 0.0;
    double after = 0.0;
    {
        XLock lockSample(*itsSample, kLockRead);
        XLock lockResult(smoothed, kLockRead);
        for (const X3DPoint & p : ProbePoints())
            same = same && smoothed.GetVoxel(p.GetX(), p.GetY(), p.GetZ()) == cubeMedian(p);
        for (SInt32 y = 0; y < SInt32(XSampleStack::kHeight); ++y)
            for (SInt32 x = 1; x < SInt32(XSampleStack::kWidth); ++x)
            {
                before += std::abs(itsSample->GetVoxel(x, y, kMiddlePlane) - itsSample->GetVoxel(x - 1, y, kMiddlePlane));
                after += std::abs(smoothed.GetVoxel(x, y, kMiddlePlane) - smoothed.GetVoxel(x - 1, y, kMiddlePlane));
            }
    }
    const double steps = double(XSampleStack::kHeight) * (XSampleStack::kWidth - 1);
    Say("mean step between x neighbours in plane 16: " + XVolumeReport::Rounded(before / steps) + " before, " +
        XVolumeReport::Rounded(after / steps) + " after");
    Check("at the probes the median is that of the voxels of the cube inside the stack", same);
    Check("the filter takes noise: neighbours differ less", after < before);
    WriteFile(*result, "sample-median-xy-16.png", kMiddlePlane, 8);
    Say("wrote sample-median-xy-16.png");
}
