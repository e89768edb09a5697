#pragma once
// What an OME-TIFF file says of itself in the OME-XML of its first page's description: the
// first image's size along each axis, the order of its planes, its voxel size in micrometres,
// and which TIFF pages (IFDs) hold which planes. Elements and attributes are matched by their
// local names, so that every schema version and any namespace prefix reads alike. Further
// images of the file (series) are left out.
//
// The XML is read with expat; entities, character references and encodings are its business.
// A description that is no XML, or whose root element is not OME, is not OME-XML; damaged
// OME-XML, or OME-XML whose required attributes are missing or out of range, is refused.

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "XTypes.h"

class XOmeMetadata
{
public:
    // One TiffData element: PlaneCount pages from IFD hold the planes from (FirstZ, FirstC,
    // FirstT) on, in the image's dimension order. Missing IFD and PlaneCount stay empty.
    struct XTiffData
    {
        std::optional<UInt32> itsIFD;
        UInt32 itsFirstZ = 0;
        UInt32 itsFirstC = 0;
        UInt32 itsFirstT = 0;
        std::optional<UInt32> itsPlaneCount;
        std::string itsFileName; // of its UUID child: the file that holds the pages, when named
    };

    // Empty when aDescription is not OME-XML; XCommandError, whose text tells what is wrong and
    // reads after "cannot read 'FILE': ", for damaged OME-XML.
    static std::optional<XOmeMetadata> Parse(const std::string & aDescription);

    std::string itsDimensionOrder; // XYZCT, XYZTC, XYCTZ, XYCZT, XYTCZ or XYTZC
    UInt32 itsSizeX = 1;
    UInt32 itsSizeY = 1;
    UInt32 itsSizeZ = 1;
    UInt32 itsSizeC = 1;
    UInt32 itsSizeT = 1;
    // PhysicalSizeX, Y and Z in micrometres; empty when absent or in pixels.
    std::array<std::optional<double>, 3> itsPhysicalSize;
    std::vector<XTiffData> itsTiffData;
    // The metadata file named by BinaryOnly: the image is described in another file.
    std::optional<std::string> itsMetadataFile;

    // Micrometres in aValue of the OME length unit aUnit; empty for "pixel" and "reference
    // frame", which have no length. XCommandError for any other unit.
    static std::optional<double> ToMicrometres(double aValue, const std::string & aUnit);
};
