#pragma once
// Flips a volume left to right: voxel x of each row becomes voxel width - 1 - x.

#include "XFlipVolumeTool.h"

class XFlipHVolumeTool : public XFlipVolumeTool
{
public:
    void Flip(const XBasePackedVolume & aSource, XBasePackedVolume & aDest) override;
};
