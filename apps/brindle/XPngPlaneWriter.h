#pragma once
// Writes one XY plane of a volume as a PNG picture, grey or RGB, of 8 or 16 bits a sample.
//
// Without a choice of bits, the picture follows the voxels: 8-bit grey, masks and the 32-bit
// colour volumes give 8 bits, the rest 16 bits. The values go over as they are where the bits
// match; a type narrower than the picture is widened by 257 (255 becomes 65535); 16-bit RGB
// into 8 bits keeps the high bytes; any other wider or float grey is scaled linearly from the
// renderer's black (0) to its white (the top value), clamped, rounded to the nearest. 32-bit
// grey volumes have no renderer: their smallest and largest voxel take that part. Alpha is
// left out. The voxel size goes into the picture's physical pixel size (pHYs).

#include <string>

#include "XTypes.h"

class XVolume;

class XPngPlaneWriter
{
public:
    // aPlane counts from 0 at the volume's first plane; aBits is 8, 16 or 0 for the default.
    // XCommandError for a plane outside the volume or a file that cannot be written.
    static void Write(const XVolume & aVolume, SInt32 aPlane, UInt32 aBits, const std::string & aPath);

    // The natural bits of aVolume's voxels: 8 or 16.
    static UInt32 GetDefaultBits(const XVolume & aVolume);
};
