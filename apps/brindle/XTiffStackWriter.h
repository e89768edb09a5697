#pragma once
// Writes a volume as a multi-page TIFF stack, one page a plane, uncompressed, in the platform's
// byte order, losslessly: masks and 8-bit grey as 8-bit grey, 16 and 32-bit grey as such,
// float as 32-bit float, the 32-bit colour volumes as 8-bit RGB (their alpha is left out) and
// RGB48 as 16-bit RGB. Stacks past 4 GiB are written as BigTIFF, others when asked.
//
// The voxel size goes into the resolution tags (pixels per micrometre, no unit) and, with the
// z calibration as "spacing" and the renderer's black and white as "min" and "max", into an
// ImageJ description on the first page, so that ImageJ and XTiffStackReader read them back.

#include <string>

class XVolume;

class XTiffStackWriter
{
public:
    // XCommandError when the file cannot be written or the volume is empty.
    static void Write(const XVolume & aVolume, const std::string & aPath, bool aBigTiff = false);
};
