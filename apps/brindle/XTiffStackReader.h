#pragma once
// Reads a multi-page TIFF stack, as microscopes and ImageJ write it, into the volume class that
// matches its pages: 8, 16 and 32-bit unsigned grey into XGrey8Volume, XGrey16Volume and
// XGrey32Volume, 32-bit float into XFPVolume, 8-bit RGB into XARGB32Volume (alpha 255) and
// 16-bit RGB into XRGB48Volume. Pages may be in strips or tiles, in either byte order, with
// their samples interleaved or in separate planes, and compressed in any way that libtiff
// decodes. Reduced-resolution pages (thumbnails) are skipped; every other page must have the
// size and type of the first.
//
// Grey pages stored "min-is-white" are inverted on reading (so bright is high); palette pages
// are read as their 8-bit indices. Signed integers, 64-bit floats, other sample sizes, and
// pages with more channels than red, green and blue are refused.
//
// A stack may hold several channels or time points (XStackLayout): an ImageJ hyperstack or an
// OME-TIFF file. A volume is then one channel at one time point, its slices in order.
//
// Calibrations, in micrometres, come from OME-XML's physical sizes when it gives them, else from
// the resolution tags when they are present (their unit inch or centimetre; without a unit, the
// unit of ImageJ's description, micrometres when it names none), and the z calibration from
// ImageJ's "spacing" when present; a missing one stays 1. ImageJ's display range (its "min" and
// "max") becomes the renderer's black and white; a float stack without one gets its data's
// range.
//
// Classic TIFF and BigTIFF files are read alike. Pages are decoded straight into the volume
// where their layout allows, and the file is read, not mapped, so that reading holds little
// more memory than the volume.

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "XStackLayout.h"
#include "XTypes.h"
#include "XVolumeKinds.h"

class XVolume;
class XBasePackedVolume;
struct tiff;

class XTiffStackReader
{
public:
    // Opens aPath and checks every page and the description's layout; XCommandError when the
    // file cannot be read, holds pages that this reader does not take, or a description that
    // does not fit them.
    explicit XTiffStackReader(const std::string & aPath);
    XTiffStackReader(const XTiffStackReader &) = delete;
    XTiffStackReader & operator=(const XTiffStackReader &) = delete;

    UInt32 GetWidth() const { return itsFormat.itsWidth; }
    UInt32 GetHeight() const { return itsFormat.itsHeight; }
    UInt32 GetPageCount() const { return UInt32(itsPages.size()); }
    const XVolumeKind & GetKind() const;
    const XStackLayout & GetLayout() const { return *itsLayout; }

    // The whole stack as a new volume, with its calibrations and display range; XCommandError
    // for a stack of several channels or time points. Reports progress page by page.
    std::unique_ptr<XVolume> Read();
    // The slices of one channel at one time point, both in range of the layout.
    std::unique_ptr<XVolume> Read(UInt32 aChannel, UInt32 aTime);

private:
    // What a page holds and how it is laid out.
    struct XPageFormat
    {
        UInt32 itsWidth = 0;
        UInt32 itsHeight = 0;
        UInt16 itsBitsPerSample = 1;
        UInt16 itsSamplesPerPixel = 1;
        UInt16 itsSampleFormat = 1;
        UInt16 itsPhotometric = 1;
        UInt16 itsPlanarConfig = 1;
        bool itsTiled = false;
        XVolumeKindID itsKind = kGrey8Kind;

        // The fields that every page must share with the first.
        bool Matches(const XPageFormat & anOther) const;
        std::string Describe() const;
    };

    // The format of the current page; XCommandError for a type that is refused.
    XPageFormat ReadPageFormat(UInt32 aPageNumber) const;
    XVolumeKindID ChooseKind(const XPageFormat & aFormat, UInt32 aPageNumber) const;
    // The description's layout of the pages, and the voxel size that OME-XML gives.
    void ReadLayout();
    // The voxels of the current page, page aPageNumber of the file, into layer anIndex of aVolume.
    void ReadPage(XBasePackedVolume & aVolume, UInt32 anIndex, UInt32 aPageNumber);
    void ReadStripsDirectly(UInt8 * aPlane, UInt64 aRowBytes, UInt32 aPageNumber);
    void ReadBlocks(UInt8 * aPlane, UInt64 aRowBytes, UInt32 aPageNumber);
    // Copies a decoded strip or tile that starts at (aX, aY) into the plane: aColumns by aRows
    // pixels, its rows aBlockRowBytes apart, all samples (aSample < 0) or one sample plane.
    void StoreBlock(const UInt8 * aBlock, UInt64 aBlockRowBytes, UInt32 aX, UInt32 aY, UInt32 aColumns,
                    UInt32 aRows, SInt32 aSample, UInt8 * aPlane, UInt64 aRowBytes) const;
    [[noreturn]] void FailPage(UInt32 aPageNumber, const std::string & aWhat) const;
    // Calibrations and display range from the first page's tags.
    void ReadCalibration(XVolume & aVolume);

    struct XTiffCloser
    {
        void operator()(tiff * aTiff) const;
    };

    std::string itsPath;
    std::unique_ptr<tiff, XTiffCloser> itsTiffHandle;
    tiff * itsTiff = nullptr; // the handle's file, for libtiff's calls
    XPageFormat itsFormat;
    std::vector<UInt32> itsPages; // the directory numbers of the full-size pages
    std::optional<XStackLayout> itsLayout;
    std::map<std::string, std::string> itsImageJ;           // the fields of ImageJ's description
    std::array<std::optional<double>, 3> itsPhysicalSize; // from OME-XML, in micrometres
};
