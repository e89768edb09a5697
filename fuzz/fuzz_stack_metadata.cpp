// libFuzzer target: outside bytes read as the description of a TIFF stack's first page, OME-XML
// or ImageJ's key=value lines, and laid over a stack of 1 to 64 pages (the first byte) as the
// import would lay them. Damaged metadata must end in an XCommandError; a crash, a sanitizer
// report, an XInternalError, a hang or a huge allocation is a finding.

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <sstream>
#include <string>

#include "XCommandError.h"
#include "XOmeMetadata.h"
#include "XStackLayout.h"

namespace
{
void Walk(const XStackLayout & aLayout)
{
    (void)aLayout.Describe();
    for (UInt32 t = 0; t < aLayout.GetTimeCount(); ++t)
        for (UInt32 z = 0; z < aLayout.GetSliceCount(); ++z)
            for (UInt32 c = 0; c < aLayout.GetChannelCount(); ++c)
                (void)aLayout.GetDirectory(c, z, t);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t * aData, size_t aSize)
{
    if (aSize == 0)
        return 0;
    XStackLayout::XPages pages;
    for (UInt32 page = 0; page < UInt32(aData[0] % 64) + 1; ++page)
        pages.itsDirectories.push_back(page + UInt32(aData[0] / 64)); // from directory 0 to 3 on
    pages.itsWidth = 37;
    pages.itsHeight = 23;
    pages.itsSamplesPerPixel = aData[0] & 1 ? 3 : 1;
    pages.itsFileName = "stack.ome.tif";
    const std::string description(reinterpret_cast<const char *>(aData + 1), aSize - 1);
    try
    {
        if (description.compare(0, 7, "ImageJ=") == 0)
        {
            std::map<std::string, std::string> fields;
            std::istringstream lines(description);
            std::string line;
            while (std::getline(lines, line))
                if (line.find('=') != std::string::npos)
                    fields[line.substr(0, line.find('='))] = line.substr(line.find('=') + 1);
            Walk(XStackLayout::FromImageJ(fields, pages));
            return 0;
        }
        std::optional<XOmeMetadata> metadata = XOmeMetadata::Parse(description);
        if (!metadata)
            return 0;
        // Pages of the size that the metadata tells, so that the layout is looked at too.
        pages.itsWidth = metadata->itsSizeX;
        pages.itsHeight = metadata->itsSizeY;
        Walk(XStackLayout::FromOme(*metadata, pages));
    }
    catch (const XCommandError &)
    {
    }
    return 0;
}
