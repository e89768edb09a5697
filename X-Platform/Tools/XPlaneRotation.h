#pragma once
// The walks shared by the flips and rotations. Voxels move as plain bytes (1, 2, 4 or 6 a
// voxel), plane by plane, z keeping its order; each volume is walked with its own row and
// plane steps.
//
// XReverseRow copies a row back to front (the horizontal flip and the half turn). The quarter
// turns are transpositions: the plane is cut into square blocks that are turned in vector
// registers (scalar blocks at the edges and for 6-byte voxels), so that reads and writes both
// run along rows.

#include "XTypes.h"

class XBasePackedVolume;

// aWidth voxels of aVoxelBytes each: voxel x of aSource becomes voxel aWidth - 1 - x of aDest.
void XReverseRow(const UInt8 * aSource, UInt8 * aDest, UInt32 aWidth, UInt32 aVoxelBytes);
// Every row back to front: voxel (x, y) to (width - 1 - x, y), the horizontal flip, or with
// anUpsideDown to (width - 1 - x, height - 1 - y), the half turn. Locks both volumes.
void XReversePlaneRows(const XBasePackedVolume & aSource, XBasePackedVolume & aDest, bool anUpsideDown);
// A quarter turn. Clockwise, source row y becomes destination column height - 1 - y, read top
// to bottom; counter-clockwise, destination column y, read bottom to top. Locks both volumes.
void XTurnPlanesQuarter(const XBasePackedVolume & aSource, XBasePackedVolume & aDest, bool aClockwise);
