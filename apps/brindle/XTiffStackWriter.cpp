#include "XTiffStackWriter.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <tiffio.h>
#include <vector>

#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XCommandError.h"
#include "XImageRenderer.h"
#include "XImagingLibrary.h"
#include "XLock.h"
#include "XProgress.h"
#include "XTiffMessages.h"
#include "XVolumeReport.h"
#include "XVolumeKinds.h"

namespace
{
// Strips of about this many bytes.
constexpr UInt64 kStripBytes = 1 << 20;
// Past this many bytes of voxels a classic TIFF's 32-bit offsets may not reach.
constexpr UInt64 kBigTiffThreshold = (UInt64(1) << 32) - (UInt64(64) << 20);

// How the pixels of a kind are stored.
struct XTiffLayout
{
    UInt16 itsBitsPerSample;
    UInt16 itsSamplesPerPixel;
    UInt16 itsSampleFormat;
    UInt16 itsPhotometric;
};

XTiffLayout LayoutOf(XVolumeKindID aKind)
{
    switch (aKind)
    {
    case kMaskKind:
    case kGrey8Kind:
        return {8, 1, SAMPLEFORMAT_UINT, PHOTOMETRIC_MINISBLACK};
    case kGrey16Kind:
        return {16, 1, SAMPLEFORMAT_UINT, PHOTOMETRIC_MINISBLACK};
    case kGrey32Kind:
        return {32, 1, SAMPLEFORMAT_UINT, PHOTOMETRIC_MINISBLACK};
    case kFloatKind:
        return {32, 1, SAMPLEFORMAT_IEEEFP, PHOTOMETRIC_MINISBLACK};
    case kARGB32Kind:
    case kBGRA32Kind:
        return {8, 3, SAMPLEFORMAT_UINT, PHOTOMETRIC_RGB};
    case kRGB48Kind:
        return {16, 3, SAMPLEFORMAT_UINT, PHOTOMETRIC_RGB};
    }
    throw XCommandError("unknown volume kind");
}

std::string MakeImageJDescription(const XVolume & aVolume, const XVolumeKind & aKind)
{
    std::string text = "ImageJ=1.11a\n";
    const bool grey = LayoutOf(aKind.itsID).itsSamplesPerPixel == 1;
    if (grey && aVolume.GetDepth() > 1)
        text += "images=" + std::to_string(aVolume.GetDepth()) + "\nslices=" + std::to_string(aVolume.GetDepth()) + "\n";
    text += "unit=micron\nspacing=" + XVolumeReport::Number(aVolume.GetZCalibration()) + "\n";
    if (grey && aVolume.HasPlaneRenderer())
        text += "min=" + XVolumeReport::Number(aVolume.GetPlaneRenderer().GetBlack()) + "\nmax=" +
                XVolumeReport::Number(aVolume.GetPlaneRenderer().GetWhite()) + "\n";
    return text + "loop=false\n";
}

// Rows of the plane into the strip buffer, as the TIFF stores them.
template <class Colour>
void PackRGB(const UInt8 * aRow, UInt32 aWidth, UInt8 * outPixels)
{
    const auto * voxels = reinterpret_cast<const Colour *>(aRow);
    for (UInt32 x = 0; x < aWidth; ++x)
    {
        outPixels[3 * x] = voxels[x].GetRed();
        outPixels[3 * x + 1] = voxels[x].GetGreen();
        outPixels[3 * x + 2] = voxels[x].GetBlue();
    }
}

struct XTiffCloser
{
    void operator()(TIFF * aTiff) const { TIFFClose(aTiff); }
};
} // namespace

void XTiffStackWriter::Write(const XVolume & aVolume, const std::string & aPath, bool aBigTiff)
{
    const XVolumeKind & kind = XVolumeKinds::Of(aVolume);
    const XTiffLayout layout = LayoutOf(kind.itsID);
    if (aVolume.GetBounds().IsEmpty())
        throw XCommandError("cannot write an empty volume as a TIFF stack");
    const auto & packed = dynamic_cast<const XBasePackedVolume &>(aVolume);
    const UInt32 width = aVolume.GetWidth();
    const UInt32 height = aVolume.GetHeight();
    const UInt64 pixelBytes = UInt64(layout.itsBitsPerSample / 8) * layout.itsSamplesPerPixel;
    const UInt64 tiffRowBytes = width * pixelBytes;
    const UInt32 rowsPerStrip = UInt32(std::clamp<UInt64>(kStripBytes / tiffRowBytes, 1, height));
    const UInt64 totalBytes = tiffRowBytes * height * aVolume.GetDepth();

    XTiffMessages::Begin();
    const bool bigTiff = aBigTiff || totalBytes > kBigTiffThreshold;
    std::unique_ptr<TIFF, XTiffCloser> tiff(TIFFOpen(aPath.c_str(), bigTiff ? "w8" : "w"));
    if (!tiff)
        throw XCommandError(XTiffMessages::With("cannot write '" + aPath + "'"));
    const std::string description = MakeImageJDescription(aVolume, kind);
    const std::string software = "BrindleImaging " + XImagingLibrary::GetVersionString().GetStdString();

    XLock lock(packed, kLockRead);
    XProgress progress(aVolume.GetDepth(), XProgress::kProgressWithEstimate, XProgress::kDefaultDelayMs, false);
    progress.SetMessage(XString("Writing " + std::filesystem::path(aPath).filename().string()));
    std::vector<UInt8> strip(static_cast<std::size_t>(tiffRowBytes * rowsPerStrip));
    for (UInt32 page = 0; page < aVolume.GetDepth(); ++page)
    {
        TIFF * t = tiff.get();
        TIFFSetField(t, TIFFTAG_IMAGEWIDTH, width);
        TIFFSetField(t, TIFFTAG_IMAGELENGTH, height);
        TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, layout.itsBitsPerSample);
        TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, layout.itsSamplesPerPixel);
        TIFFSetField(t, TIFFTAG_SAMPLEFORMAT, layout.itsSampleFormat);
        TIFFSetField(t, TIFFTAG_PHOTOMETRIC, layout.itsPhotometric);
        TIFFSetField(t, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(t, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
        TIFFSetField(t, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
        TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, rowsPerStrip);
        TIFFSetField(t, TIFFTAG_XRESOLUTION, 1.0 / aVolume.GetXCalibration());
        TIFFSetField(t, TIFFTAG_YRESOLUTION, 1.0 / aVolume.GetYCalibration());
        TIFFSetField(t, TIFFTAG_RESOLUTIONUNIT, RESUNIT_NONE);
        TIFFSetField(t, TIFFTAG_SOFTWARE, software.c_str());
        if (aVolume.GetDepth() > 1)
        {
            TIFFSetField(t, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
            TIFFSetField(t, TIFFTAG_PAGENUMBER, UInt16(std::min<UInt32>(page, 65535)),
                         UInt16(std::min<UInt32>(aVolume.GetDepth(), 65535)));
        }
        if (page == 0)
            TIFFSetField(t, TIFFTAG_IMAGEDESCRIPTION, description.c_str());

        const UInt8 * plane = packed.GetLayerPtr(SInt32(page));
        for (UInt32 first = 0; first < height; first += rowsPerStrip)
        {
            const UInt32 rows = std::min(rowsPerStrip, height - first);
            for (UInt32 r = 0; r < rows; ++r)
            {
                const UInt8 * row = plane + (first + r) * packed.GetRowBytes();
                UInt8 * out = strip.data() + r * tiffRowBytes;
                if (kind.itsID == kARGB32Kind)
                    PackRGB<XARGB32Colour>(row, width, out);
                else if (kind.itsID == kBGRA32Kind)
                    PackRGB<XBGRA32Colour>(row, width, out);
                else
                    std::copy(row, row + tiffRowBytes, out);
            }
            const tmsize_t bytes = tmsize_t(rows * tiffRowBytes);
            if (TIFFWriteEncodedStrip(t, first / rowsPerStrip, strip.data(), bytes) != bytes)
                throw XCommandError(XTiffMessages::With("cannot write '" + aPath + "'"));
        }
        if (TIFFWriteDirectory(t) != 1)
            throw XCommandError(XTiffMessages::With("cannot write '" + aPath + "'"));
        progress.Increment();
    }
    TIFF * t = tiff.release();
    TIFFClose(t);
    if (!XTiffMessages::GetLastError().empty())
        throw XCommandError(XTiffMessages::With("cannot write '" + aPath + "'"));
}
