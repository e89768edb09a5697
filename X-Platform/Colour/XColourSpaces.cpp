#include "XColourSpaces.h"

#include <limits>

template <typename T>
void XColourSpaces::HSIToRGB(T inHue, T inSaturation, T inIntensity, T & outRed, T & outGreen,
                             T & outBlue)
{
    if (inSaturation == 0)
    {
        outRed = outGreen = outBlue = inIntensity;
        return;
    }
    const double max = double(std::numeric_limits<T>::max());
    double x = double(inHue) * 6.0 / max;
    if (x == 6.0)
        x = 0.0;
    const int sector = int(x);
    const double f = x - sector;
    const double sf = double(inSaturation) / max;
    const double i = double(inIntensity);
    const T p = T((1.0 - sf) * i);
    const T q = T((1.0 - f * sf) * i);
    const T t = T((1.0 - (1.0 - f) * sf) * i);
    const T v = inIntensity;
    switch (sector)
    {
    case 0: outRed = v, outGreen = t, outBlue = p; break;
    case 1: outRed = q, outGreen = v, outBlue = p; break;
    case 2: outRed = p, outGreen = v, outBlue = t; break;
    case 3: outRed = p, outGreen = q, outBlue = v; break;
    case 4: outRed = t, outGreen = p, outBlue = v; break;
    default: outRed = v, outGreen = p, outBlue = q; break;
    }
}

template <typename T>
void XColourSpaces::RGBToHSI(T inRed, T inGreen, T inBlue, T & outHue, T & outSaturation,
                             T & outIntensity)
{
    const T largest = inRed > inGreen ? (inRed > inBlue ? inRed : inBlue)
                                      : (inGreen > inBlue ? inGreen : inBlue);
    const T smallest = inRed < inGreen ? (inRed < inBlue ? inRed : inBlue)
                                       : (inGreen < inBlue ? inGreen : inBlue);
    outIntensity = largest;
    outHue = outSaturation = 0;
    if (largest == 0)
        return;
    const double max = double(std::numeric_limits<T>::max());
    const double range = double(largest - smallest);
    outSaturation = T(range / double(largest) * max);
    if (outSaturation == 0)
        return;
    const double red = double(inRed) / max;
    const double green = double(inGreen) / max;
    const double blue = double(inBlue) / max;
    const double d = range / max;
    double hue;
    if (inRed == largest)
        hue = (green - blue) / d;
    else if (inGreen == largest)
        hue = (blue - red) / d + 2.0;
    else
        hue = (red - green) / d + 4.0;
    hue /= 6.0;
    if (hue < 0.0)
        hue += 1.0;
    outHue = T(hue * max);
}

bool XColourSpaces::WavelengthToRGB(double inWavelength, UInt8 & outRed, UInt8 & outGreen,
                                    UInt8 & outBlue)
{
    const double w = inWavelength;
    if (w < 380.0 || w > 780.0)
        return false;
    double red = 0.0, green = 0.0, blue = 0.0;
    if (w <= 440.0)
        red = -(w - 440.0) / 60.0, blue = 1.0;
    else if (w <= 490.0)
        green = (w - 440.0) / 50.0, blue = 1.0;
    else if (w <= 510.0)
        green = 1.0, blue = -(w - 510.0) / 20.0;
    else if (w <= 580.0)
        red = (w - 510.0) / 70.0, green = 1.0;
    else if (w <= 645.0)
        red = 1.0, green = -(w - 645.0) / 65.0;
    else
        red = 1.0;

    // The eye's sensitivity falls off toward both ends of the range.
    double factor = 1.0;
    if (w > 700.0)
        factor = (780.0 - w) * 0.7 / 80.0 + 0.3;
    else if (w < 420.0)
        factor = (w - 380.0) * 0.7 / 40.0 + 0.3;

    outRed = UInt8(red * 255.0 * factor);
    outGreen = UInt8(green * 255.0 * factor);
    outBlue = UInt8(blue * 255.0 * factor);
    return true;
}

template void XColourSpaces::HSIToRGB<UInt8>(UInt8, UInt8, UInt8, UInt8 &, UInt8 &, UInt8 &);
template void XColourSpaces::HSIToRGB<UInt16>(UInt16, UInt16, UInt16, UInt16 &, UInt16 &,
                                              UInt16 &);
template void XColourSpaces::RGBToHSI<UInt8>(UInt8, UInt8, UInt8, UInt8 &, UInt8 &, UInt8 &);
template void XColourSpaces::RGBToHSI<UInt16>(UInt16, UInt16, UInt16, UInt16 &, UInt16 &,
                                              UInt16 &);
