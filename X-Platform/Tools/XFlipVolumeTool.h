#pragma once
// What the two flips share: they only move whole voxels, so one function serves every voxel
// type of a packed volume (a volume that is none is refused with XException 2500). A flip
// cannot work in place: in place it runs on a clone.

#include "X1To1VolumeTool.h"

class XBasePackedVolume;

class XFlipVolumeTool : public X1To1VolumeTool
{
public:
    // Moves the voxels of aSource into aDest, which has the same class and bounds.
    virtual void Flip(const XBasePackedVolume & aSource, XBasePackedVolume & aDest) = 0;

protected:
    bool CanApplyInPlace() const override { return false; }
    void ApplyToolSelf(const XVolume & aSource, XVolume & aDest) override;
    // The checks of Flip: same class and same bounds.
    static void CheckFlip(const XBasePackedVolume & aSource, const XBasePackedVolume & aDest);
};
