#pragma once
// Convolution with a kernel of any size, given as an array of weights, x fastest, then y, then
// z. The tool keeps no named kernels: callers make their own weights.
//
// The weights are copied and divided by their sum (taken in floats, in array order) unless that
// sum is 0.0, so that a flat image keeps its level; a kernel that sums to 0.0 (an edge detector)
// keeps its weights as given and relies on the bias.
//
// Each voxel becomes trunc(sum + bias), where sum adds voxel * weight over the kernel's entries
// in storage order, in floats. The kernel is centred at (width >> 1, height >> 1, depth >> 1)
// from its first entry, so an even kernel reaches one voxel further on the low side. Edges
// darken: entries outside the source add nothing and the sum is not renormalised. Results are
// stored without a clamp: 8 and 16-bit voxels keep the low bits (a kernel that overshoots wraps
// round); float voxels take sum + bias as it is.
//
// Grey8 (masks too), Grey16, float and ARGB32 volumes. An ARGB32 volume is filtered at its
// alpha, red and green bytes; blue keeps what the destination held (zero in a new result).
// Other types raise XException 2500. The tool does not work in place: ApplyToolInPlace filters
// into a clone.
//
// A copy shares the weights of its origin (a shallow copy); the array lives as long as either.

#include <initializer_list>
#include <memory>

#include "X1To1VolumeTool.h"
#include "XTypes.h"

class XSpatialFilterVolumeTool : public X1To1VolumeTool
{
public:
    // aWeightArray holds aWidth * aHeight * aDepth weights; a null array is a broken
    // precondition.
    XSpatialFilterVolumeTool(const float * aWeightArray, UInt32 aWidth, UInt32 aHeight, UInt32 aDepth, float aBias);
    XSpatialFilterVolumeTool(const XSpatialFilterVolumeTool &) = default;
    XSpatialFilterVolumeTool & operator=(const XSpatialFilterVolumeTool &) = default;
    ~XSpatialFilterVolumeTool() override;

    UInt32 GetWidth() const { return itsWidth; }
    UInt32 GetHeight() const { return itsHeight; }
    UInt32 GetDepth() const { return itsDepth; }
    // The weights as normalised, width * height * depth of them.
    const float * GetWeights() const { return itsWeights.get(); }
    float GetBias() const { return itsBias; }

protected:
    bool CanApplyInPlace() const override { return false; }
    void ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest) override;
    void ApplyToolGrey16(const XGrey16Volume & aSource, XGrey16Volume & aDest) override;
    void ApplyToolARGB32(const XARGB32Volume & aSource, XARGB32Volume & aDest) override;
    void ApplyToolFP(const XFPVolume & aSource, XFPVolume & aDest) override;

private:
    // Filters the channel of type C of volumes of voxel type TVolType at each of the offsets.
    template <typename TVolType, typename C, class Volume>
    void Filter(const Volume & aSource, Volume & aDest, std::initializer_list<UInt32> aChannelOffsets) const;

    UInt32 itsWidth;
    UInt32 itsHeight;
    UInt32 itsDepth;
    std::shared_ptr<float[]> itsWeights;
    float itsBias;
};
