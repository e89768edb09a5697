// Every command's ways to fail: missing files, damaged TIFF stacks and volume files, types that
// a command or tool does not take, and bad command lines. Each must end with one line on
// standard error, the right exit status (1 bad input, 2 bad command line), no crash, and no
// file left behind.

#include <gtest/gtest.h>

#include <fstream>

#include "XBrindleRun.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey32Volume.h"
#include "XRect.h"
#include "XTiffFiles.h"

namespace
{
constexpr int kBadInput = 1;
constexpr int kBadCommandLine = 2;

void WriteBytes(const std::string & aPath, const std::string & aBytes)
{
    std::ofstream file(aPath, std::ios::binary | std::ios::trunc);
    file << aBytes;
}

class Failures : public XBrindleTest
{
protected:
    void SetUp() override
    {
        XBrindleTest::SetUp();
        XGrey16Volume grey(X3DRect(5, 4, 3));
        grey.Fill(700);
        XWriteVolumeFile(grey, PathOf("good.bvol"));
        XFPVolume real(X3DRect(2, 2, 2));
        XWriteVolumeFile(real, PathOf("real.bvol"));
        XGrey32Volume deep(X3DRect(2, 2, 2));
        XWriteVolumeFile(deep, PathOf("deep.bvol"));
        ASSERT_TRUE(XMakeTiff(PathOf("good.tif"), XTiffSpec()));
        itsGoodBytes = XReadText(PathOf("good.bvol"));
    }

    // Runs the command and expects it to fail with aStatus and a line that holds aText, leaving
    // the folder's files as they were.
    void ExpectFailure(const std::vector<std::string> & anArguments, int aStatus, const std::string & aText)
    {
        const std::vector<std::string> before = Files();
        const XBrindleResult result = Run(anArguments);
        EXPECT_TRUE(result.FailedWith(aStatus, anArguments.front(), aText)) << result;
        EXPECT_EQ(Files(), before);
    }

    std::string itsGoodBytes;
};
} // namespace

TEST_F(Failures, MissingFilesAndFolders)
{
    for (const char * command : {"info", "flip-h", "invert", "rotate-cw"})
    {
        std::vector<std::string> arguments = {command, "absent.bvol"};
        if (std::string(command) != "info")
            arguments.push_back("out.bvol");
        ExpectFailure(arguments, kBadInput, "cannot read 'absent.bvol': no such file");
    }
    ExpectFailure({"import", "absent.tif", "out.bvol"}, kBadInput, "cannot read 'absent.tif': no such file");
    ExpectFailure({"export", "absent.bvol", "out.tif"}, kBadInput, "cannot read 'absent.bvol': no such file");
    ExpectFailure({"convert", "absent.tif", "out.bvol", "--type", "grey8"}, kBadInput,
                  "cannot read 'absent.tif': no such file");
    std::filesystem::create_directory(itsFolder / "folder.bvol");
    ExpectFailure({"info", "folder.bvol"}, kBadInput, "it is a folder");

    // Outputs into a folder that is not there.
    ExpectFailure({"import", "good.tif", "nowhere/out.bvol"}, kBadInput, "the folder 'nowhere' does not exist");
    ExpectFailure({"export", "good.bvol", "nowhere/out.png"}, kBadInput, "the folder 'nowhere' does not exist");
    ExpectFailure({"sample", "nowhere/sample.bvol"}, kBadInput, "the folder 'nowhere' does not exist");
    ExpectFailure({"flip-v", "good.bvol", "folder.bvol"}, kBadInput, "it is a folder");
    WriteBytes(PathOf("plain"), "a file");
    ExpectFailure({"demo", "plain"}, kBadInput, "cannot write into 'plain': it is not a folder");
}

TEST_F(Failures, DamagedTiffStacks)
{
    WriteBytes(PathOf("text.tif"), "this is not a TIFF file at all");
    ExpectFailure({"import", "text.tif", "out.bvol"}, kBadInput, "cannot read 'text.tif' as a TIFF file");
    WriteBytes(PathOf("empty.tif"), "");
    ExpectFailure({"info", "empty.tif"}, kBadInput, "cannot read 'empty.tif' as a TIFF file");

    // Cut in the middle: the first page's directory points past the end.
    const std::string whole = XReadText(PathOf("good.tif"));
    WriteBytes(PathOf("cut.tif"), whole.substr(0, whole.size() * 2 / 3));
    ExpectFailure({"import", "cut.tif", "out.bvol"}, kBadInput, "cannot read 'cut.tif'");

    // Deflated strips whose bytes were overwritten.
    XTiffSpec deflated;
    deflated.itsCompression = COMPRESSION_ADOBE_DEFLATE;
    ASSERT_TRUE(XMakeTiff(PathOf("deflated.tif"), deflated));
    std::string bytes = XReadText(PathOf("deflated.tif"));
    for (std::size_t i = 10; i < 60; ++i)
        bytes[i] = char(0xFF);
    WriteBytes(PathOf("deflated.tif"), bytes);
    ExpectFailure({"import", "deflated.tif", "out.bvol"}, kBadInput, "page 1 is damaged");

    // A header that claims 60000 x 60000 16-bit pixels over ten bytes of data.
    TIFF * tiff = TIFFOpen(PathOf("huge.tif").c_str(), "w");
    ASSERT_NE(tiff, nullptr);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 60000);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 60000);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 16);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 60000);
    char ten[10] = {};
    ASSERT_EQ(TIFFWriteRawStrip(tiff, 0, ten, 10), 10);
    TIFFClose(tiff);
    ExpectFailure({"import", "huge.tif", "out.bvol"}, kBadInput, "more than its data can hold");
}

TEST_F(Failures, UnsupportedTiffStacks)
{
    struct XCase
    {
        const char * itsName;
        XTiffSpec itsSpec;
        const char * itsText;
    };
    XTiffSpec signedSamples;
    signedSamples.itsFormat = SAMPLEFORMAT_INT;
    XTiffSpec doubles;
    doubles.itsBits = 64;
    doubles.itsFormat = SAMPLEFORMAT_IEEEFP;
    XTiffSpec halfFloats;
    halfFloats.itsFormat = SAMPLEFORMAT_IEEEFP;
    XTiffSpec deepColour;
    deepColour.itsBits = 32;
    deepColour.itsChannels = 3;
    XTiffSpec mixed;
    mixed.itsNarrowFrom = 2;
    const XCase cases[] = {
        {"signed.tif", signedSamples, "page 1 holds signed 16-bit integers, which are not supported"},
        {"doubles.tif", doubles, "page 1 holds 64-bit floating-point samples"},
        {"half.tif", halfFloats, "page 1 holds 16-bit floating-point samples"},
        {"deep.tif", deepColour, "page 1 holds 32-bit RGB samples; 8 and 16-bit RGB are supported"},
        {"mixed.tif", mixed, "page 3 is 36 x 23 16-bit unsigned grey, unlike the first page (37 x 23 16-bit"}};
    for (const XCase & aCase : cases)
    {
        ASSERT_TRUE(XMakeTiff(PathOf(aCase.itsName), aCase.itsSpec)) << aCase.itsName;
        ExpectFailure({"import", aCase.itsName, "out.bvol"}, kBadInput, aCase.itsText);
    }

    // Four samples a pixel (RGB with alpha) and one bit a pixel, written by hand.
    for (const UInt16 samples : {4, 1})
    {
        const std::string name = samples == 4 ? "rgba.tif" : "bits.tif";
        TIFF * tiff = TIFFOpen(PathOf(name).c_str(), "w");
        ASSERT_NE(tiff, nullptr);
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 8);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 1);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, samples == 4 ? 8 : 1);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, samples == 4 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
        if (samples == 4)
        {
            const UInt16 alpha[] = {EXTRASAMPLE_UNASSALPHA};
            TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, alpha);
        }
        UInt8 row[32] = {};
        ASSERT_GT(TIFFWriteEncodedStrip(tiff, 0, row, samples == 4 ? 32 : 1), 0);
        TIFFClose(tiff);
    }
    ExpectFailure({"import", "rgba.tif", "out.bvol"}, kBadInput, "page 1 holds 4 samples a pixel");
    ExpectFailure({"import", "bits.tif", "out.bvol"}, kBadInput, "page 1 holds 1-bit grey samples");
}

TEST_F(Failures, DamagedVolumeFiles)
{
    WriteBytes(PathOf("text.bvol"), "not a volume stream");
    ExpectFailure({"info", "text.bvol"}, kBadInput, "cannot read 'text.bvol' as a volume stream file");
    WriteBytes(PathOf("cut.bvol"), itsGoodBytes.substr(0, itsGoodBytes.size() - 20));
    ExpectFailure({"export", "cut.bvol", "out.tif"}, kBadInput, "cannot read 'cut.bvol' as a volume stream file");
    WriteBytes(PathOf("head.bvol"), itsGoodBytes.substr(0, 16));
    ExpectFailure({"convert", "head.bvol", "out.bvol", "--type", "float"}, kBadInput,
                  "cannot read 'head.bvol' as a volume stream file");

    // A stream file that holds a rectangle, not a volume.
    {
        XFileStream stream(XFileSpec(PathOf("rect.bvol")), kCreate);
        stream.WriteStreamInfo();
        stream.WriteObject(XRect(1, 2, 3, 4));
    }
    ExpectFailure({"flip-h", "rect.bvol", "out.bvol"}, kBadInput, "wrong class on a stream");

    // Every few bytes of a good file turned over, one at a time: each read either succeeds or
    // fails with one line; none crashes or trips an internal error.
    for (std::size_t i = 0; i < itsGoodBytes.size(); i += 3)
    {
        std::string bytes = itsGoodBytes;
        bytes[i] = char(bytes[i] ^ 0xFF);
        WriteBytes(PathOf("flipped.bvol"), bytes);
        const XBrindleResult result = Run({"info", "flipped.bvol"});
        EXPECT_TRUE(result.itsStatus == 0 ||
                    result.FailedWith(kBadInput, "info", "cannot read 'flipped.bvol' as a volume stream file"))
            << "byte " << i << ": " << result;
    }
}

TEST_F(Failures, TypesThatACommandOrToolRefuses)
{
    ExpectFailure({"invert", "real.bvol", "out.bvol"}, kBadInput,
                  "this tool does not handle volumes of the type Floating-point Image");
    ExpectFailure({"rotate-cw", "deep.bvol", "out.bvol"}, kBadInput,
                  "this tool does not handle volumes of the type 32-bit Grayscale Image");
    ExpectFailure({"convert", "deep.bvol", "out.bvol", "--type", "grey16"}, kBadInput,
                  "32-bit grey volumes cannot be converted");
    ExpectFailure({"export", "good.bvol", "out.png", "--plane", "3"}, kBadInput,
                  "plane 3 is outside the volume's planes 0..2");
    ExpectFailure({"export", "good.tif", "out.bvol.png", "--plane", "9"}, kBadInput, "plane 9 is outside");
    ExpectFailure({"info", "good.png"}, kBadCommandLine, "PNG files are written only");
}

TEST_F(Failures, FilterOptionsAndKernelFiles)
{
    ExpectFailure({"median", "good.bvol", "out.bvol", "--size", "0"}, kBadCommandLine,
                  "option '--size' needs a whole number in 1..99, not '0'");
    ExpectFailure({"dilate", "good.bvol", "out.bvol", "--element", "star"}, kBadCommandLine,
                  "option '--element' is cross or box, not 'star'");
    ExpectFailure({"dilate", "good.bvol", "out.bvol", "--edge-black"}, kBadCommandLine, "unknown option '--edge-black'");
    ExpectFailure({"erode", "good.bvol", "out.bvol", "--iterations", "0"}, kBadCommandLine,
                  "option '--iterations' needs a whole number in 1..100");
    ExpectFailure({"convolve", "good.bvol", "out.bvol"}, kBadCommandLine,
                  "one of '--kernel FILE', '--mean N' and '--gaussian SIGMA' is needed");
    ExpectFailure({"convolve", "good.bvol", "out.bvol", "--mean", "3", "--gaussian", "1"}, kBadCommandLine,
                  "one of '--kernel FILE'");
    ExpectFailure({"convolve", "good.bvol", "out.bvol", "--gaussian", "0"}, kBadCommandLine,
                  "option '--gaussian' needs a sigma above 0 and at most 10");
    ExpectFailure({"convolve", "good.bvol", "out.bvol", "--gaussian", "5"}, kBadCommandLine,
                  "a Gaussian of sigma 5 needs 29791 weights; at most 10000 are allowed");
    ExpectFailure({"convolve", "good.bvol", "out.bvol", "--mean", "3", "--bias", "nan"}, kBadCommandLine,
                  "option '--bias' needs a number, not 'nan'");
    ExpectFailure({"convolve", "good.bvol", "out.bvol", "--kernel", "none.txt"}, kBadInput,
                  "cannot read the kernel file 'none.txt'");
    const std::pair<const char *, const char *> kernels[] = {
        {"3 1 1 1 2", "holds 2 weights for a kernel of 3 x 1 x 1"},
        {"3 1 1 1 2 x", "holds 'x', which is not a number"},
        {"0 1 1", "does not begin with its width, height and depth"},
        {"2.5 1 1 1 1", "does not begin with its width, height and depth"},
        {"200 200 1 1", "has 40000 weights; at most 10000 are allowed"},
        {"", "does not begin with its width, height and depth"}};
    for (const auto & [text, message] : kernels)
    {
        WriteBytes(PathOf("k.txt"), text);
        ExpectFailure({"convolve", "good.bvol", "out.bvol", "--kernel", "k.txt"}, kBadInput, message);
    }
    ExpectFailure({"median", "deep.bvol", "out.bvol"}, kBadInput,
                  "this tool does not handle volumes of the type 32-bit Grayscale Image");
}

TEST_F(Failures, BadCommandLines)
{
    const XBrindleResult none = Run({});
    EXPECT_EQ(none.itsStatus, kBadCommandLine);
    EXPECT_EQ(none.itsError, "brindle: no command given (try 'brindle --help')\n");
    const XBrindleResult unknown = Run({"frobnicate"});
    EXPECT_EQ(unknown.itsError, "brindle: unknown command 'frobnicate' (try 'brindle --help')\n");

    ExpectFailure({"convert", "good.bvol", "out.bvol"}, kBadCommandLine,
                  "option '--type' is needed (grey8|grey16|float|argb32|rgb48)");
    ExpectFailure({"convert", "good.bvol", "out.bvol", "--type", "grey12"}, kBadCommandLine, "unknown type 'grey12'");
    ExpectFailure({"convert", "good.bvol", "out.bvol", "--type"}, kBadCommandLine, "option '--type' needs a value");
    ExpectFailure({"info", "good.bvol", "--plane", "1"}, kBadCommandLine, "unknown option '--plane'");
    ExpectFailure({"info", "good.bvol", "-x"}, kBadCommandLine, "unknown option '-x'");
    ExpectFailure({"info"}, kBadCommandLine, "too few arguments (usage: brindle info FILE)");
    ExpectFailure({"flip-h", "good.bvol", "a.bvol", "b.bvol"}, kBadCommandLine, "too many arguments");
    ExpectFailure({"export", "good.bvol", "out.png", "--bits", "12"}, kBadCommandLine, "'--bits' is 8 or 16");
    ExpectFailure({"export", "good.bvol", "out.png", "--plane", "-1"}, kBadCommandLine,
                  "option '--plane' needs a whole number in 0..2147483647, not '-1'");
    ExpectFailure({"export", "good.bvol", "out.tif", "--plane", "1"}, kBadCommandLine, "for PNG files only");
    ExpectFailure({"export", "good.bvol", "out.jpg"}, kBadCommandLine, "'out.jpg': unknown kind of file");
    ExpectFailure({"sample", "s.bvol", "--seed", "many"}, kBadCommandLine, "option '--seed' needs a whole number");
    ExpectFailure({"help", "frobnicate"}, kBadCommandLine, "unknown command 'frobnicate'");
}
