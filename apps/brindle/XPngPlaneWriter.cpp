#include "XPngPlaneWriter.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <png.h>
#include <vector>

#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XCommandError.h"
#include "XFPVolume.h"
#include "XGrey8Volume.h"
#include "XGrey16Volume.h"
#include "XGrey32Volume.h"
#include "XImageRenderer.h"
#include "XLock.h"
#include "XRGB48Volume.h"
#include "XVolumeKinds.h"

namespace
{
// The samples of one picture, row after row, as PNG stores them (16 bits big-endian).
struct XPicture
{
    UInt32 itsWidth = 0;
    UInt32 itsHeight = 0;
    UInt32 itsBits = 8;
    UInt32 itsChannels = 1;
    std::vector<UInt8> itsSamples;
    UInt64 itsNext = 0;

    void Put(UInt32 aSample)
    {
        if (itsBits == 16)
            itsSamples[itsNext++] = UInt8(aSample >> 8);
        itsSamples[itsNext++] = UInt8(aSample);
    }
};

// aValue from lo..hi onto 0..aTop, clamped and rounded; without a range, the top from hi on.
UInt32 ScaleOnto(double aValue, double aLow, double aHigh, UInt32 aTop)
{
    if (!(aHigh > aLow))
        return aValue >= aHigh ? aTop : 0;
    const double t = (aValue - aLow) / (aHigh - aLow);
    if (!(t > 0.0))
        return 0;
    if (t >= 1.0)
        return aTop;
    return UInt32(std::floor(t * aTop + 0.5));
}

// Grey voxels of type T at aVoxelBits: as they are, widened, or scaled from aLow..aHigh.
template <typename T>
void PutGreyPlane(const XPackedVolume<T> & aVolume, SInt32 aZ, UInt32 aVoxelBits, bool anIsInteger, double aLow,
                  double aHigh, XPicture & aPicture)
{
    const UInt32 top = aPicture.itsBits == 16 ? 65535 : 255;
    const X3DRect & b = aVolume.GetBounds();
    for (SInt32 y = b.GetTop(); y < b.GetBottom(); ++y)
    {
        const T * row = aVolume.GetVoxelPtr(b.GetLeft(), y, aZ);
        for (UInt32 x = 0; x < aVolume.GetWidth(); ++x)
        {
            if (anIsInteger && aVoxelBits == aPicture.itsBits)
                aPicture.Put(UInt32(row[x]));
            else if (anIsInteger && aVoxelBits == 8 && aPicture.itsBits == 16)
                aPicture.Put(UInt32(row[x]) * 257);
            else
                aPicture.Put(ScaleOnto(double(row[x]), aLow, aHigh, top));
        }
    }
}

// Colour voxels: red, green and blue, widened by 257 or cut to their high bytes as needed.
template <class V>
void PutColourPlane(const V & aVolume, SInt32 aZ, UInt32 aVoxelBits, XPicture & aPicture)
{
    const X3DRect & b = aVolume.GetBounds();
    auto convert = [&](UInt32 aValue) {
        if (aVoxelBits == aPicture.itsBits)
            return aValue;
        return aVoxelBits == 8 ? aValue * 257 : aValue >> 8;
    };
    for (SInt32 y = b.GetTop(); y < b.GetBottom(); ++y)
    {
        const auto * row = aVolume.GetVoxelPtr(b.GetLeft(), y, aZ);
        for (UInt32 x = 0; x < aVolume.GetWidth(); ++x)
        {
            aPicture.Put(convert(row[x].GetRed()));
            aPicture.Put(convert(row[x].GetGreen()));
            aPicture.Put(convert(row[x].GetBlue()));
        }
    }
}

void OnError(png_structp aPng, png_const_charp aMessage)
{
    auto * text = static_cast<char *>(png_get_error_ptr(aPng));
    std::snprintf(text, 256, "%s", aMessage);
    png_longjmp(aPng, 1);
}

void OnWarning(png_structp, png_const_charp) {}

// libpng's part: it leaves by longjmp on errors, so nothing here has a destructor. False with
// the reason in anError (256 bytes) when the picture could not be written.
bool WritePicture(std::FILE * aFile, const XPicture & aPicture, double aXCalibration, double aYCalibration,
                  char * anError)
{
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, anError, &OnError, &OnWarning);
    if (png == nullptr)
        return false;
    png_infop info = png_create_info_struct(png);
    if (info == nullptr)
    {
        png_destroy_write_struct(&png, nullptr);
        return false;
    }
    if (setjmp(png_jmpbuf(png)))
    {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_init_io(png, aFile);
    png_set_IHDR(png, info, aPicture.itsWidth, aPicture.itsHeight, int(aPicture.itsBits),
                 aPicture.itsChannels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    // Pixels a metre, from voxel sizes in micrometres, when they are plausible.
    const double xPerMetre = 1e6 / aXCalibration;
    const double yPerMetre = 1e6 / aYCalibration;
    if (xPerMetre >= 1.0 && xPerMetre < 2e9 && yPerMetre >= 1.0 && yPerMetre < 2e9)
        png_set_pHYs(png, info, png_uint_32(std::lround(xPerMetre)), png_uint_32(std::lround(yPerMetre)),
                     PNG_RESOLUTION_METER);
    png_write_info(png, info);
    const UInt64 rowBytes = UInt64(aPicture.itsWidth) * aPicture.itsChannels * (aPicture.itsBits / 8);
    for (UInt32 y = 0; y < aPicture.itsHeight; ++y)
        png_write_row(png, aPicture.itsSamples.data() + y * rowBytes);
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return true;
}
} // namespace

UInt32 XPngPlaneWriter::GetDefaultBits(const XVolume & aVolume)
{
    switch (XVolumeKinds::Of(aVolume).itsID)
    {
    case kMaskKind:
    case kGrey8Kind:
    case kARGB32Kind:
    case kBGRA32Kind:
        return 8;
    default:
        return 16;
    }
}

void XPngPlaneWriter::Write(const XVolume & aVolume, SInt32 aPlane, UInt32 aBits, const std::string & aPath)
{
    const XVolumeKind & kind = XVolumeKinds::Of(aVolume);
    if (aVolume.GetBounds().IsEmpty())
        throw XCommandError("cannot write a plane of an empty volume");
    if (aPlane < 0 || UInt32(aPlane) >= aVolume.GetDepth())
        throw XCommandError("plane " + std::to_string(aPlane) + " is outside the volume's planes 0.." +
                            std::to_string(aVolume.GetDepth() - 1));
    XPicture picture;
    picture.itsWidth = aVolume.GetWidth();
    picture.itsHeight = aVolume.GetHeight();
    picture.itsBits = aBits == 0 ? GetDefaultBits(aVolume) : aBits;
    const bool colour = kind.itsID == kARGB32Kind || kind.itsID == kBGRA32Kind || kind.itsID == kRGB48Kind;
    picture.itsChannels = colour ? 3 : 1;
    picture.itsSamples.resize(UInt64(picture.itsWidth) * picture.itsHeight * picture.itsChannels * (picture.itsBits / 8));

    const SInt32 z = aVolume.GetBounds().GetFront() + aPlane;
    const double black = aVolume.HasPlaneRenderer() ? aVolume.GetPlaneRenderer().GetBlack() : 0.0;
    const double white = aVolume.HasPlaneRenderer() ? aVolume.GetPlaneRenderer().GetWhite() : 0.0;
    {
        XLock lock(aVolume, kLockRead);
        switch (kind.itsID)
        {
        case kMaskKind:
        case kGrey8Kind:
            PutGreyPlane(dynamic_cast<const XGrey8Volume &>(aVolume), z, 8, true, black, white, picture);
            break;
        case kGrey16Kind:
            PutGreyPlane(dynamic_cast<const XGrey16Volume &>(aVolume), z, 16, true, black, white, picture);
            break;
        case kGrey32Kind:
        {
            const auto & wide = dynamic_cast<const XGrey32Volume &>(aVolume);
            UInt32 lowest = 0;
            UInt32 highest = 0;
            wide.FindMinMax(lowest, highest);
            PutGreyPlane(wide, z, 32, true, lowest, highest, picture);
            break;
        }
        case kFloatKind:
            PutGreyPlane(dynamic_cast<const XFPVolume &>(aVolume), z, 32, false, black, white, picture);
            break;
        case kARGB32Kind:
            PutColourPlane(dynamic_cast<const XARGB32Volume &>(aVolume), z, 8, picture);
            break;
        case kBGRA32Kind:
            PutColourPlane(dynamic_cast<const XBGRA32Volume &>(aVolume), z, 8, picture);
            break;
        case kRGB48Kind:
            PutColourPlane(dynamic_cast<const XRGB48Volume &>(aVolume), z, 16, picture);
            break;
        }
    }

    std::FILE * file = std::fopen(aPath.c_str(), "wb");
    if (file == nullptr)
        throw XCommandError("cannot write '" + aPath + "': " + std::strerror(errno));
    char error[256] = "libpng failed";
    const bool written = WritePicture(file, picture, aVolume.GetXCalibration(), aVolume.GetYCalibration(), error);
    const bool closed = std::fclose(file) == 0;
    if (!written || !closed)
        throw XCommandError("cannot write '" + aPath + "': " + (written ? std::strerror(errno) : error));
}
