#pragma once
// TIFF stacks made and read with libtiff, as other programs make them: every sample kind, in
// strips or tiles, either byte order, interleaved or in separate planes, compressed or not.
// The samples follow a formula of (x, y, z, channel) that touches every byte of a sample, so a
// lost byte order or a shifted tile shows.

#include <gtest/gtest.h>

#include <tiffio.h>

#include <cstring>
#include <string>
#include <vector>

#include "XTypes.h"

// How the pages of a made stack are stored.
struct XTiffSpec
{
    UInt16 itsBits = 16;
    UInt16 itsChannels = 1; // 1 grey, 3 RGB
    UInt16 itsFormat = SAMPLEFORMAT_UINT;
    bool itsTiled = false;
    bool itsBigEndian = false;
    bool itsBigTiff = false;
    bool itsSeparate = false; // RGB in separate sample planes
    UInt16 itsCompression = COMPRESSION_NONE;
    UInt16 itsPredictor = PREDICTOR_NONE;
    SInt32 itsPhotometric = -1; // -1: min-is-black for grey, RGB for colour
    UInt32 itsWidth = 37;
    UInt32 itsHeight = 23;
    UInt32 itsPages = 3;
    // Resolution tags when itsXResolution > 0, and a description when not empty.
    float itsXResolution = 0.0f;
    float itsYResolution = 0.0f;
    UInt16 itsResolutionUnit = RESUNIT_NONE;
    std::string itsDescription;
    // Pages from this one on (when below itsPages) are one pixel narrower.
    UInt32 itsNarrowFrom = 0xFFFFFFFF;

    std::string Name() const
    {
        std::string name = (itsFormat == SAMPLEFORMAT_IEEEFP ? "Float" : itsFormat == SAMPLEFORMAT_INT ? "Int" : "UInt") +
                           std::to_string(itsBits) + (itsChannels == 3 ? "RGB" : "Grey") +
                           (itsTiled ? "Tiles" : "Strips") + (itsBigEndian ? "BigEndian" : "LittleEndian");
        if (itsBigTiff)
            name += "BigTiff";
        if (itsSeparate)
            name += "Separate";
        if (itsCompression == COMPRESSION_ADOBE_DEFLATE)
            name += "Deflate";
        if (itsCompression == COMPRESSION_LZW)
            name += "LZW";
        if (itsPredictor == PREDICTOR_HORIZONTAL)
            name += "Predictor";
        return name;
    }
};

// The sample at (x, y, z) of channel c, as raw bits of the sample's width.
inline UInt64 XTiffSampleBits(const XTiffSpec & aSpec, UInt32 x, UInt32 y, UInt32 z, UInt32 c)
{
    if (aSpec.itsFormat == SAMPLEFORMAT_IEEEFP)
    {
        const float value = (float(x) - 10.5f) * 0.25f + float(y) * 1000.0f - float(z) * 0.001f + float(c);
        UInt32 bits = 0;
        std::memcpy(&bits, &value, 4);
        return bits;
    }
    const UInt64 mixed = UInt64(x) * 1031u + UInt64(y) * 257u + UInt64(z) * 4099u + UInt64(c) * 77u + 3u;
    switch (aSpec.itsBits)
    {
    case 8:
        return (x * 7 + y * 13 + z * 29 + c * 101) & 0xFF;
    case 16:
        return mixed & 0xFFFF;
    default:
        return (mixed * 16777259u + 0x01020304u) & 0xFFFFFFFF;
    }
}

// Puts a sample of aBits bits at aPlace in the platform's order (libtiff turns it over).
inline void XPutSample(UInt8 * aPlace, UInt16 aBits, UInt64 aValue)
{
    if (aBits == 8)
        *aPlace = UInt8(aValue);
    else if (aBits == 16)
    {
        const UInt16 v = UInt16(aValue);
        std::memcpy(aPlace, &v, 2);
    }
    else
    {
        const UInt32 v = UInt32(aValue);
        std::memcpy(aPlace, &v, 4);
    }
}

// Makes the stack; false when libtiff refused.
inline bool XMakeTiff(const std::string & aPath, const XTiffSpec & aSpec)
{
    const std::string mode = std::string(aSpec.itsBigEndian ? "wb" : "wl") + (aSpec.itsBigTiff ? "8" : "");
    TIFF * tiff = TIFFOpen(aPath.c_str(), mode.c_str());
    if (tiff == nullptr)
        return false;
    const UInt32 bytes = aSpec.itsBits / 8;
    const UInt32 planes = aSpec.itsSeparate ? aSpec.itsChannels : 1;
    const UInt32 perPixel = aSpec.itsSeparate ? 1 : aSpec.itsChannels;
    const UInt32 blockWidth = aSpec.itsTiled ? 16 : 0;
    const UInt32 blockHeight = aSpec.itsTiled ? 16 : 5;
    bool ok = true;
    for (UInt32 z = 0; z < aSpec.itsPages && ok; ++z)
    {
        const UInt32 width = z >= aSpec.itsNarrowFrom ? aSpec.itsWidth - 1 : aSpec.itsWidth;
        const UInt32 stored = aSpec.itsTiled ? blockWidth : width;
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, aSpec.itsHeight);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, aSpec.itsBits);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, aSpec.itsChannels);
        TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, aSpec.itsFormat);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
                     aSpec.itsPhotometric >= 0 ? UInt16(aSpec.itsPhotometric)
                                               : (aSpec.itsChannels == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK));
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, aSpec.itsSeparate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, aSpec.itsCompression);
        if (aSpec.itsPredictor != PREDICTOR_NONE)
            TIFFSetField(tiff, TIFFTAG_PREDICTOR, aSpec.itsPredictor);
        TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
        if (aSpec.itsTiled)
        {
            TIFFSetField(tiff, TIFFTAG_TILEWIDTH, blockWidth);
            TIFFSetField(tiff, TIFFTAG_TILELENGTH, blockHeight);
        }
        else
        {
            TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, blockHeight);
        }
        if (aSpec.itsXResolution > 0.0f)
        {
            TIFFSetField(tiff, TIFFTAG_XRESOLUTION, double(aSpec.itsXResolution));
            TIFFSetField(tiff, TIFFTAG_YRESOLUTION, double(aSpec.itsYResolution));
            TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, aSpec.itsResolutionUnit);
        }
        if (!aSpec.itsDescription.empty() && z == 0)
            TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, aSpec.itsDescription.c_str());
        if (aSpec.itsPhotometric == PHOTOMETRIC_PALETTE)
        {
            std::vector<UInt16> map(256);
            for (UInt32 i = 0; i < 256; ++i)
                map[i] = UInt16(i * 257);
            TIFFSetField(tiff, TIFFTAG_COLORMAP, map.data(), map.data(), map.data());
        }

        // Each block: its rows from y0, its columns from x0, zero beyond the page's edge.
        for (UInt32 plane = 0; plane < planes && ok; ++plane)
            for (UInt32 y0 = 0; y0 < aSpec.itsHeight && ok; y0 += blockHeight)
                for (UInt32 x0 = 0; x0 < width && ok; x0 += stored)
                {
                    const UInt32 rows = aSpec.itsTiled ? blockHeight : std::min(blockHeight, aSpec.itsHeight - y0);
                    std::vector<UInt8> block(std::size_t(stored) * rows * perPixel * bytes, 0);
                    for (UInt32 r = 0; r < rows; ++r)
                        for (UInt32 col = 0; col < stored; ++col)
                            for (UInt32 s = 0; s < perPixel; ++s)
                            {
                                const UInt32 x = x0 + col;
                                const UInt32 y = y0 + r;
                                if (x >= width || y >= aSpec.itsHeight)
                                    continue;
                                const UInt32 channel = aSpec.itsSeparate ? plane : s;
                                XPutSample(block.data() + ((std::size_t(r) * stored + col) * perPixel + s) * bytes,
                                           aSpec.itsBits, XTiffSampleBits(aSpec, x, y, z, channel));
                            }
                    if (aSpec.itsTiled)
                        ok = TIFFWriteEncodedTile(tiff, TIFFComputeTile(tiff, x0, y0, 0, UInt16(plane)), block.data(),
                                                  tmsize_t(block.size())) >= 0;
                    else
                        ok = TIFFWriteEncodedStrip(tiff, TIFFComputeStrip(tiff, y0, UInt16(plane)), block.data(),
                                                   tmsize_t(block.size())) >= 0;
                }
        ok = ok && TIFFWriteDirectory(tiff) == 1;
    }
    TIFFClose(tiff);
    return ok;
}

// A one-page TIFF of one row of samples (8, 16 or 32-bit, of aFormat), with a description when
// one is given.
template <typename T>
void XMakeRowTiff(const std::string & aPath, std::vector<T> aRow, UInt16 aFormat, const char * aDescription = nullptr)
{
    TIFF * tiff = TIFFOpen(aPath.c_str(), "w");
    ASSERT_NE(tiff, nullptr);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, UInt32(aRow.size()));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 1);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, UInt16(8 * sizeof(T)));
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, aFormat);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    if (aDescription != nullptr)
        TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, aDescription);
    const tmsize_t bytes = tmsize_t(aRow.size() * sizeof(T));
    EXPECT_EQ(TIFFWriteEncodedStrip(tiff, 0, aRow.data(), bytes), bytes);
    TIFFClose(tiff);
}

// The pages of a stack as libtiff decodes them: for each page, its rows of interleaved samples
// in the platform's order, whatever the file's layout; empty when it cannot be read.
struct XTiffPages
{
    UInt32 itsWidth = 0;
    UInt32 itsHeight = 0;
    UInt16 itsBits = 0;
    UInt16 itsChannels = 0;
    UInt16 itsFormat = 0;
    UInt16 itsPhotometric = 0;
    std::vector<std::vector<UInt8>> itsPages;
    std::string itsDescription;
    float itsXResolution = 0.0f;
    float itsYResolution = 0.0f;
    UInt16 itsResolutionUnit = 0;
};

inline XTiffPages XReadTiff(const std::string & aPath)
{
    XTiffPages result;
    TIFF * tiff = TIFFOpen(aPath.c_str(), "r");
    if (tiff == nullptr)
        return result;
    do
    {
        UInt16 planar = PLANARCONFIG_CONTIG;
        TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &result.itsWidth);
        TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &result.itsHeight);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &result.itsBits);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &result.itsChannels);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &result.itsFormat);
        TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planar);
        TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &result.itsPhotometric);
        if (result.itsPages.empty())
        {
            char * description = nullptr;
            if (TIFFGetField(tiff, TIFFTAG_IMAGEDESCRIPTION, &description) == 1)
                result.itsDescription = description;
            TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &result.itsXResolution);
            TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &result.itsYResolution);
            TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &result.itsResolutionUnit);
        }
        // Scanline reads serve strips and contiguous samples; tiles go through whole tiles.
        const UInt32 bytes = result.itsBits / 8;
        const UInt32 pixel = bytes * result.itsChannels;
        std::vector<UInt8> page(std::size_t(result.itsWidth) * result.itsHeight * pixel);
        if (TIFFIsTiled(tiff))
        {
            UInt32 tileWidth = 0;
            UInt32 tileHeight = 0;
            TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &tileWidth);
            TIFFGetField(tiff, TIFFTAG_TILELENGTH, &tileHeight);
            std::vector<UInt8> tile(std::size_t(TIFFTileSize(tiff)));
            const UInt32 planes = planar == PLANARCONFIG_SEPARATE ? result.itsChannels : 1;
            const UInt32 perPixel = planes == 1 ? result.itsChannels : 1;
            for (UInt32 plane = 0; plane < planes; ++plane)
                for (UInt32 y0 = 0; y0 < result.itsHeight; y0 += tileHeight)
                    for (UInt32 x0 = 0; x0 < result.itsWidth; x0 += tileWidth)
                    {
                        if (TIFFReadTile(tiff, tile.data(), x0, y0, 0, UInt16(plane)) < 0)
                            return XTiffPages();
                        for (UInt32 y = y0; y < std::min(y0 + tileHeight, result.itsHeight); ++y)
                            for (UInt32 x = x0; x < std::min(x0 + tileWidth, result.itsWidth); ++x)
                                for (UInt32 s = 0; s < perPixel; ++s)
                                    std::memcpy(page.data() + (std::size_t(y) * result.itsWidth + x) * pixel +
                                                    (planes == 1 ? s : plane) * bytes,
                                                tile.data() + ((std::size_t(y - y0) * tileWidth + (x - x0)) * perPixel + s) * bytes,
                                                bytes);
                    }
        }
        else if (planar == PLANARCONFIG_SEPARATE)
        {
            std::vector<UInt8> line(std::size_t(result.itsWidth) * bytes);
            for (UInt16 plane = 0; plane < result.itsChannels; ++plane)
                for (UInt32 y = 0; y < result.itsHeight; ++y)
                {
                    if (TIFFReadScanline(tiff, line.data(), y, plane) < 0)
                        return XTiffPages();
                    for (UInt32 x = 0; x < result.itsWidth; ++x)
                        std::memcpy(page.data() + (std::size_t(y) * result.itsWidth + x) * pixel + plane * bytes,
                                    line.data() + std::size_t(x) * bytes, bytes);
                }
        }
        else
        {
            for (UInt32 y = 0; y < result.itsHeight; ++y)
                if (TIFFReadScanline(tiff, page.data() + std::size_t(y) * result.itsWidth * pixel, y, 0) < 0)
                    return XTiffPages();
        }
        result.itsPages.push_back(std::move(page));
    } while (TIFFReadDirectory(tiff) == 1);
    TIFFClose(tiff);
    return result;
}
