#pragma once
// Flips a volume top to bottom: row y of each plane becomes row height - 1 - y.

#include "XFlipVolumeTool.h"

class XFlipVVolumeTool : public XFlipVolumeTool
{
public:
    void Flip(const XBasePackedVolume & aSource, XBasePackedVolume & aDest) override;
};
