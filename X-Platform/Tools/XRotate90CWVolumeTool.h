#pragma once
// Rotates each plane by 90 degrees clockwise: source row y becomes destination column
// height - 1 - y, read top to bottom, so voxel (x, y) goes to (height - 1 - y, x). The result
// stays centred where the source was.

#include "XQuarterTurnVolumeTool.h"

class XRotate90CWVolumeTool : public XQuarterTurnVolumeTool
{
public:
    XRotate90CWVolumeTool() : XQuarterTurnVolumeTool(true) {}
};
