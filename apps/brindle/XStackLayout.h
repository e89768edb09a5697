#pragma once
// How the pages of a TIFF stack make volumes: the channels, slices and time points that it
// holds, and which page holds each plane. A plain stack is one channel at one time point, a
// slice a page. ImageJ's hyperstacks store their planes channel fastest, then slice, then time
// point ("channels=", "slices=" and "frames=" in the description); OME-TIFF files say the order
// and the pages in their OME-XML.
//
// The layout is checked against the file when it is made: a description that does not fit the
// pages is refused with XCommandError, whose text reads after "cannot read 'FILE': ".

#include <map>
#include <string>
#include <vector>

#include "XTypes.h"

class XOmeMetadata;

class XStackLayout
{
public:
    // The full-size pages of a file: their directory numbers in the file's order, their size
    // and their samples a pixel.
    struct XPages
    {
        std::vector<UInt32> itsDirectories;
        UInt32 itsWidth = 0;
        UInt32 itsHeight = 0;
        UInt32 itsSamplesPerPixel = 1;
        std::string itsFileName; // without its folder
    };

    // Each page a slice.
    static XStackLayout MakePlain(const XPages & aPages);
    // From the fields of an ImageJ description. A description whose channels and frames are 1
    // reads as a plain stack whatever its slice count, unless it tells of several images on one
    // page: ImageJ stores stacks past 4 GiB so, their planes one after another behind the first.
    static XStackLayout FromImageJ(const std::map<std::string, std::string> & aFields, const XPages & aPages);
    static XStackLayout FromOme(const XOmeMetadata & aMetadata, const XPages & aPages);

    UInt32 GetChannelCount() const { return itsChannels; }
    UInt32 GetSliceCount() const { return itsSlices; }
    UInt32 GetTimeCount() const { return itsTimes; }
    bool IsOneVolume() const { return itsChannels == 1 && itsTimes == 1; }
    // The directory number of the page that holds this plane.
    UInt32 GetDirectory(UInt32 aChannel, UInt32 aSlice, UInt32 aTime) const;
    // "2 channels x 3 time points of 5 slices" (the counts that are above 1, and the slices).
    std::string Describe() const;

private:
    XStackLayout(UInt32 aChannels, UInt32 aSlices, UInt32 aTimes, std::vector<UInt32> aDirectories);

    UInt32 itsChannels;
    UInt32 itsSlices;
    UInt32 itsTimes;
    std::vector<UInt32> itsDirectories; // channel fastest, then slice, then time point
};
