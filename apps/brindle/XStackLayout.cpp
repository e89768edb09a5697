#include "XStackLayout.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "XAssert.h"
#include "XCommandError.h"
#include "XOmeMetadata.h"

namespace
{
// A count of the description, or 0 when it is missing or no 32-bit whole number.
UInt64 Count(const std::map<std::string, std::string> & aFields, const char * aKey)
{
    const auto found = aFields.find(aKey);
    if (found == aFields.end())
        return 0;
    const std::string & text = found->second;
    UInt32 value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? value : 0;
}

std::string Plural(UInt64 aCount, const char * aWord)
{
    return std::to_string(aCount) + " " + aWord + (aCount == 1 ? "" : "s");
}

std::string Counts(UInt64 aChannels, UInt64 aSlices, UInt64 aTimes)
{
    return Plural(aChannels, "channel") + " x " + Plural(aSlices, "slice") + " x " + Plural(aTimes, "time point");
}

// Whether more planes are claimed than aPages, without overflow.
bool MorePlanesThan(UInt64 aPages, UInt64 aChannels, UInt64 aSlices, UInt64 aTimes)
{
    return aChannels == 0 || aSlices == 0 || aTimes == 0 || aChannels > aPages || aSlices > aPages / aChannels ||
           aTimes > aPages / (aChannels * aSlices);
}
} // namespace

XStackLayout::XStackLayout(UInt32 aChannels, UInt32 aSlices, UInt32 aTimes, std::vector<UInt32> aDirectories)
    : itsChannels(aChannels), itsSlices(aSlices), itsTimes(aTimes), itsDirectories(std::move(aDirectories))
{
    XAssertText(UInt64(aChannels) * aSlices * aTimes == itsDirectories.size() && !itsDirectories.empty(),
                "a page for every plane");
}

XStackLayout XStackLayout::MakePlain(const XPages & aPages)
{
    return XStackLayout(1, UInt32(aPages.itsDirectories.size()), 1, aPages.itsDirectories);
}

XStackLayout XStackLayout::FromImageJ(const std::map<std::string, std::string> & aFields, const XPages & aPages)
{
    const UInt64 channels = std::max<UInt64>(Count(aFields, "channels"), 1);
    const UInt64 times = std::max<UInt64>(Count(aFields, "frames"), 1);
    const UInt64 pages = aPages.itsDirectories.size();
    const UInt64 images = Count(aFields, "images");
    if (pages == 1 && images > 1)
        throw XCommandError("its ImageJ description tells of " + std::to_string(images) +
                            " images, but it has one page (ImageJ's form of stacks past 4 GiB, which is not "
                            "supported)");
    if (channels == 1 && times == 1)
        return MakePlain(aPages);
    const UInt64 slices = std::max<UInt64>(Count(aFields, "slices"), 1);
    if (MorePlanesThan(pages, channels, slices, times) || channels * slices * times != pages)
        throw XCommandError("its ImageJ description tells of " + Counts(channels, slices, times) + ", but it has " +
                            Plural(pages, "page"));
    return XStackLayout(UInt32(channels), UInt32(slices), UInt32(times), aPages.itsDirectories);
}

XStackLayout XStackLayout::FromOme(const XOmeMetadata & aMetadata, const XPages & aPages)
{
    if (aMetadata.itsMetadataFile)
        throw XCommandError("its OME-XML leaves the description of its images to another file ('" +
                            *aMetadata.itsMetadataFile + "'), which is not supported");
    if (aMetadata.itsSizeX != aPages.itsWidth || aMetadata.itsSizeY != aPages.itsHeight)
        throw XCommandError("its OME-XML tells of " + std::to_string(aMetadata.itsSizeX) + " x " +
                            std::to_string(aMetadata.itsSizeY) + " planes, but its pages are " +
                            std::to_string(aPages.itsWidth) + " x " + std::to_string(aPages.itsHeight));
    // Colour pages hold their channels as samples.
    const UInt32 samples = aPages.itsSamplesPerPixel;
    const UInt64 channels = samples > 1 && aMetadata.itsSizeC % samples == 0 ? aMetadata.itsSizeC / samples
                                                                             : aMetadata.itsSizeC;
    const UInt64 slices = aMetadata.itsSizeZ;
    const UInt64 times = aMetadata.itsSizeT;
    const UInt64 pages = aPages.itsDirectories.size();
    if (MorePlanesThan(pages, channels, slices, times))
        throw XCommandError("its OME-XML tells of " + Counts(channels, slices, times) + ", but it has " +
                            Plural(pages, "page"));
    const UInt64 planes = channels * slices * times;

    // Plane numbers of the dimension order (its third letter fastest) against ours (channel
    // fastest, then slice, then time point).
    const std::string order = aMetadata.itsDimensionOrder.substr(2);
    auto size = [&](char anAxis) { return anAxis == 'C' ? channels : anAxis == 'Z' ? slices : times; };
    auto ours = [&](UInt64 aPlane) {
        UInt64 at[3] = {}; // channel, slice, time point
        for (char axis : order)
        {
            at[axis == 'C' ? 0 : axis == 'Z' ? 1 : 2] = aPlane % size(axis);
            aPlane /= size(axis);
        }
        return at[0] + channels * (at[1] + slices * at[2]);
    };
    auto theirs = [&](UInt64 aChannel, UInt64 aSlice, UInt64 aTime) {
        UInt64 plane = 0;
        for (auto axis = order.rbegin(); axis != order.rend(); ++axis)
            plane = plane * size(*axis) + (*axis == 'C' ? aChannel : *axis == 'Z' ? aSlice : aTime);
        return plane;
    };

    std::vector<XOmeMetadata::XTiffData> blocks = aMetadata.itsTiffData;
    if (blocks.empty())
        blocks.emplace_back(); // the planes in order from the first page
    constexpr UInt64 kNoPage = ~UInt64(0);
    std::vector<UInt64> directories(planes, kNoPage);
    for (const XOmeMetadata::XTiffData & block : blocks)
    {
        if (!block.itsFileName.empty() && block.itsFileName != aPages.itsFileName)
            throw XCommandError("its OME-XML puts planes into another file ('" + block.itsFileName +
                                "'); sets of several files are not supported");
        if (block.itsFirstC >= channels || block.itsFirstZ >= slices || block.itsFirstT >= times)
            throw XCommandError("its OME-XML puts planes from channel " + std::to_string(block.itsFirstC) +
                                ", slice " + std::to_string(block.itsFirstZ) + ", time point " +
                                std::to_string(block.itsFirstT) + ", outside its " + Counts(channels, slices, times));
        const UInt64 first = theirs(block.itsFirstC, block.itsFirstZ, block.itsFirstT);
        const UInt64 count = std::min<UInt64>(block.itsPlaneCount.value_or(block.itsIFD ? 1 : planes), planes - first);
        for (UInt64 i = 0; i < count; ++i)
        {
            const UInt64 directory = block.itsIFD.value_or(0) + i;
            if (!std::binary_search(aPages.itsDirectories.begin(), aPages.itsDirectories.end(), directory))
                throw XCommandError("its OME-XML puts a plane on IFD " + std::to_string(directory) +
                                    ", which is not a full-size page of the file");
            directories[ours(first + i)] = directory;
        }
    }
    std::vector<UInt32> found(directories.size());
    for (UInt64 plane = 0; plane < planes; ++plane)
    {
        if (directories[plane] == kNoPage)
            throw XCommandError("its OME-XML gives no page for channel " + std::to_string(plane % channels) +
                                ", slice " + std::to_string(plane / channels % slices) + ", time point " +
                                std::to_string(plane / channels / slices));
        found[plane] = UInt32(directories[plane]);
    }
    return XStackLayout(UInt32(channels), UInt32(slices), UInt32(times), std::move(found));
}

UInt32 XStackLayout::GetDirectory(UInt32 aChannel, UInt32 aSlice, UInt32 aTime) const
{
    XAssertText(aChannel < itsChannels && aSlice < itsSlices && aTime < itsTimes, "a plane of the stack");
    return itsDirectories[aChannel + UInt64(itsChannels) * (aSlice + UInt64(itsSlices) * aTime)];
}

std::string XStackLayout::Describe() const
{
    std::string text;
    if (itsChannels > 1)
        text = Plural(itsChannels, "channel");
    if (itsTimes > 1)
        text += (text.empty() ? "" : " x ") + Plural(itsTimes, "time point");
    return text.empty() ? Plural(itsSlices, "slice") : text + " of " + Plural(itsSlices, "slice") + " each";
}
