#pragma once
// Rotates each plane by 180 degrees: voxel (x, y) goes to (width - 1 - x, height - 1 - y).

#include "XRotateVolumeTool.h"

class XRotate180VolumeTool : public XRotateVolumeTool
{
protected:
    // A volume of the source's class and bounds.
    XVolume * MakeDestVolume(const XVolume & aSource) override;
    void Rotate(const XBasePackedVolume & aSource, XBasePackedVolume & aDest) override;
};
