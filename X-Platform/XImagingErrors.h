#pragma once
// The XException numbers that the imaging library raises, beside the foundation's own
// (XException.h): 1005 wrong class and 1015 newer stream come from there.

#include "XTypes.h"

enum XImagingError : UInt32
{
    kErrGraphicsService = 1006,     // a graphics or numeric service failed
    kErrFourier = 1012,             // a Fourier transform failed
    kErrCurveFit = 1356,            // a curve fit did not converge
    kErrLookupMapping = 1357,       // a lookup mapping could not be made
    kErrMatrix = 2302,              // a singular or otherwise unusable matrix
    kErrVolumeTypeRefused = 2500,   // the tool does not handle this type of volume
    kErrImageDataSource = 2502,     // an image data source failed
    kErrNoLUT = 2506,               // the renderer has no look-up table
    kErrRatio = 2509,               // a ratio could not be formed
    kErrRemoteCall = 3095,          // a remote call failed
    kErrRemoteJob = 3142,           // a remote job failed
    kErrTooFewBeads = 8000,         // too few beads for a calibration
    kErrBeadsNotUniform = 8001      // beads too unevenly spread for a calibration
};
