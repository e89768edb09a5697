#pragma once
// Grey-scale dilation: each voxel becomes the brightest of itself and its neighbours at the
// points of a structuring element, repeated for a number of iterations. Points outside the
// volume are skipped. The voxel itself always takes part, whether or not the element holds the
// origin. An empty element becomes the six face neighbours, in the order (-1, 0, 0), (1, 0, 0),
// (0, -1, 0), (0, 1, 0), (0, 0, -1), (0, 0, 1).
//
// Grey8 (masks too), Grey16, float and ARGB32 volumes. Colour voxels are compared by their level
// (the largest of red, green and blue) and moved whole; of neighbours of equal level the earlier
// in the element wins, so the element's order matters. Floats compare as floats. Other types
// raise XException 2500. Zero iterations leave the destination as it was: ApplyTool then returns
// a volume of zeros. The tool does not work in place: ApplyToolInPlace dilates into a clone.

#include "X1To1VolumeTool.h"
#include "X3DPoint.h"
#include "XVector.h"

class XDilateFilterVolumeTool : public X1To1VolumeTool
{
public:
    XDilateFilterVolumeTool(UInt32 anIterations, const XVector<X3DPoint> & anElement);
    XDilateFilterVolumeTool(const XDilateFilterVolumeTool &) = default;
    XDilateFilterVolumeTool & operator=(const XDilateFilterVolumeTool &) = default;
    ~XDilateFilterVolumeTool() override;

    UInt32 GetIterations() const { return itsIterations; }
    const XVector<X3DPoint> & GetStructuringElement() const { return itsElement; }

    // The six face neighbours, the element that an empty one becomes.
    static XVector<X3DPoint> GetFaceNeighbours();

protected:
    bool CanApplyInPlace() const override { return false; }
    void ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest) override;
    void ApplyToolGrey16(const XGrey16Volume & aSource, XGrey16Volume & aDest) override;
    void ApplyToolARGB32(const XARGB32Volume & aSource, XARGB32Volume & aDest) override;
    void ApplyToolFP(const XFPVolume & aSource, XFPVolume & aDest) override;

private:
    UInt32 itsIterations;
    XVector<X3DPoint> itsElement;
};
