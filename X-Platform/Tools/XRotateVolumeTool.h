#pragma once
// What the three rotations share: every voxel type of the dispatch but 32-bit grey goes through
// one worker per voxel size (1, 2, 4 and 6 bytes); masks arrive as Grey8. The planes keep their
// order in z. A rotation cannot work in place: in place it runs on a clone, which for the 90
// degree rotations has the wrong shape unless the planes are square (an assertion then fails).

#include "X1To1VolumeTool.h"

class XBasePackedVolume;

class XRotateVolumeTool : public X1To1VolumeTool
{
public:
    // Rotates aSource into a volume of the caller's (of the right class and shape).
    virtual void RotateCopy(const XVolume & aSource, XVolume & aDest) { ApplyToolSelf(aSource, aDest); }

protected:
    bool CanApplyInPlace() const override { return false; }
    void ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest) override;
    void ApplyToolGrey16(const XGrey16Volume & aSource, XGrey16Volume & aDest) override;
    void ApplyToolARGB32(const XARGB32Volume & aSource, XARGB32Volume & aDest) override;
    void ApplyToolBGRA32(const XBGRA32Volume & aSource, XBGRA32Volume & aDest) override;
    void ApplyToolRGB48(const XRGB48Volume & aSource, XRGB48Volume & aDest) override;
    void ApplyToolFP(const XFPVolume & aSource, XFPVolume & aDest) override;
    // The worker: checks the shapes, locks the source for reading and the destination for
    // writing, and rotates plane by plane.
    virtual void Rotate(const XBasePackedVolume & aSource, XBasePackedVolume & aDest) = 0;
};
