#pragma once
// PNG pictures read back with libpng, sample by sample, as they are stored.

#include <png.h>

#include <cstdio>
#include <string>
#include <vector>

#include "XTypes.h"

struct XPngPicture
{
    UInt32 itsWidth = 0;
    UInt32 itsHeight = 0;
    int itsBits = 0;
    int itsColourType = -1;
    // Row after row, the channels of a pixel together.
    std::vector<UInt32> itsSamples;
    // Pixels a metre, when the picture has a pHYs chunk in metres.
    UInt32 itsXPerMetre = 0;
    UInt32 itsYPerMetre = 0;

    UInt32 GetChannels() const { return itsColourType == PNG_COLOR_TYPE_RGB ? 3 : 1; }
    UInt32 At(UInt32 x, UInt32 y, UInt32 aChannel = 0) const
    {
        return itsSamples[(std::size_t(y) * itsWidth + x) * GetChannels() + aChannel];
    }
};

// libpng leaves by longjmp on errors: nothing here has a destructor, the picture is the caller's.
inline bool XReadPngInto(std::FILE * aFile, XPngPicture * outPicture)
{
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png == nullptr ? nullptr : png_create_info_struct(png);
    if (info == nullptr || setjmp(png_jmpbuf(png)))
    {
        png_destroy_read_struct(&png, &info, nullptr);
        return false;
    }
    png_init_io(png, aFile);
    png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    outPicture->itsWidth = png_get_image_width(png, info);
    outPicture->itsHeight = png_get_image_height(png, info);
    outPicture->itsBits = png_get_bit_depth(png, info);
    outPicture->itsColourType = png_get_color_type(png, info);
    png_uint_32 xPerUnit = 0;
    png_uint_32 yPerUnit = 0;
    int unit = 0;
    if (png_get_pHYs(png, info, &xPerUnit, &yPerUnit, &unit) != 0 && unit == PNG_RESOLUTION_METER)
    {
        outPicture->itsXPerMetre = xPerUnit;
        outPicture->itsYPerMetre = yPerUnit;
    }
    png_bytepp rows = png_get_rows(png, info);
    const UInt32 perRow = outPicture->itsWidth * outPicture->GetChannels();
    outPicture->itsSamples.resize(std::size_t(perRow) * outPicture->itsHeight);
    for (UInt32 y = 0; y < outPicture->itsHeight; ++y)
        for (UInt32 i = 0; i < perRow; ++i)
            outPicture->itsSamples[std::size_t(y) * perRow + i] =
                outPicture->itsBits == 16 ? (UInt32(rows[y][2 * i]) << 8) | rows[y][2 * i + 1] : rows[y][i];
    png_destroy_read_struct(&png, &info, nullptr);
    return true;
}

// The picture, or one of width 0 when it cannot be read.
inline XPngPicture XReadPng(const std::string & aPath)
{
    XPngPicture picture;
    std::FILE * file = std::fopen(aPath.c_str(), "rb");
    if (file == nullptr)
        return picture;
    if (!XReadPngInto(file, &picture))
        picture = XPngPicture();
    std::fclose(file);
    return picture;
}
