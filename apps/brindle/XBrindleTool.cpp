#include "XBrindleTool.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <memory>
#include <new>
#include <ostream>

#include "X1To1VolumeTool.h"
#include "XCommandError.h"
#include "XDemo.h"
#include "XException.h"
#include "XFilterCommands.h"
#include "XGrey16Volume.h"
#include "XImagingErrors.h"
#include "XImagingLibrary.h"
#include "XInternalError.h"
#include "XProgressStrategy.h"
#include "XResampleCommand.h"
#include "XSampleStack.h"
#include "XSelfCheck.h"
#include "XStackLayout.h"
#include "XTerminalProgressStrategy.h"
#include "XThread.h"
#include "XTiffStackReader.h"
#include "XToolsByName.h"
#include "XVolumeFiles.h"
#include "XVolumeKinds.h"
#include "XVolumeReport.h"

namespace
{
constexpr int kInternalErrorStatus = 3;

const std::vector<XCommandLine::XOptionSpec> kWriteOptions = {{"plane", true}, {"bits", true}, {"bigtiff", false}};

const char * const kWriteHelp = "The output's extension chooses its kind: .bvol (a volume stream file), .tif or .tiff\n"
                                "(a TIFF stack) or .png (one plane).\n"
                                "  --plane Z   the plane of a PNG, counted from 0 at the first plane (default 0)\n"
                                "  --bits N    8 or 16 bits a sample in a PNG (default: as the voxels have)\n"
                                "  --bigtiff   a TIFF stack as BigTIFF even below 4 GiB (larger ones always are)\n";

// A command's own options, then those of the output.
std::vector<XCommandLine::XOptionSpec> WithWriteOptions(std::vector<XCommandLine::XOptionSpec> anOptions)
{
    anOptions.insert(anOptions.end(), kWriteOptions.begin(), kWriteOptions.end());
    return anOptions;
}

// OUT.bvol becomes OUT-c2.bvol for channel 2.
std::string ChannelPath(const std::string & aPath, UInt32 aChannel)
{
    std::filesystem::path path(aPath);
    const std::string extension = path.extension().string();
    return path.replace_filename(path.stem().string() + "-c" + std::to_string(aChannel) + extension).string();
}

// How the options of import pick one volume of a stack with several.
std::string HowToPick(const XStackLayout & aLayout)
{
    const std::string channels = "--channel C (0.." + std::to_string(aLayout.GetChannelCount() - 1) + ")";
    const std::string times = "--time T (0.." + std::to_string(aLayout.GetTimeCount() - 1) + ")";
    if (aLayout.GetTimeCount() == 1)
        return "pick one with " + channels + ", or write each with --all-channels";
    if (aLayout.GetChannelCount() == 1)
        return "pick one with " + times;
    return "pick one with " + channels + " and " + times + ", or write each channel of a time point with " +
           "--all-channels and " + times;
}
} // namespace

XBrindleTool::XBrindleTool(std::ostream & anOut, std::ostream & anError) : itsOut(anOut), itsError(anError) {}

const std::vector<XBrindleTool::XCommand> & XBrindleTool::GetCommands()
{
    static const std::vector<XCommand> commands = {
        {"info", "FILE", "tell what a volume file holds",
         "Prints the class, voxel type, size, bounds and origin, calibrations, renderer settings,\n"
         "and the minimum, maximum and mean of a .bvol file or a TIFF stack.\n",
         1, 1, {}, &XBrindleTool::RunInfo},
        {"import", "STACK.tif OUT.bvol", "read a multi-page TIFF stack into a volume file",
         "Reads 8, 16 and 32-bit grey, 32-bit float, and 8 and 16-bit RGB stacks, in strips or tiles,\n"
         "in either byte order, classic TIFF or BigTIFF, with the voxel size from OME-TIFF's metadata\n"
         "or from the resolution tags (and ImageJ's z spacing).\n"
         "A stack of several channels or time points (an ImageJ hyperstack, an OME-TIFF file) holds\n"
         "one volume for each channel at each time point; pick one, or write every channel:\n"
         "  --channel C      the channel, counted from 0\n"
         "  --time T         the time point, counted from 0\n"
         "  --all-channels   one file a channel, named after OUT: OUT.bvol gives OUT-c0.bvol,\n"
         "                   OUT-c1.bvol, ...\n",
         2, 2, WithWriteOptions({{"channel", true}, {"time", true}, {"all-channels", false}}),
         &XBrindleTool::RunImport},
        {"export", "IN.bvol OUT.tif|OUT.png", "write a volume as a TIFF stack or one plane as a PNG",
         "A TIFF stack holds every voxel as it is (lossless). A PNG holds one plane: 8 or 16-bit grey or\n"
         "RGB; wider and float voxels are scaled from the renderer's black to its white.\n",
         2, 2, kWriteOptions, &XBrindleTool::RunExport},
        {"convert", "IN OUT --type TYPE", "convert a volume to another voxel type",
         "TYPE is grey8, grey16, float, argb32 or rgb48. The conversion is the library's own\n"
         "(XVolume::CopyIn): 16-bit grey into 8 bits keeps the high byte, float into integers maps the\n"
         "renderer's black..white onto the whole range, grey into float keeps the values.\n",
         2, 2, WithWriteOptions({{"type", true}}), &XBrindleTool::RunConvert},
        {"flip-h", "IN OUT", "flip every plane left to right", "", 2, 2, kWriteOptions, &XBrindleTool::RunTool},
        {"flip-v", "IN OUT", "flip every plane top to bottom", "", 2, 2, kWriteOptions, &XBrindleTool::RunTool},
        {"rotate-cw", "IN OUT", "rotate every plane by 90 degrees clockwise", "", 2, 2, kWriteOptions,
         &XBrindleTool::RunTool},
        {"rotate-ccw", "IN OUT", "rotate every plane by 90 degrees counter-clockwise", "", 2, 2, kWriteOptions,
         &XBrindleTool::RunTool},
        {"rotate-180", "IN OUT", "rotate every plane by 180 degrees", "", 2, 2, kWriteOptions,
         &XBrindleTool::RunTool},
        {"invert", "IN OUT", "invert the voxels (maximum - value)",
         "Grey and colour volumes of 8 and 16 bits; float and BGRA32 volumes are refused.\n", 2, 2, kWriteOptions,
         &XBrindleTool::RunTool},
        {"resample", "IN OUT (--size WxHxD | --scale S[,SY,SZ]) [--filter NAME]",
         "resample a volume onto a new grid",
         "Resamples every axis whose extent changes with a filter of the library (XVolumeResampleTool),\n"
         "one axis at a time. It takes 8-bit grey and colour volumes (grey8, mask, argb32, bgra32):\n"
         "convert others first.\n"
         "  --size WxHxD       the new extents\n"
         "  --scale S[,SY,SZ]  the new extents as factors of the old, rounded (one factor: every axis)\n"
         "  --filter NAME      simple, triangle, bell, bspline or lanczos3 (default: the smooth step\n"
         "                     'simple' where an axis shrinks, 'bell' where it grows)\n"
         "The origin stays; the voxel size grows as the grid shrinks, so the stack spans the same\n"
         "length.\n",
         2, 2, XResampleCommand::GetOptions(), &XBrindleTool::RunResample},
        {"median", "IN OUT [--size N] [--hybrid]", "smooth with a median filter",
         "Each voxel becomes the median of the cube of N x N x N voxels around it, of those that lie\n"
         "inside the volume (fewer at edges and corners; of an even count the lower middle one). Colour\n"
         "volumes go channel by channel; alpha becomes 0. BGRA32 and 32-bit grey volumes are refused.\n"
         "  --size N    the cube's size, 1..99 (default 3)\n"
         "  --hybrid    the hybrid median instead: the median of seven medians over the lines and\n"
         "              diagonals through the voxel, which keeps thin lines and corners (an even size\n"
         "              goes up by one)\n",
         2, 2,
         {{"size", true}, {"hybrid", false}, {"plane", true}, {"bits", true}},
         &XBrindleTool::RunFilter},
        {"dilate", "IN OUT [--iterations N] [--element cross|box]", "grey-scale dilation (the brightest neighbour)",
         "Each voxel becomes the brightest of itself and its neighbours inside the volume, colour voxels\n"
         "by their largest channel. Grey, float and ARGB32 volumes.\n"
         "  --iterations N       how many times, 1..100 (default 1)\n"
         "  --element cross|box  the six face neighbours (default) or all 26 of the 3 x 3 x 3 cube\n",
         2, 2,
         {{"iterations", true}, {"element", true}, {"plane", true}, {"bits", true}},
         &XBrindleTool::RunFilter},
        {"erode", "IN OUT [--iterations N] [--element cross|box] [--edge-black]",
         "grey-scale erosion (the darkest neighbour)",
         "Each voxel becomes the darkest of itself and its neighbours inside the volume, colour voxels\n"
         "by their largest channel. Grey, float and ARGB32 volumes.\n"
         "  --iterations N       how many times, 1..100 (default 1)\n"
         "  --element cross|box  the six face neighbours (default) or all 26 of the 3 x 3 x 3 cube\n"
         "  --edge-black         the outside counts as black: the volume is eaten in from its faces\n",
         2, 2,
         {{"iterations", true}, {"element", true}, {"edge-black", false}, {"plane", true}, {"bits", true}},
         &XBrindleTool::RunFilter},
        {"convolve", "IN OUT (--kernel FILE | --mean N | --gaussian SIGMA) [--bias B]",
         "convolve with a kernel of weights",
         "Each voxel becomes trunc(sum of weight x voxel + bias) over a box around it, the weights divided\n"
         "by their sum unless it is 0. Edges darken (the outside adds nothing), and 8 and 16-bit results\n"
         "keep their low bits instead of clamping. Grey, float and ARGB32 volumes (alpha, red and green;\n"
         "blue becomes 0).\n"
         "  --kernel FILE     whitespace-separated numbers: width, height and depth, then the weights,\n"
         "                    x fastest\n"
         "  --mean N          N x N x N equal weights, 1..21\n"
         "  --gaussian SIGMA  a Gaussian of SIGMA voxels (up to 10), out to 3 SIGMA\n"
         "  --bias B          added to every result (default 0)\n"
         "On a volume of one plane --mean and --gaussian make flat kernels. A kernel has at most 10000\n"
         "weights.\n",
         2, 2,
         {{"kernel", true}, {"mean", true}, {"gaussian", true}, {"bias", true}, {"plane", true}, {"bits", true}},
         &XBrindleTool::RunFilter},
        {"sample", "OUT.bvol", "write the built-in sample stack",
         "A synthetic 3-D fluorescence stack, the same on every machine: 256 x 256 x 32 voxels of\n"
         "16 bits, voxel size 0.2 x 0.2 x 0.5 micrometres, a few hundred blurred spots and five cells\n"
         "on an uneven background with noise.\n"
         "  --seed N   another seed for the spots and the noise\n",
         1, 1, WithWriteOptions({{"seed", true}}), &XBrindleTool::RunSample},
        {"demo", "[OUTDIR]", "run the typical road on the sample stack",
         "Makes the sample stack and runs on it what the library does today: statistics, stream and\n"
         "TIFF round trips, conversions, flips, rotations and invert, plane extraction. Writes the\n"
         "stream files, PNGs of planes and report.txt into OUTDIR (default: brindle-demo).\n",
         0, 1, {}, &XBrindleTool::RunDemo},
        {"self-check", "", "check the foundation on this machine",
         "A stream round trip, locks across threads and the value behaviour of memory handles.\n", 0, 0, {},
         &XBrindleTool::RunSelfCheck},
        {"help", "[COMMAND]", "show the help of a command", "", 0, 1, {}, &XBrindleTool::RunHelp}};
    return commands;
}

const XBrindleTool::XCommand * XBrindleTool::FindCommand(const std::string & aName)
{
    for (const XCommand & command : GetCommands())
    {
        if (aName == command.itsName)
            return &command;
    }
    return nullptr;
}

int XBrindleTool::Run(const std::vector<std::string> & anArguments)
{
    std::vector<std::string> arguments;
    for (const std::string & argument : anArguments)
    {
        if (argument == "--quiet" || argument == "-q")
            itsQuiet = true;
        else
            arguments.push_back(argument);
    }
    if (!itsQuiet)
        XProgressStrategy::SetStrategy(std::make_shared<XTerminalProgressStrategy>());
    if (arguments.empty())
    {
        Report("", "no command given (try 'brindle --help')");
        return XCommandError::kUsage;
    }
    const std::string & name = arguments.front();
    if (name == "--help" || name == "-h")
    {
        PrintUsage();
        return 0;
    }
    if (name == "--version")
    {
        itsOut << "brindle " << XImagingLibrary::GetVersionString().c_str() << "\n";
        return 0;
    }
    const XCommand * command = FindCommand(name);
    if (command == nullptr)
    {
        Report("", "unknown command '" + name + "' (try 'brindle --help')");
        return XCommandError::kUsage;
    }
    return RunCommand(*command, std::vector<std::string>(arguments.begin() + 1, arguments.end()));
}

int XBrindleTool::RunCommand(const XCommand & aCommand, const std::vector<std::string> & anArguments)
{
    if (std::find(anArguments.begin(), anArguments.end(), "--help") != anArguments.end() ||
        std::find(anArguments.begin(), anArguments.end(), "-h") != anArguments.end())
    {
        PrintHelp(aCommand);
        return 0;
    }
    try
    {
        const XCommandLine line(anArguments, aCommand.itsOptions);
        const UInt32 count = UInt32(line.GetPositionals().size());
        if (count < aCommand.itsMinArguments || count > aCommand.itsMaxArguments)
            throw XCommandError(std::string(count < aCommand.itsMinArguments ? "too few" : "too many") +
                                    " arguments (usage: brindle " + aCommand.itsName + " " + aCommand.itsSynopsis + ")",
                                XCommandError::kUsage);
        (this->*aCommand.itsRun)(aCommand, line);
        return 0;
    }
    catch (const XCommandError & anError)
    {
        Report(aCommand.itsName, anError.what());
        return anError.GetExitStatus();
    }
    catch (const XException & anError)
    {
        // A refusal names the type itself; other failures read best with their number's text.
        const bool refusal = anError.GetErrorNumber() == kErrVolumeTypeRefused && !anError.GetDetail().empty();
        Report(aCommand.itsName, refusal ? anError.GetDetail() : anError.GetErrorMessage().GetStdString());
        return XCommandError::kFailure;
    }
    catch (const XInternalError & anError)
    {
        Report(aCommand.itsName, std::string("internal error: ") + anError.what());
        return kInternalErrorStatus;
    }
    catch (const std::bad_alloc &)
    {
        Report(aCommand.itsName, "not enough memory");
        return XCommandError::kFailure;
    }
    catch (const std::exception & anError)
    {
        Report(aCommand.itsName, std::string("internal error: ") + anError.what());
        return kInternalErrorStatus;
    }
}

void XBrindleTool::PrintUsage() const
{
    itsOut << "brindle " << XImagingLibrary::GetVersionString().c_str()
           << ": 3-D microscopy stacks on the command line\n\n"
              "usage: brindle [--quiet] COMMAND [ARGUMENTS] [OPTIONS]\n\n"
              "commands:\n";
    for (const XCommand & command : GetCommands())
    {
        std::string name = command.itsName;
        name.resize(std::max<std::size_t>(name.size() + 2, 13), ' ');
        itsOut << "  " << name << command.itsSummary << "\n";
    }
    itsOut << "\n'brindle COMMAND --help' tells more about a command. --quiet hides progress bars and the\n"
              "lines that tell what was written. Exit status: 0 done, 1 bad input, 2 bad command line,\n"
              "3 internal error.\n";
}

void XBrindleTool::PrintHelp(const XCommand & aCommand) const
{
    itsOut << "usage: brindle " << aCommand.itsName;
    if (*aCommand.itsSynopsis != '\0')
        itsOut << " " << aCommand.itsSynopsis;
    itsOut << "\n\n" << char(std::toupper(aCommand.itsSummary[0])) << (aCommand.itsSummary + 1) << ".\n";
    if (*aCommand.itsHelp != '\0')
        itsOut << aCommand.itsHelp;
    if (!aCommand.itsOptions.empty() && aCommand.itsOptions.back().itsName == kWriteOptions.back().itsName)
        itsOut << kWriteHelp;
}

void XBrindleTool::Report(const std::string & aCommand, const std::string & aMessage) const
{
    // One line, whatever the message holds.
    std::string line = aMessage;
    std::replace(line.begin(), line.end(), '\n', ' ');
    itsError << "brindle" << (aCommand.empty() ? "" : " " + aCommand) << ": " << line << std::endl;
}

void XBrindleTool::Tell(const std::string & aText) const
{
    if (!itsQuiet)
        itsOut << aText << "\n";
}

void XBrindleTool::WriteResult(const XVolume & aVolume, const std::string & aPath, const XCommandLine & aLine)
{
    const SInt32 plane = SInt32(aLine.GetInteger("plane", 0, 0x7FFFFFFF).value_or(0));
    const std::optional<SInt64> bits = aLine.GetInteger("bits", 8, 16);
    if (bits && *bits != 8 && *bits != 16)
        throw XCommandError("option '--bits' is 8 or 16, not " + std::to_string(*bits), XCommandError::kUsage);
    const XVolumeFiles::XFileKind kind = XVolumeFiles::KindOf(aPath);
    if (kind != XVolumeFiles::kPngFile && (aLine.GetValue("plane") || bits))
        throw XCommandError("options '--plane' and '--bits' are for PNG files only", XCommandError::kUsage);
    const bool bigTiff = aLine.HasFlag("bigtiff");
    if (kind != XVolumeFiles::kTiffFile && bigTiff)
        throw XCommandError("option '--bigtiff' is for TIFF files only", XCommandError::kUsage);
    XVolumeFiles::Write(aVolume, aPath, plane, UInt32(bits.value_or(0)), bigTiff);
    const X3DRect & b = aVolume.GetBounds();
    Tell("wrote " + aPath + " (" + XVolumeKinds::Of(aVolume).itsName + ", " + std::to_string(b.GetWidth()) + " x " +
         std::to_string(b.GetHeight()) + " x " + std::to_string(b.GetDepth()) + ")");
}

void XBrindleTool::RunInfo(const XCommand &, const XCommandLine & aLine)
{
    const std::string & path = aLine.GetPositionals()[0];
    std::unique_ptr<XVolume> volume = XVolumeFiles::Read(path);
    itsOut << "file         " << path << "\n" << XVolumeReport::Describe(*volume);
}

void XBrindleTool::RunImport(const XCommand &, const XCommandLine & aLine)
{
    const std::string & input = aLine.GetPositionals()[0];
    const std::string & output = aLine.GetPositionals()[1];
    XVolumeFiles::KindOf(output);
    const bool allChannels = aLine.HasFlag("all-channels");
    if (allChannels && aLine.GetValue("channel"))
        throw XCommandError("options '--channel' and '--all-channels' exclude each other", XCommandError::kUsage);
    XTiffStackReader reader(input);
    const XStackLayout & layout = reader.GetLayout();
    const std::optional<SInt64> channel = aLine.GetInteger("channel", 0, layout.GetChannelCount() - 1);
    const std::optional<SInt64> time = aLine.GetInteger("time", 0, layout.GetTimeCount() - 1);
    if ((layout.GetChannelCount() > 1 && !channel && !allChannels) || (layout.GetTimeCount() > 1 && !time))
        throw XCommandError("'" + input + "' holds " + layout.Describe() + "; " + HowToPick(layout),
                            XCommandError::kUsage);
    // One channel at a time, so that no more than one volume is held.
    const UInt32 first = allChannels ? 0 : UInt32(channel.value_or(0));
    const UInt32 end = allChannels ? layout.GetChannelCount() : first + 1;
    for (UInt32 c = first; c < end; ++c)
    {
        const std::unique_ptr<XVolume> volume = reader.Read(c, UInt32(time.value_or(0)));
        WriteResult(*volume, allChannels ? ChannelPath(output, c) : output, aLine);
    }
}

void XBrindleTool::RunExport(const XCommand &, const XCommandLine & aLine)
{
    const std::string & output = aLine.GetPositionals()[1];
    XVolumeFiles::KindOf(output);
    std::unique_ptr<XVolume> volume = XVolumeFiles::Read(aLine.GetPositionals()[0]);
    WriteResult(*volume, output, aLine);
}

void XBrindleTool::RunConvert(const XCommand &, const XCommandLine & aLine)
{
    const std::optional<std::string> type = aLine.GetValue("type");
    if (!type)
        throw XCommandError("option '--type' is needed (" + XVolumeKinds::GetTargetNames() + ")",
                            XCommandError::kUsage);
    const XVolumeKind & target = XVolumeKinds::FindTarget(*type);
    const std::string & output = aLine.GetPositionals()[1];
    XVolumeFiles::KindOf(output);
    std::unique_ptr<XVolume> volume = XVolumeFiles::Read(aLine.GetPositionals()[0]);
    std::unique_ptr<XVolume> converted = XVolumeKinds::Convert(*volume, target);
    WriteResult(*converted, output, aLine);
}

void XBrindleTool::RunTool(const XCommand & aCommand, const XCommandLine & aLine)
{
    const std::string & output = aLine.GetPositionals()[1];
    XVolumeFiles::KindOf(output);
    std::unique_ptr<X1To1VolumeTool> tool = XToolsByName::Make(aCommand.itsName);
    std::unique_ptr<XVolume> volume = XVolumeFiles::Read(aLine.GetPositionals()[0]);
    std::unique_ptr<XVolume> result(tool->ApplyTool(*volume));
    WriteResult(*result, output, aLine);
}

void XBrindleTool::RunResample(const XCommand &, const XCommandLine & aLine)
{
    const std::string & output = aLine.GetPositionals()[1];
    XVolumeFiles::KindOf(output);
    const XFilterMode mode = XResampleCommand::GetFilterMode(aLine);
    std::unique_ptr<XVolume> volume = XVolumeFiles::Read(aLine.GetPositionals()[0]);
    const X3DRect bounds = XResampleCommand::GetTargetBounds(aLine, volume->GetBounds());
    WriteResult(*XResampleCommand::Resample(*volume, bounds, mode), output, aLine);
}

void XBrindleTool::RunFilter(const XCommand & aCommand, const XCommandLine & aLine)
{
    const XFilterCommands filter(aCommand.itsName, aLine);
    const std::string & output = aLine.GetPositionals()[1];
    XVolumeFiles::KindOf(output);
    std::unique_ptr<XVolume> volume = XVolumeFiles::Read(aLine.GetPositionals()[0]);
    std::unique_ptr<XVolume> result(filter.MakeTool(*volume)->ApplyTool(*volume));
    WriteResult(*result, output, aLine);
}

void XBrindleTool::RunSample(const XCommand &, const XCommandLine & aLine)
{
    const std::string & output = aLine.GetPositionals()[0];
    XVolumeFiles::KindOf(output);
    const SInt64 seed = aLine.GetInteger("seed", 0, 0x7FFFFFFFFFFFFFFF).value_or(SInt64(XSampleStack::kSeed));
    const XSampleStack stack{UInt64(seed)};
    std::unique_ptr<XGrey16Volume> volume = stack.MakeVolume();
    WriteResult(*volume, output, aLine);
}

void XBrindleTool::RunDemo(const XCommand &, const XCommandLine & aLine)
{
    const std::string folder = aLine.GetPositionals().empty() ? "brindle-demo" : aLine.GetPositionals()[0];
    XDemo demo(folder);
    const std::string summary = demo.Run();
    if (!itsQuiet)
        itsOut << summary;
    if (demo.GetFailedCheckCount() != 0)
        throw XCommandError(std::to_string(demo.GetFailedCheckCount()) + " check(s) failed; see " +
                            (std::filesystem::path(folder) / "report.txt").string());
}

void XBrindleTool::RunSelfCheck(const XCommand &, const XCommandLine &)
{
    itsOut << "BrindleImaging " << XImagingLibrary::GetVersionString().c_str() << " (built "
           << XImagingLibrary::GetBuildDate().c_str() << ", " << XThread::GetProcessorCount() << " processors)\n";
    itsOut << "Self-check of the foundation:\n";
    XSelfCheck check;
    if (!check.Run(itsOut))
        throw XCommandError("some checks failed");
    itsOut << "All checks passed.\n";
}

void XBrindleTool::RunHelp(const XCommand &, const XCommandLine & aLine)
{
    if (aLine.GetPositionals().empty())
    {
        PrintUsage();
        return;
    }
    const XCommand * command = FindCommand(aLine.GetPositionals()[0]);
    if (command == nullptr)
        throw XCommandError("unknown command '" + aLine.GetPositionals()[0] + "'", XCommandError::kUsage);
    PrintHelp(*command);
}
