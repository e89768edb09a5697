#pragma once
// Conversions between colour spaces, shared by the colour types: hue, saturation and intensity
// in the channel's own range (0..255 for 8-bit channels, 0..65535 for 16-bit ones), and the
// colour of a visible wavelength.

#include "XTypes.h"

class XColourSpaces
{
public:
    // Hexcone HSI to RGB. The hue circle spans 0..max, sector by sector of one sixth; each
    // result channel is truncated. A zero saturation gives the grey of the intensity.
    template <typename T>
    static void HSIToRGB(T inHue, T inSaturation, T inIntensity, T & outRed, T & outGreen,
                         T & outBlue);
    // RGB to hexcone HSI: the intensity is the largest channel, saturation and hue are
    // truncated into the channel's range; a black or grey colour has hue and saturation 0.
    template <typename T>
    static void RGBToHSI(T inRed, T inGreen, T inBlue, T & outHue, T & outSaturation,
                         T & outIntensity);

    // The colour of a wavelength in nanometres, faded toward both ends of the visible range.
    // Outside 380..780 the answer is false and the channels are left alone.
    static bool WavelengthToRGB(double inWavelength, UInt8 & outRed, UInt8 & outGreen,
                                UInt8 & outBlue);
};
