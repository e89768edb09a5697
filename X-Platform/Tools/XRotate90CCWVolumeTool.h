#pragma once
// Rotates each plane by 90 degrees counter-clockwise: source row y becomes destination column
// y, read bottom to top, so voxel (x, y) goes to (y, width - 1 - x). The result stays centred
// where the source was.

#include "XQuarterTurnVolumeTool.h"

class XRotate90CCWVolumeTool : public XQuarterTurnVolumeTool
{
public:
    XRotate90CCWVolumeTool() : XQuarterTurnVolumeTool(false) {}
};
