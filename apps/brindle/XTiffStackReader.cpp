#include "XTiffStackReader.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <map>
#include <sstream>
#include <tiffio.h>

#include "XARGB32Volume.h"
#include "XCommandError.h"
#include "XFPVolume.h"
#include "XImageRenderer.h"
#include "XLock.h"
#include "XOmeMetadata.h"
#include "XProgress.h"
#include "XRGB48Volume.h"
#include "XTiffMessages.h"

namespace
{
static_assert(sizeof(XRGB48Colour) == 6, "RGB48 voxels are the three 16-bit samples of a TIFF pixel");

// A compressed stack may need at most this many bytes of voxels for each byte of the file
// (deflate reaches about 1000, LZW a little more), an uncompressed one no more than the file
// holds: a damaged header that claims more is refused before anything is allocated.
constexpr UInt64 kMaxExpansion = 4096;
constexpr UInt64 kExpansionAllowance = 1 << 20;
// The largest width or height that a volume's signed 32-bit coordinates hold.
constexpr UInt32 kMaxExtent = 0x7FFFFFFF;

// The key=value lines of an ImageJ description ("ImageJ=1.54f\nunit=micron\nspacing=0.5\n");
// empty for any other description.
std::map<std::string, std::string> ParseImageJDescription(const char * aDescription)
{
    std::map<std::string, std::string> fields;
    if (aDescription == nullptr || std::strncmp(aDescription, "ImageJ=", 7) != 0)
        return fields;
    std::istringstream lines(aDescription);
    std::string line;
    while (std::getline(lines, line))
    {
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos)
            fields[line.substr(0, equals)] = line.substr(equals + 1);
    }
    return fields;
}

// A number of the description, or NaN.
double FieldNumber(const std::map<std::string, std::string> & aFields, const char * aKey)
{
    const auto found = aFields.find(aKey);
    if (found == aFields.end())
        return std::nan("");
    char * end = nullptr;
    const double value = std::strtod(found->second.c_str(), &end);
    return end != found->second.c_str() ? value : std::nan("");
}

// Micrometres in one of ImageJ's units; 1 for a unit that it does not know (or none).
double MicrometresPerImageJUnit(const std::string & aUnit)
{
    if (aUnit == "nm" || aUnit == "nanometer" || aUnit == "nanometre")
        return 1e-3;
    if (aUnit == "mm" || aUnit == "millimeter" || aUnit == "millimetre")
        return 1e3;
    if (aUnit == "cm" || aUnit == "centimeter" || aUnit == "centimetre")
        return 1e4;
    if (aUnit == "m" || aUnit == "meter" || aUnit == "metre")
        return 1e6;
    if (aUnit == "inch" || aUnit == "in")
        return 25400.0;
    return 1.0;
}

// The resolution tags are stored as fractions that libtiff hands over as floats: a voxel size
// computed from one is rounded to the 7 significant digits that a float holds.
double RoundToFloatDigits(double aValue)
{
    if (!(aValue > 0.0) || !std::isfinite(aValue))
        return aValue;
    const double scale = std::pow(10.0, 6 - std::floor(std::log10(aValue)));
    return std::round(aValue * scale) / scale;
}

UInt32 BytesPerSample(UInt16 aBitsPerSample)
{
    return UInt32(aBitsPerSample) / 8;
}

// Channel aSample (0 red, 1 green, 2 blue) of a colour voxel.
template <class Colour, typename Value>
void SetChannel(Colour & aVoxel, SInt32 aSample, Value aValue)
{
    if (aSample == 0)
        aVoxel.SetRed(aValue);
    else if (aSample == 1)
        aVoxel.SetGreen(aValue);
    else
        aVoxel.SetBlue(aValue);
}
} // namespace

bool XTiffStackReader::XPageFormat::Matches(const XPageFormat & anOther) const
{
    return itsWidth == anOther.itsWidth && itsHeight == anOther.itsHeight && itsKind == anOther.itsKind &&
           itsPhotometric == anOther.itsPhotometric;
}

std::string XTiffStackReader::XPageFormat::Describe() const
{
    std::string text = std::to_string(itsWidth) + " x " + std::to_string(itsHeight) + " ";
    for (const XVolumeKind & kind : XVolumeKinds::GetAll())
    {
        if (kind.itsID == itsKind)
            text += kind.itsVoxelText;
    }
    return text;
}

XTiffStackReader::XTiffStackReader(const std::string & aPath) : itsPath(aPath)
{
    std::error_code error;
    if (!std::filesystem::exists(aPath, error))
        throw XCommandError("cannot read '" + aPath + "': no such file");
    if (std::filesystem::is_directory(aPath, error))
        throw XCommandError("cannot read '" + aPath + "': it is a folder");

    XTiffMessages::Begin();
    // "m": read, not mapped; the pages of a mapped file would count as memory beside the volume.
    itsTiffHandle.reset(TIFFOpen(aPath.c_str(), "rm"));
    itsTiff = itsTiffHandle.get();
    if (itsTiff == nullptr)
        throw XCommandError(XTiffMessages::With("cannot read '" + aPath + "' as a TIFF file"));

    // Every page's header now, so that a stack of mixed pages fails before any voxel is read.
    bool compressed = false;
    UInt32 directory = 0;
    do
    {
        UInt32 subfileType = 0;
        TIFFGetFieldDefaulted(itsTiff, TIFFTAG_SUBFILETYPE, &subfileType);
        if ((subfileType & FILETYPE_REDUCEDIMAGE) == 0)
        {
            const UInt32 pageNumber = UInt32(itsPages.size()) + 1;
            const XPageFormat format = ReadPageFormat(pageNumber);
            if (itsPages.empty())
                itsFormat = format;
            else if (!format.Matches(itsFormat))
                FailPage(pageNumber, "is " + format.Describe() + ", unlike the first page (" + itsFormat.Describe() +
                                         ")");
            itsPages.push_back(directory);
            UInt16 compression = COMPRESSION_NONE;
            TIFFGetFieldDefaulted(itsTiff, TIFFTAG_COMPRESSION, &compression);
            compressed = compressed || compression != COMPRESSION_NONE;
        }
        ++directory;
    } while (TIFFReadDirectory(itsTiff) == 1);
    if (!XTiffMessages::GetLastError().empty())
        throw XCommandError(XTiffMessages::With("cannot read '" + aPath + "'"));
    if (itsPages.empty())
        throw XCommandError("cannot read '" + aPath + "': it has no full-size page");

    // In double precision, which no claimed size overflows.
    const double voxelBytes = double(itsFormat.itsWidth) * itsFormat.itsHeight * double(itsPages.size()) *
                              BytesPerSample(itsFormat.itsBitsPerSample) * itsFormat.itsSamplesPerPixel;
    const double fileBytes = double(std::filesystem::file_size(aPath, error));
    if (voxelBytes > fileBytes * double(compressed ? kMaxExpansion : 1) + double(kExpansionAllowance) ||
        itsFormat.itsWidth > kMaxExtent || itsFormat.itsHeight > kMaxExtent)
        throw XCommandError("cannot read '" + aPath + "': it claims " + itsFormat.Describe() + " voxels on " +
                            std::to_string(itsPages.size()) + " pages, more than its data can hold");
    ReadLayout();
}

void XTiffStackReader::ReadLayout()
{
    TIFFSetDirectory(itsTiff, tdir_t(itsPages.front()));
    char * description = nullptr;
    TIFFGetField(itsTiff, TIFFTAG_IMAGEDESCRIPTION, &description);
    itsImageJ = ParseImageJDescription(description);
    const XStackLayout::XPages pages{itsPages, GetWidth(), GetHeight(), itsFormat.itsSamplesPerPixel,
                                     std::filesystem::path(itsPath).filename().string()};
    try
    {
        const std::optional<XOmeMetadata> ome =
            description == nullptr ? std::nullopt : XOmeMetadata::Parse(description);
        if (ome)
        {
            itsLayout = XStackLayout::FromOme(*ome, pages);
            itsPhysicalSize = ome->itsPhysicalSize;
        }
        else
        {
            itsLayout = XStackLayout::FromImageJ(itsImageJ, pages);
        }
    }
    catch (const XCommandError & anError)
    {
        throw XCommandError("cannot read '" + itsPath + "': " + anError.what());
    }
}

void XTiffStackReader::XTiffCloser::operator()(tiff * aTiff) const
{
    TIFFClose(aTiff);
}

const XVolumeKind & XTiffStackReader::GetKind() const
{
    for (const XVolumeKind & kind : XVolumeKinds::GetAll())
    {
        if (kind.itsID == itsFormat.itsKind)
            return kind;
    }
    throw XCommandError("unknown volume kind");
}

void XTiffStackReader::FailPage(UInt32 aPageNumber, const std::string & aWhat) const
{
    throw XCommandError("cannot read '" + itsPath + "': page " + std::to_string(aPageNumber) + " " + aWhat);
}

XTiffStackReader::XPageFormat XTiffStackReader::ReadPageFormat(UInt32 aPageNumber) const
{
    XPageFormat format;
    if (TIFFGetField(itsTiff, TIFFTAG_IMAGEWIDTH, &format.itsWidth) != 1 ||
        TIFFGetField(itsTiff, TIFFTAG_IMAGELENGTH, &format.itsHeight) != 1 || format.itsWidth == 0 ||
        format.itsHeight == 0)
        FailPage(aPageNumber, "has no size");
    TIFFGetFieldDefaulted(itsTiff, TIFFTAG_BITSPERSAMPLE, &format.itsBitsPerSample);
    TIFFGetFieldDefaulted(itsTiff, TIFFTAG_SAMPLESPERPIXEL, &format.itsSamplesPerPixel);
    TIFFGetFieldDefaulted(itsTiff, TIFFTAG_SAMPLEFORMAT, &format.itsSampleFormat);
    TIFFGetFieldDefaulted(itsTiff, TIFFTAG_PLANARCONFIG, &format.itsPlanarConfig);
    if (TIFFGetField(itsTiff, TIFFTAG_PHOTOMETRIC, &format.itsPhotometric) != 1)
        format.itsPhotometric = format.itsSamplesPerPixel >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
    format.itsTiled = TIFFIsTiled(itsTiff) != 0;
    format.itsKind = ChooseKind(format, aPageNumber);
    return format;
}

XVolumeKindID XTiffStackReader::ChooseKind(const XPageFormat & aFormat, UInt32 aPageNumber) const
{
    const UInt16 bits = aFormat.itsBitsPerSample;
    const std::string size = std::to_string(bits) + "-bit";
    const UInt16 photometric = aFormat.itsPhotometric;
    if (aFormat.itsSampleFormat == SAMPLEFORMAT_INT)
        FailPage(aPageNumber, "holds signed " + size + " integers, which are not supported");
    if (aFormat.itsSampleFormat == SAMPLEFORMAT_IEEEFP)
    {
        if (bits != 32 || aFormat.itsSamplesPerPixel != 1)
            FailPage(aPageNumber, "holds " + size + " floating-point samples; only single 32-bit floats are supported");
        return kFloatKind;
    }
    if (aFormat.itsSampleFormat != SAMPLEFORMAT_UINT)
        FailPage(aPageNumber, "holds samples of format " + std::to_string(aFormat.itsSampleFormat) +
                                  ", which is not supported");

    if (aFormat.itsSamplesPerPixel == 1)
    {
        if (photometric != PHOTOMETRIC_MINISBLACK && photometric != PHOTOMETRIC_MINISWHITE &&
            !(photometric == PHOTOMETRIC_PALETTE && bits == 8))
            FailPage(aPageNumber, "has photometric interpretation " + std::to_string(photometric) +
                                      ", which is not supported");
        if (bits == 8)
            return kGrey8Kind;
        if (bits == 16)
            return kGrey16Kind;
        if (bits == 32 && photometric == PHOTOMETRIC_MINISBLACK)
            return kGrey32Kind;
        FailPage(aPageNumber, "holds " + size + " grey samples; 8, 16 and 32-bit grey are supported");
    }
    if (aFormat.itsSamplesPerPixel == 3 && photometric == PHOTOMETRIC_RGB)
    {
        if (bits == 8)
            return kARGB32Kind;
        if (bits == 16)
            return kRGB48Kind;
        FailPage(aPageNumber, "holds " + size + " RGB samples; 8 and 16-bit RGB are supported");
    }
    FailPage(aPageNumber, "holds " + std::to_string(aFormat.itsSamplesPerPixel) +
                              " samples a pixel with photometric interpretation " + std::to_string(photometric) +
                              "; grey and RGB without extra channels are supported");
}

std::unique_ptr<XVolume> XTiffStackReader::Read()
{
    if (!GetLayout().IsOneVolume())
        throw XCommandError("cannot read '" + itsPath + "' as one volume: it holds " + GetLayout().Describe() +
                            " (brindle import picks one with --channel and --time)");
    return Read(0, 0);
}

std::unique_ptr<XVolume> XTiffStackReader::Read(UInt32 aChannel, UInt32 aTime)
{
    const XVolumeKind & kind = GetKind();
    const UInt32 slices = GetLayout().GetSliceCount();
    std::unique_ptr<XVolume> volume(kind.itsMake(X3DRect(GetWidth(), GetHeight(), slices)));
    auto & packed = dynamic_cast<XBasePackedVolume &>(*volume);
    {
        XLock lock(packed, kLockWrite);
        XProgress progress(slices, XProgress::kProgressWithEstimate, XProgress::kDefaultDelayMs, false);
        progress.SetMessage(XString("Reading " + std::filesystem::path(itsPath).filename().string()));
        for (UInt32 z = 0; z < slices; ++z)
        {
            const UInt32 directory = GetLayout().GetDirectory(aChannel, z, aTime);
            const auto page = std::lower_bound(itsPages.begin(), itsPages.end(), directory);
            const UInt32 pageNumber = UInt32(page - itsPages.begin()) + 1;
            XTiffMessages::Begin();
            if (TIFFSetDirectory(itsTiff, tdir_t(directory)) != 1)
                FailPage(pageNumber, XTiffMessages::With("cannot be found"));
            ReadPage(packed, z, pageNumber);
            progress.Increment();
        }
    }
    ReadCalibration(*volume);
    return volume;
}

void XTiffStackReader::ReadPage(XBasePackedVolume & aVolume, UInt32 anIndex, UInt32 aPageNumber)
{
    UInt8 * plane = aVolume.GetLayerPtr(SInt32(anIndex));
    const UInt64 rowBytes = aVolume.GetRowBytes();
    const bool sameLayout = itsFormat.itsKind != kARGB32Kind &&
                            (itsFormat.itsSamplesPerPixel == 1 || itsFormat.itsPlanarConfig == PLANARCONFIG_CONTIG);
    if (!itsFormat.itsTiled && sameLayout)
        ReadStripsDirectly(plane, rowBytes, aPageNumber);
    else
        ReadBlocks(plane, rowBytes, aPageNumber);

    if (itsFormat.itsPhotometric == PHOTOMETRIC_MINISWHITE)
    {
        // Grey only (8 or 16 bits): bright is high in a volume.
        for (UInt32 y = 0; y < GetHeight(); ++y)
        {
            UInt8 * row = plane + y * rowBytes;
            if (itsFormat.itsKind == kGrey8Kind)
                std::transform(row, row + GetWidth(), row, [](UInt8 aValue) { return UInt8(255 - aValue); });
            else
            {
                auto * wide = reinterpret_cast<UInt16 *>(row);
                std::transform(wide, wide + GetWidth(), wide, [](UInt16 aValue) { return UInt16(65535 - aValue); });
            }
        }
    }
}

// Strips whose pixels have the voxels' layout are decoded straight into the plane.
void XTiffStackReader::ReadStripsDirectly(UInt8 * aPlane, UInt64 aRowBytes, UInt32 aPageNumber)
{
    UInt32 rowsPerStrip = 0;
    TIFFGetFieldDefaulted(itsTiff, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
    rowsPerStrip = std::clamp(rowsPerStrip, UInt32(1), GetHeight());
    const UInt32 strips = (GetHeight() + rowsPerStrip - 1) / rowsPerStrip;
    if (UInt64(TIFFScanlineSize64(itsTiff)) != aRowBytes || TIFFNumberOfStrips(itsTiff) < strips)
        FailPage(aPageNumber, "has a strip layout that does not fit its size");
    for (UInt32 strip = 0; strip < strips; ++strip)
    {
        const UInt32 firstRow = strip * rowsPerStrip;
        const UInt32 rows = std::min(rowsPerStrip, GetHeight() - firstRow);
        const tmsize_t bytes = tmsize_t(rows * aRowBytes);
        if (TIFFReadEncodedStrip(itsTiff, strip, aPlane + firstRow * aRowBytes, bytes) != bytes)
            FailPage(aPageNumber, XTiffMessages::With("is damaged (strip " + std::to_string(strip + 1) + ")"));
    }
}

// Tiles, and strips that need their samples rearranged, go through a buffer of one block.
void XTiffStackReader::ReadBlocks(UInt8 * aPlane, UInt64 aRowBytes, UInt32 aPageNumber)
{
    const bool separate = itsFormat.itsPlanarConfig == PLANARCONFIG_SEPARATE && itsFormat.itsSamplesPerPixel > 1;
    const UInt32 samplePlanes = separate ? itsFormat.itsSamplesPerPixel : 1;
    const UInt64 pixelBytes = UInt64(BytesPerSample(itsFormat.itsBitsPerSample)) * (separate ? 1 : itsFormat.itsSamplesPerPixel);
    UInt32 blockWidth = GetWidth();
    UInt32 blockHeight = 0;
    tmsize_t blockBytes = 0;
    if (itsFormat.itsTiled)
    {
        TIFFGetField(itsTiff, TIFFTAG_TILEWIDTH, &blockWidth);
        TIFFGetField(itsTiff, TIFFTAG_TILELENGTH, &blockHeight);
        blockBytes = TIFFTileSize(itsTiff);
    }
    else
    {
        TIFFGetFieldDefaulted(itsTiff, TIFFTAG_ROWSPERSTRIP, &blockHeight);
        blockHeight = std::clamp(blockHeight, UInt32(1), GetHeight());
        blockBytes = TIFFStripSize(itsTiff);
    }
    const UInt64 blockRowBytes = blockWidth * pixelBytes;
    if (blockWidth == 0 || blockHeight == 0 || blockBytes <= 0 || UInt64(blockBytes) < blockRowBytes * blockHeight)
        FailPage(aPageNumber, "has a block layout that does not fit its size");

    std::vector<UInt8> block(static_cast<std::size_t>(blockBytes));
    for (UInt32 sample = 0; sample < samplePlanes; ++sample)
        for (UInt32 y = 0; y < GetHeight(); y += blockHeight)
            for (UInt32 x = 0; x < GetWidth(); x += blockWidth)
            {
                const UInt32 rows = std::min(blockHeight, GetHeight() - y);
                const UInt32 columns = std::min(blockWidth, GetWidth() - x);
                tmsize_t got = 0;
                if (itsFormat.itsTiled)
                    got = TIFFReadEncodedTile(itsTiff, TIFFComputeTile(itsTiff, x, y, 0, UInt16(sample)), block.data(),
                                              blockBytes);
                else
                    got = TIFFReadEncodedStrip(itsTiff, TIFFComputeStrip(itsTiff, y, UInt16(sample)), block.data(),
                                               blockBytes);
                if (got < 0 || UInt64(got) < (rows - 1) * blockRowBytes + columns * pixelBytes)
                    FailPage(aPageNumber, XTiffMessages::With("is damaged"));
                StoreBlock(block.data(), blockRowBytes, x, y, columns, rows, separate ? SInt32(sample) : -1, aPlane,
                           aRowBytes);
            }
}

void XTiffStackReader::StoreBlock(const UInt8 * aBlock, UInt64 aBlockRowBytes, UInt32 aX, UInt32 aY,
                                  UInt32 aColumns, UInt32 aRows, SInt32 aSample, UInt8 * aPlane,
                                  UInt64 aRowBytes) const
{
    for (UInt32 r = 0; r < aRows; ++r)
    {
        const UInt8 * source = aBlock + r * aBlockRowBytes;
        UInt8 * row = aPlane + (aY + r) * aRowBytes;
        if (itsFormat.itsKind == kARGB32Kind)
        {
            auto * voxels = reinterpret_cast<XARGB32Colour *>(row) + aX;
            for (UInt32 c = 0; c < aColumns; ++c)
            {
                if (aSample < 0)
                    voxels[c].SetARGB(255, source[3 * c], source[3 * c + 1], source[3 * c + 2]);
                else
                {
                    voxels[c].SetAlpha(255);
                    SetChannel(voxels[c], aSample, source[c]);
                }
            }
        }
        else if (aSample >= 0)
        {
            // 16-bit RGB in separate planes.
            auto * voxels = reinterpret_cast<XRGB48Colour *>(row) + aX;
            const auto * samples = reinterpret_cast<const UInt16 *>(source);
            for (UInt32 c = 0; c < aColumns; ++c)
                SetChannel(voxels[c], aSample, samples[c]);
        }
        else
        {
            const UInt64 pixelBytes = UInt64(BytesPerSample(itsFormat.itsBitsPerSample)) * itsFormat.itsSamplesPerPixel;
            std::memcpy(row + aX * pixelBytes, source, aColumns * pixelBytes);
        }
    }
}

void XTiffStackReader::ReadCalibration(XVolume & aVolume)
{
    TIFFSetDirectory(itsTiff, tdir_t(itsPages.front()));
    const std::map<std::string, std::string> & imageJ = itsImageJ;
    const auto unitField = imageJ.find("unit");
    const double imageJUnit = MicrometresPerImageJUnit(unitField == imageJ.end() ? "" : unitField->second);

    float xResolution = 0.0f;
    float yResolution = 0.0f;
    UInt16 unit = RESUNIT_INCH;
    TIFFGetFieldDefaulted(itsTiff, TIFFTAG_RESOLUTIONUNIT, &unit);
    const double micrometres = unit == RESUNIT_INCH ? 25400.0 : unit == RESUNIT_CENTIMETER ? 10000.0 : imageJUnit;
    if (TIFFGetField(itsTiff, TIFFTAG_XRESOLUTION, &xResolution) == 1 && xResolution > 0.0f &&
        std::isfinite(xResolution))
        aVolume.SetXCalibration(RoundToFloatDigits(micrometres / xResolution));
    if (TIFFGetField(itsTiff, TIFFTAG_YRESOLUTION, &yResolution) == 1 && yResolution > 0.0f &&
        std::isfinite(yResolution))
        aVolume.SetYCalibration(RoundToFloatDigits(micrometres / yResolution));
    const double spacing = FieldNumber(imageJ, "spacing");
    if (spacing > 0.0 && std::isfinite(spacing))
        aVolume.SetZCalibration((unitField == imageJ.end() ? micrometres : imageJUnit) * spacing);
    if (itsPhysicalSize[0])
        aVolume.SetXCalibration(*itsPhysicalSize[0]);
    if (itsPhysicalSize[1])
        aVolume.SetYCalibration(*itsPhysicalSize[1]);
    if (itsPhysicalSize[2])
        aVolume.SetZCalibration(*itsPhysicalSize[2]);

    if (!aVolume.HasPlaneRenderer())
        return;
    const double black = FieldNumber(imageJ, "min");
    const double white = FieldNumber(imageJ, "max");
    if (std::isfinite(black) && std::isfinite(white) && black < white &&
        (itsFormat.itsKind == kGrey8Kind || itsFormat.itsKind == kGrey16Kind || itsFormat.itsKind == kFloatKind))
    {
        aVolume.GetPlaneRenderer().SetBlack(black);
        aVolume.GetPlaneRenderer().SetWhite(white);
    }
    else if (itsFormat.itsKind == kFloatKind)
    {
        XVolumeKinds::FitFloatRange(aVolume);
    }
}
