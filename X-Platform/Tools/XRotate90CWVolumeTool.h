#pragma once
// Rotates each plane by 90 degrees clockwise: source row y becomes destination column
// height - 1 - y, read top to bottom, so voxel (x, y) goes to (height - 1 - y, x). The result
// stays centred where the source was.

#include "XRotateVolumeTool.h"

class XRotate90CWVolumeTool : public XRotateVolumeTool
{
protected:
    // The source's shape turned, centred on the source's bounds.
    XVolume * MakeDestVolume(const XVolume & aSource) override;
    void Rotate(const XBasePackedVolume & aSource, XBasePackedVolume & aDest) override;
};
