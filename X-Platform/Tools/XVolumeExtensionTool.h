#pragma once
// Extends a volume with synthetic margins ahead of a Fourier transform, so that its opposite
// edges meet smoothly, and trims the result back.
//
// The extended volume holds the source's voxels as floats at their own coordinates. The margins
// are filled axis by axis, x over the source's own rows, then y over full rows of the source's
// planes, then z over full planes, each seeing the results of the one before. Along one line of
// n samples with margins low and high, m = max(low, high), step = 1 / (2m) in float,
// L = the sample at m and R = the sample at n - m - 1 (both at m, also where one margin is
// smaller, so then not the sample next to the margin):
//   low margin,  position k:         (R - L) * ((m - k) * step) + L
//   high margin, position n - 1 - k: (R - L) * ((m + k) * step) + R
// The low side fades from the mean of L and R into L; the high side adds to R instead of
// fading from the mean. That asymmetry is deliberate, on all three axes. A source of no voxels
// leaves the margins zero.
//
// The result is a floating-point volume (XFPVolume). The margins are walked with its row and
// plane strides, so storage with padded rows serves as well.

#include "X3DRect.h"
#include "XTypes.h"

class XFPVolume;
class XVolume;

class XVolumeExtensionTool
{
public:
    // A new volume over aExtendedBounds, which must contain the source's bounds, with the
    // source's voxels, calibrations and margins; the caller owns it.
    static XFPVolume * CreateXYZExtendedVolume(const XVolume & aVolume, const X3DRect & aExtendedBounds);
    // A new volume of aBounds (inside the extended volume) cut out of it; the caller owns it.
    static XFPVolume * CreateXYZTrimmedVolume(const XFPVolume & aFourierVolume, const X3DRect & aBounds);

private:
    // The margins of each axis, over the lines told above.
    static void ExtendX(XFPVolume & aVolume, const X3DRect & aSourceBounds, SInt32 aLow, SInt32 aHigh);
    static void ExtendY(XFPVolume & aVolume, const X3DRect & aSourceBounds, SInt32 aLow, SInt32 aHigh);
    static void ExtendZ(XFPVolume & aVolume, SInt32 aLow, SInt32 aHigh);
    // The margins of one line of aLength samples, aStep floats apart from aFirst on.
    static void ExtendLine(float * aFirst, SInt64 aStep, SInt32 aLength, SInt32 aLow, SInt32 aHigh);
};
