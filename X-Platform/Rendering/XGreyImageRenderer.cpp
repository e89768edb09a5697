#include "XGreyImageRenderer.h"

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>

#include "XCheckedArithmetic.h"
#include "XException.h"
#include "XIntToColourLUT.h"
#include "XLock.h"
#include "XStream.h"

template <typename T>
XGreyImageRenderer<T>::XGreyImageRenderer(XStream & aStream) : XBaseGreyImageRenderer(aStream)
{
    SetBlackColour(XARGB32Colour::FromARGB(aStream.Read32()));
    SetWhiteColour(XARGB32Colour::FromARGB(aStream.Read32()));
}

template <typename T>
double XGreyImageRenderer<T>::GetMaxInputValue() const
{
    return double(std::numeric_limits<T>::max());
}

template <typename T>
void XGreyImageRenderer<T>::GetColour(const void * aVoxel, XARGB32Colour & outColour) const
{
    const T voxel = *static_cast<const T *>(aVoxel);
    switch (GetRendererType())
    {
    case kRampRenderer: GetRampColour(voxel, outColour); break;
    case kRainbowRenderer: GetRainbowColour(voxel, outColour); break;
    default: break;
    }
}

template <typename T>
void XGreyImageRenderer<T>::GetRampColour(T aVoxel, XARGB32Colour & outColour) const
{
    const float x = float(aVoxel);
    const double a = double(float(GetGain())) / (GetWhite() - GetBlack());
    float t = float(a * (double(x) - GetBlack()) + double(float(GetOffset())));
    if (t < 1.0f)
        t = t > 0.0f ? t : 0.0f;
    else
        t = 1.0f;
    const SInt32 luminance = UInt8(double(std::pow(t, float(GetGamma()))) * 255.0);

    const XARGB32Colour black = GetBlackColour(), white = GetWhiteColour();
    auto channel = [luminance](UInt8 c0, UInt8 c1) {
        return UInt8(SInt32(c0) + ((SInt32(c1) - SInt32(c0)) * luminance) / 255);
    };
    outColour.SetARGB(255,
                      channel(BalancedByte(GetRedBalance(), black.GetRed()),
                              BalancedByte(GetRedBalance(), white.GetRed())),
                      channel(BalancedByte(GetGreenBalance(), black.GetGreen()),
                              BalancedByte(GetGreenBalance(), white.GetGreen())),
                      channel(BalancedByte(GetBlueBalance(), black.GetBlue()),
                              BalancedByte(GetBlueBalance(), white.GetBlue())));
}

template <typename T>
void XGreyImageRenderer<T>::GetRainbowColour(T aVoxel, XARGB32Colour & outColour) const
{
    const float x = (float(aVoxel) + float(-GetBlack())) * float(255.0 / (GetWhite() - GetBlack()));
    if (!(x >= 0.0f))
        outColour = kRainbowLUT[0];
    else if (x > 255.0f)
        outColour = kRainbowLUT[255];
    else
        outColour = kRainbowLUT[std::size_t(x + 0.5f)];
}

template <typename T>
XIntToColourLUT XGreyImageRenderer<T>::GetLUT() const
{
    // Counting in floats stops at 2^24, where adding 1 no longer changes the count.
    constexpr double kMaxEntries = 16777216.0;
    const double size = std::trunc(GetMaxInputValue());
    if (size > kMaxEntries)
        throw XException(kErrBadArgument, "a look-up table of " + std::to_string(size) + " entries");
    XIntToColourLUT table(size > 0.0 ? UInt32(size) : 0);
    {
        XLock lock(table, kLockWrite);
        UInt32 i = 0;
        for (T voxel = 0; double(voxel) < size && i < table.GetSize(); voxel += T(1))
            GetColour(&voxel, table.IndexToValue(i++));
    }
    const double white = std::trunc(GetWhite());
    const UInt32 w = white > 0.0 ? (white < 4294967295.0 ? UInt32(white) : 0xFFFFFFFFu) : 0;
    UInt32 depth = 1;
    while (depth < 32 && (UInt64(1) << depth) < w)
        ++depth;
    table.SetTrueDepth(depth);
    return table;
}

template <typename T>
void XGreyImageRenderer<T>::GetColourByIndex(double anIndex, XARGB32Colour & outColour) const
{
    T voxel;
    if constexpr (std::is_integral_v<T>)
        voxel = XCheckedTruncate<T>(anIndex);
    else
        voxel = T(anIndex);
    GetColour(&voxel, outColour);
}

template <typename T>
void XGreyImageRenderer<T>::ReadStream2_XGreyImageRenderer(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XBaseGreyImageRenderer(aStream, anOptions);
    XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, anOptions);
}

template <typename T>
void XGreyImageRenderer<T>::WriteStream2_XGreyImageRenderer(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XBaseGreyImageRenderer(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
    WriteStreamSelf(aStream, anOptions);
}

template <typename T>
void XGreyImageRenderer<T>::ReadStreamSelf(XStream & aStream, const XVersion &, XOptions)
{
    SetBlackColour(XReadARGB32(aStream));
    SetWhiteColour(XReadARGB32(aStream));
}

template <typename T>
void XGreyImageRenderer<T>::WriteStreamSelf(XStream & aStream, XOptions) const
{
    XWriteARGB32(aStream, GetBlackColour());
    XWriteARGB32(aStream, GetWhiteColour());
}

template class XGreyImageRenderer<UInt8>;
template class XGreyImageRenderer<UInt16>;
template class XGreyImageRenderer<float>;
