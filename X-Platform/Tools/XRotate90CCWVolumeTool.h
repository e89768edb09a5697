#pragma once
// Rotates each plane by 90 degrees counter-clockwise: source row y becomes destination column
// y, read bottom to top, so voxel (x, y) goes to (y, width - 1 - x). The result stays centred
// where the source was.

#include "XRotateVolumeTool.h"

class XRotate90CCWVolumeTool : public XRotateVolumeTool
{
protected:
    // The source's shape turned, centred on the source's bounds.
    XVolume * MakeDestVolume(const XVolume & aSource) override;
    void Rotate(const XBasePackedVolume & aSource, XBasePackedVolume & aDest) override;
};
