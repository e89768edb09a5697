// brindle import of stacks that hold several channels or time points: ImageJ hyperstacks and
// OME-TIFF files, made here with libtiff. Which pages make a volume, the refusal that asks to
// pick one, every channel into its own file, OME-XML's voxel sizes and units, and damaged or
// unfitting OME-XML.
//
// The 16-bit pages follow the sample formula of XTiffFiles.h; at (x, y) = (2, 3) page p holds
// 2 * 1031 + 3 * 257 + 3 + 4099 p = 2836 + 4099 p, so the voxel there tells the page:
// 2836, 6935, 11034, 15133, 19232, 23331, 27430, 31529 for pages 0 to 7.

#include <gtest/gtest.h>

#include "XARGB32Volume.h"
#include "XBrindleRun.h"
#include "XGrey16Volume.h"
#include "XTiffFiles.h"

namespace
{
constexpr int kBadInput = 1;
constexpr int kBadCommandLine = 2;

class StackImport : public XBrindleTest
{
protected:
    // A 37 x 23 16-bit stack of aPages pages with aDescription on its first page.
    void MakeStack(const std::string & aName, UInt32 aPages, const std::string & aDescription)
    {
        XTiffSpec spec;
        spec.itsPages = aPages;
        spec.itsDescription = aDescription;
        ASSERT_TRUE(XMakeTiff(PathOf(aName), spec));
    }

    // The voxel at (2, 3) of each slice of a 16-bit volume file.
    std::vector<UInt16> Probes(const std::string & aName) const
    {
        const auto volume = XReadVolumeFile<XGrey16Volume>(PathOf(aName));
        EXPECT_EQ(volume->GetWidth(), 37u);
        EXPECT_EQ(volume->GetHeight(), 23u);
        XLock lock(*volume, kLockRead);
        std::vector<UInt16> probes;
        for (UInt32 z = 0; z < volume->GetDepth(); ++z)
            probes.push_back(volume->GetVoxel(2, 3, SInt32(z)));
        return probes;
    }

    // Runs the command and expects it to fail with aStatus and one line that holds aText,
    // leaving the folder's files as they were.
    void ExpectFailure(const std::vector<std::string> & anArguments, int aStatus, const std::string & aText) const
    {
        const std::vector<std::string> before = Files();
        const XBrindleResult result = Run(anArguments);
        EXPECT_TRUE(result.FailedWith(aStatus, anArguments.front(), aText)) << result;
        EXPECT_EQ(Files(), before);
    }
};

// OME-XML of one image of 37 x 23 planes, with further attributes of Pixels and its children.
std::string Ome(const std::string & aPixels, const std::string & aChildren = "<TiffData/>")
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<OME xmlns=\"http://www.openmicroscopy.org/Schemas/OME/2016-06\" Creator=\"test\">\n"
           "<Image ID=\"Image:0\" Name=\"stack\"><Pixels ID=\"Pixels:0\" Type=\"uint16\" SizeX=\"37\" SizeY=\"23\" " +
           aPixels + ">\n" + aChildren + "\n</Pixels></Image></OME>\n";
}
} // namespace

TEST_F(StackImport, ImageJChannelsArePickedOrWrittenEachToItsFile)
{
    // Two channels of three slices, channel fastest: channel 1 is pages 1, 3 and 5.
    MakeStack("hyper.tif", 6,
              "ImageJ=1.54f\nimages=6\nchannels=2\nslices=3\nhyperstack=true\nmode=composite\nunit=micron\n"
              "spacing=0.5\nloop=false\n");
    ExpectFailure({"import", "hyper.tif", "out.bvol"}, kBadCommandLine,
                  "'hyper.tif' holds 2 channels of 3 slices each; pick one with --channel C (0..1), or write each "
                  "with --all-channels");

    const XBrindleResult one = Run({"import", "hyper.tif", "c1.bvol", "--channel", "1"});
    ASSERT_EQ(one.itsStatus, 0) << one;
    EXPECT_EQ(one.itsOut, "wrote c1.bvol (grey16, 37 x 23 x 3)\n");
    EXPECT_EQ(Probes("c1.bvol"), (std::vector<UInt16>{6935, 15133, 23331}));
    EXPECT_EQ(XReadVolumeFile<XGrey16Volume>(PathOf("c1.bvol"))->GetZCalibration(), 0.5);

    const XBrindleResult all = Run({"import", "hyper.tif", "all.bvol", "--all-channels"});
    ASSERT_EQ(all.itsStatus, 0) << all;
    EXPECT_EQ(all.itsOut, "wrote all-c0.bvol (grey16, 37 x 23 x 3)\nwrote all-c1.bvol (grey16, 37 x 23 x 3)\n");
    EXPECT_EQ(Probes("all-c0.bvol"), (std::vector<UInt16>{2836, 11034, 19232}));
    EXPECT_EQ(Probes("all-c1.bvol"), (std::vector<UInt16>{6935, 15133, 23331}));

    ExpectFailure({"import", "hyper.tif", "out.bvol", "--channel", "2"}, kBadCommandLine,
                  "option '--channel' needs a whole number in 0..1, not '2'");
    ExpectFailure({"import", "hyper.tif", "out.bvol", "--channel", "0", "--all-channels"}, kBadCommandLine,
                  "options '--channel' and '--all-channels' exclude each other");
    // Commands that read one volume send the user to import.
    ExpectFailure({"info", "hyper.tif"}, kBadInput,
                  "cannot read 'hyper.tif' as one volume: it holds 2 channels of 3 slices each (brindle import "
                  "picks one with --channel and --time)");
    ExpectFailure({"export", "hyper.tif", "out.png"}, kBadInput, "as one volume");
}

TEST_F(StackImport, ImageJTimePointsAndChannelsOverTime)
{
    // Three time points of two slices: time point 2 is pages 4 and 5.
    MakeStack("time.tif", 6, "ImageJ=1.54f\nimages=6\nslices=2\nframes=3\nhyperstack=true\n");
    ExpectFailure({"import", "time.tif", "out.bvol", "--all-channels"}, kBadCommandLine,
                  "'time.tif' holds 3 time points of 2 slices each; pick one with --time T (0..2)");
    ASSERT_EQ(Run({"import", "time.tif", "t2.bvol", "--time", "2"}).itsStatus, 0);
    EXPECT_EQ(Probes("t2.bvol"), (std::vector<UInt16>{19232, 23331}));

    // Two channels x two slices x two time points: page = c + 2 (z + 2 t).
    MakeStack("both.tif", 8, "ImageJ=1.54f\nimages=8\nchannels=2\nslices=2\nframes=2\nhyperstack=true\n");
    ExpectFailure({"import", "both.tif", "out.bvol", "--channel", "1"}, kBadCommandLine,
                  "'both.tif' holds 2 channels x 2 time points of 2 slices each; pick one with --channel C (0..1) "
                  "and --time T (0..1), or write each channel of a time point with --all-channels and --time T (0..1)");
    ASSERT_EQ(Run({"import", "both.tif", "c1t1.bvol", "--channel", "1", "--time", "1"}).itsStatus, 0);
    EXPECT_EQ(Probes("c1t1.bvol"), (std::vector<UInt16>{23331, 31529}));
    ASSERT_EQ(Run({"import", "both.tif", "t1.bvol", "--all-channels", "--time=1"}).itsStatus, 0);
    EXPECT_EQ(Probes("t1-c0.bvol"), (std::vector<UInt16>{19232, 27430}));
    EXPECT_EQ(Probes("t1-c1.bvol"), (std::vector<UInt16>{23331, 31529}));

    // Counts that do not fit the pages are refused when they would split channels or time
    // points; a plain stack's slice count is not needed to read it (a stack cut short).
    MakeStack("short.tif", 5, "ImageJ=1.54f\nimages=6\nchannels=2\nslices=3\nhyperstack=true\n");
    ExpectFailure({"import", "short.tif", "out.bvol"}, kBadInput,
                  "cannot read 'short.tif': its ImageJ description tells of 2 channels x 3 slices x 1 time point, "
                  "but it has 5 pages");
    MakeStack("plain.tif", 3, "ImageJ=1.54f\nimages=10\nslices=10\n");
    ASSERT_EQ(Run({"import", "plain.tif", "plain.bvol"}).itsStatus, 0);
    EXPECT_EQ(Probes("plain.bvol"), (std::vector<UInt16>{2836, 6935, 11034}));
    // ImageJ's stacks past 4 GiB: one page, its planes one after another behind it.
    MakeStack("one.tif", 1, "ImageJ=1.54f\nimages=3\nslices=3\n");
    ExpectFailure({"import", "one.tif", "out.bvol"}, kBadInput,
                  "cannot read 'one.tif': its ImageJ description tells of 3 images, but it has one page (ImageJ's "
                  "form of stacks past 4 GiB, which is not supported)");
}

TEST_F(StackImport, OmeTiffPagesFollowTheDimensionOrderAndTheTiffData)
{
    // XYZCT: slice fastest, so channel 1 is pages 3, 4 and 5. The z step is given in nanometres.
    MakeStack("ome.tif", 6,
              Ome("DimensionOrder=\"XYZCT\" SizeZ=\"3\" SizeC=\"2\" SizeT=\"1\" PhysicalSizeX=\"0.1625\" "
                  "PhysicalSizeY=\"0.1625\" PhysicalSizeZ=\"500\" PhysicalSizeZUnit=\"nm\"",
                  "<Channel ID=\"Channel:0:0\"/><Channel ID=\"Channel:0:1\"/><TiffData/>"));
    ExpectFailure({"import", "ome.tif", "out.bvol"}, kBadCommandLine, "'ome.tif' holds 2 channels of 3 slices each");
    ASSERT_EQ(Run({"import", "ome.tif", "c1.bvol", "--channel", "1"}).itsStatus, 0);
    EXPECT_EQ(Probes("c1.bvol"), (std::vector<UInt16>{15133, 19232, 23331}));
    const auto volume = XReadVolumeFile<XGrey16Volume>(PathOf("c1.bvol"));
    EXPECT_EQ(volume->GetXCalibration(), 0.1625);
    EXPECT_EQ(volume->GetYCalibration(), 0.1625);
    EXPECT_EQ(volume->GetZCalibration(), 0.5);

    // One TiffData a plane, in reverse page order; IFD alone means one plane.
    MakeStack("mapped.tif", 4,
              Ome("DimensionOrder=\"XYCZT\" SizeZ=\"2\" SizeC=\"2\" SizeT=\"1\"",
                  "<TiffData FirstC=\"0\" FirstZ=\"0\" IFD=\"3\" PlaneCount=\"1\"/><TiffData FirstC=\"1\" IFD=\"2\"/>"
                  "<TiffData FirstZ=\"1\" IFD=\"1\"/><TiffData FirstC=\"1\" FirstZ=\"1\" IFD=\"0\"/>"));
    ASSERT_EQ(Run({"import", "mapped.tif", "m.bvol", "--all-channels"}).itsStatus, 0);
    EXPECT_EQ(Probes("m-c0.bvol"), (std::vector<UInt16>{15133, 6935}));
    EXPECT_EQ(Probes("m-c1.bvol"), (std::vector<UInt16>{11034, 2836}));

    // XYTCZ: time fastest, then the one channel, then slice: time point 1 is pages 1 and 3.
    MakeStack("times.tif", 4,
              Ome("DimensionOrder=\"XYTCZ\" SizeZ=\"2\" SizeC=\"1\" SizeT=\"2\"",
                  "<TiffData IFD=\"0\" PlaneCount=\"4\"/>"));
    ExpectFailure({"import", "times.tif", "out.bvol"}, kBadCommandLine,
                  "'times.tif' holds 2 time points of 2 slices each; pick one with --time T (0..1)");
    ASSERT_EQ(Run({"import", "times.tif", "t1.bvol", "--time", "1"}).itsStatus, 0);
    EXPECT_EQ(Probes("t1.bvol"), (std::vector<UInt16>{6935, 15133}));

    // Colour pages hold their three channels as samples: SizeC 3 is one volume.
    XTiffSpec rgb;
    rgb.itsBits = 8;
    rgb.itsChannels = 3;
    rgb.itsDescription = Ome("DimensionOrder=\"XYCZT\" SizeZ=\"3\" SizeC=\"3\" SizeT=\"1\"",
                             "<Channel ID=\"Channel:0:0\" SamplesPerPixel=\"3\"/><TiffData/>");
    ASSERT_TRUE(XMakeTiff(PathOf("rgb.tif"), rgb));
    ASSERT_EQ(Run({"import", "rgb.tif", "rgb.bvol"}).itsStatus, 0);
    EXPECT_EQ(XReadVolumeFile<XARGB32Volume>(PathOf("rgb.bvol"))->GetBounds(), X3DRect(37, 23, 3));
}

TEST_F(StackImport, OmeVoxelSizesInEveryUnitAndPrefix)
{
    // A namespace prefix, the angstrom as a character reference, millimetres, micrometres by
    // default: 2000 A = 0.2 um, 0.0005 mm = 0.5 um.
    MakeStack("units.tif", 3,
              "<ome:OME xmlns:ome=\"http://www.openmicroscopy.org/Schemas/OME/2015-01\"><ome:Image ID=\"Image:0\">"
              "<ome:Pixels DimensionOrder=\"XYZCT\" SizeX=\"37\" SizeY=\"23\" SizeZ=\"3\" SizeC=\"1\" SizeT=\"1\" "
              "PhysicalSizeX=\" 2000 \" PhysicalSizeXUnit=\"&#197;\" PhysicalSizeY=\"0.0005\" PhysicalSizeYUnit=\"mm\" "
              "PhysicalSizeZ=\"+1.5\"><ome:TiffData/></ome:Pixels></ome:Image></ome:OME>");
    const XBrindleResult info = Run({"info", "units.tif"});
    ASSERT_EQ(info.itsStatus, 0) << info;
    EXPECT_NE(info.itsOut.find("calibration  0.2 x 0.5 x 1.5\n"), std::string::npos) << info;

    // Inches and the micro sign as UTF-8; a size in pixels leaves the resolution tags' 0.2.
    XTiffSpec tagged;
    tagged.itsXResolution = 5.0f;
    tagged.itsYResolution = 5.0f;
    tagged.itsDescription = Ome("DimensionOrder=\"XYZCT\" SizeZ=\"3\" SizeC=\"1\" SizeT=\"1\" PhysicalSizeX=\"4\" "
                                "PhysicalSizeXUnit=\"pixel\" PhysicalSizeY=\"0.5\" PhysicalSizeYUnit=\"in\" "
                                "PhysicalSizeZ=\"0.25\" PhysicalSizeZUnit=\"\xC2\xB5m\"");
    ASSERT_TRUE(XMakeTiff(PathOf("tagged.tif"), tagged));
    ASSERT_EQ(Run({"import", "tagged.tif", "tagged.bvol"}).itsStatus, 0);
    const auto volume = XReadVolumeFile<XGrey16Volume>(PathOf("tagged.bvol"));
    EXPECT_EQ(volume->GetXCalibration(), 0.2);
    EXPECT_EQ(volume->GetYCalibration(), 12700.0);
    EXPECT_EQ(volume->GetZCalibration(), 0.25);

    // XML of other software is no OME-XML: the pages are a plain stack.
    MakeStack("other.tif", 3, "<MetaData><prop id=\"Exposure\" value=\"10\"/></MetaData>");
    ASSERT_EQ(Run({"import", "other.tif", "other.bvol"}).itsStatus, 0);
    EXPECT_EQ(Probes("other.bvol"), (std::vector<UInt16>{2836, 6935, 11034}));
    MakeStack("broken.tif", 3, "<broken");
    ASSERT_EQ(Run({"import", "broken.tif", "broken.bvol"}).itsStatus, 0);
}

TEST_F(StackImport, DamagedOrUnfittingOmeXmlIsRefused)
{
    const std::string three = "DimensionOrder=\"XYZCT\" SizeZ=\"3\" SizeC=\"1\" SizeT=\"1\"";
    const std::string whole = Ome(three);
    const std::pair<std::string, std::string> cases[] = {
        {whole.substr(0, whole.find("<Pixels") + 10), "its OME-XML is damaged: "},
        {"<OME><Image><Pixels " + three + " SizeX=\"37\" SizeY=\"23\"></Image></OME>",
         "its OME-XML is damaged: mismatched tag at line 1"},
        {Ome("DimensionOrder=\"XYZCT\" SizeZ=\"two\" SizeC=\"1\" SizeT=\"1\""),
         "its OME-XML gives SizeZ as 'two', not a whole number from 1"},
        {Ome("DimensionOrder=\"XYZCT\" SizeZ=\"0\" SizeC=\"1\" SizeT=\"1\""),
         "its OME-XML gives SizeZ as '0', not a whole number from 1"},
        {Ome("DimensionOrder=\"XYZCT\" SizeZ=\"3\" SizeC=\"1\""), "its OME-XML gives Pixels no SizeT"},
        {Ome("DimensionOrder=\"XYZ\" SizeZ=\"3\" SizeC=\"1\" SizeT=\"1\""),
         "its OME-XML gives Pixels the dimension order 'XYZ'"},
        {Ome(three + " PhysicalSizeX=\"-1\""), "its OME-XML gives PhysicalSizeX as '-1', not a positive number"},
        {Ome(three + " PhysicalSizeX=\"nan\""), "its OME-XML gives PhysicalSizeX as 'nan', not a positive number"},
        {Ome(three + " PhysicalSizeX=\"1\" PhysicalSizeXUnit=\"furlong\""),
         "its OME-XML gives PhysicalSizeX in the unknown unit 'furlong'"},
        {Ome("DimensionOrder=\"XYZCT\" SizeZ=\"4\" SizeC=\"1\" SizeT=\"1\""),
         "its OME-XML tells of 1 channel x 4 slices x 1 time point, but it has 3 pages"},
        {Ome(three, "<TiffData IFD=\"0\" PlaneCount=\"1\"/>"),
         "its OME-XML gives no page for channel 0, slice 1, time point 0"},
        {Ome(three, "<TiffData IFD=\"1\" PlaneCount=\"3\"/>"),
         "its OME-XML puts a plane on IFD 3, which is not a full-size page of the file"},
        {Ome(three, "<TiffData FirstC=\"2\"/>"),
         "its OME-XML puts planes from channel 2, slice 0, time point 0, outside its 1 channel x 3 slices x 1 time "
         "point"},
        {Ome(three, "<TiffData><UUID FileName=\"other.ome.tif\">urn:uuid:1</UUID></TiffData>"),
         "its OME-XML puts planes into another file ('other.ome.tif')"},
        {"<OME><BinaryOnly MetadataFile=\"stack.companion.ome\" UUID=\"urn:uuid:2\"/></OME>",
         "its OME-XML leaves the description of its images to another file ('stack.companion.ome')"},
        {"<OME><Instrument ID=\"Instrument:0\"/></OME>", "its OME-XML describes no image"}};
    for (const auto & [description, message] : cases)
    {
        MakeStack("bad.tif", 3, description);
        ExpectFailure({"import", "bad.tif", "out.bvol"}, kBadInput, "cannot read 'bad.tif': " + message);
    }
    // Pixels 64 wide over pages 37 wide.
    std::string wide = Ome(three);
    wide.replace(wide.find("SizeX=\"37\""), 10, "SizeX=\"64\"");
    MakeStack("bad.tif", 3, wide);
    ExpectFailure({"import", "bad.tif", "out.bvol"}, kBadInput,
                  "its OME-XML tells of 64 x 23 planes, but its pages are 37 x 23");
    // A file named as its own TiffData name is read.
    MakeStack("self.tif", 3, Ome(three, "<TiffData><UUID FileName=\"self.tif\">urn:uuid:3</UUID></TiffData>"));
    ASSERT_EQ(Run({"import", "self.tif", "self.bvol"}).itsStatus, 0);
}
