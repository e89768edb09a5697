#pragma once
// What the two rotations by 90 degrees share: the destination is the source's shape turned,
// centred on the source's bounds (with the rounding of CentreOn when width and height differ by
// an odd number), and the planes are turned as transpositions.

#include "XRotateVolumeTool.h"

class XQuarterTurnVolumeTool : public XRotateVolumeTool
{
protected:
    explicit XQuarterTurnVolumeTool(bool aClockwise) : itsClockwise(aClockwise) {}
    XVolume * MakeDestVolume(const XVolume & aSource) override;
    void Rotate(const XBasePackedVolume & aSource, XBasePackedVolume & aDest) override;

private:
    bool itsClockwise;
};
