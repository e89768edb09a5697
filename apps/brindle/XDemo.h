#pragma once
// The main job of the tool: the typical road through the library, as far as it reaches today,
// on the built-in sample stack. Each step writes what it made into the output folder and adds
// to a short report (report.txt):
//   1. the sample stack (sample.bvol), with its known cells;
//   2. statistics: FindMinMax, FindMean, FindSum;
//   3. stream round trips: the file read back, and a big-endian stream in memory;
//   4. a TIFF round trip (sample.tif);
//   5. conversions into grey8, float, argb32 and rgb48 through CopyIn, and float back to grey16;
//   6. the tools: flips, rotations and invert, with PNGs of their middle planes;
//   7. plane extraction: XY, XZ and YZ planes, the last two scaled to square pixels;
//   8. resampling: the stack in 8 bits reduced to half its extents with the triangle filter,
//      with a PNG of its middle plane.
//   9. a median filter of size 3, with a PNG of its middle plane.
// Steps check what can be told without the library (a voxel of a conversion, a round trip that
// must give the original back); the report counts the checks that failed.

#include <memory>
#include <string>
#include <vector>

#include "XTypes.h"

class XGrey16Volume;
class XSampleStack;
class XVolume;

class XDemo
{
public:
    // The folder is made when it does not exist.
    explicit XDemo(const std::string & aFolder);
    ~XDemo();

    // Runs every step and returns the report, which is also in report.txt. XCommandError when a
    // file cannot be written.
    std::string Run();
    UInt32 GetFailedCheckCount() const { return itsFailedChecks; }

private:
    void MakeSample();
    void MeasureSample();
    void RoundTripStreams();
    void RoundTripTiff();
    void ConvertTypes();
    void ApplyTools();
    void ExtractPlanes();
    void ResampleSample();
    void FilterMedian();

    // The path of a file in the output folder.
    std::string PathOf(const std::string & aName) const;
    // Writes aVolume into the folder (by the extension of aName) and notes the file.
    void WriteFile(const XVolume & aVolume, const std::string & aName, SInt32 aPlane = 0, UInt32 aBits = 0);
    void Say(const std::string & aLine);
    void Check(const std::string & aWhat, bool aPassed);

    std::string itsFolder;
    std::string itsReport;
    std::vector<std::string> itsFiles;
    UInt32 itsChecks = 0;
    UInt32 itsFailedChecks = 0;
    std::unique_ptr<XSampleStack> itsStack;
    std::unique_ptr<XGrey16Volume> itsSample;
};
