#pragma once
// A kernel of the filtered resampling of XVolumeResampleTool: a function of the offset x from
// the centre of a sample, zero outside [-GetFilterSize(), GetFilterSize()]. The concrete
// filters hold no data and evaluate at u = |x|. The tool evaluates a filter only while it
// builds its tables of weights, never per voxel.

class XResampleFilter
{
public:
    XResampleFilter() = default;
    XResampleFilter(const XResampleFilter &) = default;
    XResampleFilter & operator=(const XResampleFilter &) = default;
    virtual ~XResampleFilter();

    // Half the width of the support.
    virtual double GetFilterSize() const = 0;
    // The kernel at offset x.
    virtual double CalcFilterValue(double x) const = 0;
};
