#pragma once
// Ready-made palettes. Each call builds a new table:
//   GetContrastingLUT    18 colours that stand apart: the half-tone primaries and secondaries,
//                        then the quarter-tone ones, then six mixtures.
//   GetSystemColoursLUT  256: the 6 x 6 x 6 cube of steps ff, cc, 99, 66, 33, 00 (red outermost)
//                        without black, ramps ee to 11 in red, green, blue and grey, then black.
//   GetWavelengthLUT     256: entry i the colour of 380 + i nm, the last entry white.

#include "XIntToColourLUT.h"

class XNiceColours
{
public:
    XNiceColours() = delete;

    static XIntToColourLUT GetContrastingLUT();
    static XIntToColourLUT GetSystemColoursLUT();
    static XIntToColourLUT GetWavelengthLUT();
};
