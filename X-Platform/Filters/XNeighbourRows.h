#pragma once
// The source rows that a neighbourhood filter reads for one row of voxels: the rows at y + dy,
// z + dz for dy and dz over a box of offsets, those that lie inside the source, in storage order
// (dy fastest). Each is an array of the channel's values from x = left: the volume's own row
// when the channel is contiguous, otherwise a copy gathered into scratch rows made once.

#include <algorithm>
#include <vector>

#include "XChannelGrid.h"

template <typename C>
class XNeighbourRows
{
public:
    struct XRow
    {
        const C * itsValues;
        // The place of the row in the box of offsets: (dy - low y) + (dz - low z) * height.
        UInt32 itsIndex;
    };

    // Offsets dy from aLowY over aHeight rows and dz from aLowZ over aDepth planes.
    XNeighbourRows(SInt64 aLowY, UInt32 aHeight, SInt64 aLowZ, UInt32 aDepth)
        : itsLowY(aLowY), itsHeight(aHeight), itsLowZ(aLowZ), itsDepth(aDepth)
    {
    }

    // Makes the scratch rows that a colour channel of aSource needs: one for each row of the box
    // that can lie inside the source.
    void Prepare(const XSourceChannel<C> & aSource)
    {
        itsSource = aSource;
        if (aSource.IsContiguous())
            return;
        const X3DRect & bounds = aSource.GetBounds();
        const UInt64 rows = UInt64(std::min(itsHeight, bounds.GetHeight())) * std::min(itsDepth, bounds.GetDepth());
        itsGathered.resize(std::max<std::size_t>(itsGathered.size(), rows * bounds.GetWidth()));
    }

    // The rows of voxel row (y, z).
    const std::vector<XRow> & Collect(SInt32 aY, SInt32 aZ)
    {
        const X3DRect & bounds = itsSource.GetBounds();
        itsRows.clear();
        C * gathered = itsGathered.data();
        for (UInt32 k = 0; k < itsDepth; ++k)
        {
            const SInt64 z = aZ + itsLowZ + k;
            if (z < bounds.GetFront() || z >= bounds.GetBack())
                continue;
            for (UInt32 j = 0; j < itsHeight; ++j)
            {
                const SInt64 y = aY + itsLowY + j;
                if (y < bounds.GetTop() || y >= bounds.GetBottom())
                    continue;
                itsRows.push_back({itsSource.Row(SInt32(y), SInt32(z), gathered), j + k * itsHeight});
                if (!itsSource.IsContiguous())
                    gathered += bounds.GetWidth();
            }
        }
        return itsRows;
    }

private:
    SInt64 itsLowY;
    UInt32 itsHeight;
    SInt64 itsLowZ;
    UInt32 itsDepth;
    XSourceChannel<C> itsSource;
    std::vector<C> itsGathered;
    std::vector<XRow> itsRows;
};
