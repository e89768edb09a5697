#include "XOmeMetadata.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <expat.h>
#include <limits>
#include <memory>

#include "XCommandError.h"

namespace
{
// Expat gives namespaced names as "URI|local".
constexpr char kNamespaceSeparator = '|';

// The elements that matter, by where they stand; everything else is kOther.
enum XElement
{
    kOther,
    kRoot,
    kImage,
    kPixels,
    kTiffData,
    kUUID
};

// A length unit of OME: micrometres = value * itsTimes / itsOver (one of them 1 for most, so
// that a metric value is rounded once).
struct XLengthUnit
{
    const char * itsName;
    double itsTimes;
    double itsOver;
};

constexpr XLengthUnit kLengthUnits[] = {
    {"Ym", 1e30, 1}, {"Zm", 1e27, 1}, {"Em", 1e24, 1}, {"Pm", 1e21, 1}, {"Tm", 1e18, 1}, {"Gm", 1e15, 1},
    {"Mm", 1e12, 1}, {"km", 1e9, 1}, {"hm", 1e8, 1}, {"dam", 1e7, 1}, {"m", 1e6, 1}, {"dm", 1e5, 1},
    {"cm", 1e4, 1}, {"mm", 1e3, 1}, {"\u00B5m", 1, 1}, {"\u03BCm", 1, 1}, {"um", 1, 1}, {"nm", 1, 1e3},
    {"pm", 1, 1e6}, {"fm", 1, 1e9}, {"am", 1, 1e12}, {"zm", 1, 1e15}, {"ym", 1, 1e18},
    {"\u00C5", 1, 1e4}, {"\u212B", 1, 1e4}, // the angstrom, as a letter and as its own sign
    {"thou", 25.4, 1}, {"li", 25400, 12}, {"in", 25400, 1}, {"ft", 304800, 1}, {"yd", 914400, 1},
    {"mi", 1609344000, 1}, {"pt", 25400, 72}, {"ua", 1.495978707e17, 1}, {"ly", 9.4607304725808e21, 1},
    {"pc", 3.0856775814913673e22, 1}};

const char * LocalName(const XML_Char * aName)
{
    const char * separator = std::strrchr(aName, kNamespaceSeparator);
    return separator == nullptr ? aName : separator + 1;
}

// XML's white space around a value.
std::string Trimmed(const char * aText)
{
    std::string text(aText);
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos)
        return "";
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

class XParser
{
public:
    XParser() : itsParser(XML_ParserCreateNS(nullptr, kNamespaceSeparator))
    {
        if (itsParser == nullptr)
            throw std::bad_alloc();
        XML_SetUserData(itsParser, this);
        XML_SetElementHandler(itsParser, &XParser::Start, &XParser::End);
    }
    XParser(const XParser &) = delete;
    XParser & operator=(const XParser &) = delete;
    ~XParser() { XML_ParserFree(itsParser); }

    std::optional<XOmeMetadata> Parse(const std::string & aText)
    {
        const bool parsed = XML_Parse(itsParser, aText.data(), int(aText.size()), 1) == XML_STATUS_OK;
        if (itsNotOme || (!parsed && !itsIsOme))
            return std::nullopt;
        if (!itsRefusal.empty())
            throw XCommandError("its OME-XML " + itsRefusal);
        if (!parsed)
            throw XCommandError(std::string("its OME-XML is damaged: ") + XML_ErrorString(XML_GetErrorCode(itsParser)) +
                                " at line " + std::to_string(XML_GetCurrentLineNumber(itsParser)));
        if (!itsHasPixels && !itsMetadata.itsMetadataFile)
            throw XCommandError("its OME-XML describes no image");
        return itsMetadata;
    }

private:
    static void Start(void * aSelf, const XML_Char * aName, const XML_Char ** anAttributes)
    {
        static_cast<XParser *>(aSelf)->StartElement(LocalName(aName), anAttributes);
    }
    static void End(void * aSelf, const XML_Char *) { static_cast<XParser *>(aSelf)->itsElements.pop_back(); }

    void StartElement(const char * aName, const XML_Char ** anAttributes)
    {
        itsAttributes = anAttributes;
        const XElement parent = itsElements.empty() ? kOther : itsElements.back();
        XElement element = kOther;
        if (itsElements.empty())
        {
            itsIsOme = std::strcmp(aName, "OME") == 0;
            itsNotOme = !itsIsOme;
            if (itsNotOme)
                XML_StopParser(itsParser, XML_FALSE);
            element = kRoot;
        }
        else if (parent == kRoot && std::strcmp(aName, "Image") == 0 && ++itsImages == 1)
            element = kImage;
        else if (parent == kRoot && std::strcmp(aName, "BinaryOnly") == 0)
            itsMetadata.itsMetadataFile = Text("MetadataFile").value_or("");
        else if (parent == kImage && std::strcmp(aName, "Pixels") == 0 && !itsHasPixels)
        {
            element = kPixels;
            itsHasPixels = true;
            ReadPixels();
        }
        else if (parent == kPixels && std::strcmp(aName, "TiffData") == 0)
        {
            element = kTiffData;
            ReadTiffData();
        }
        else if (parent == kTiffData && std::strcmp(aName, "UUID") == 0)
        {
            element = kUUID;
            itsMetadata.itsTiffData.back().itsFileName = Text("FileName").value_or("");
        }
        itsElements.push_back(element);
    }

    void ReadPixels()
    {
        itsMetadata.itsDimensionOrder = Text("DimensionOrder").value_or("");
        static const char * const kOrders[] = {"XYZCT", "XYZTC", "XYCTZ", "XYCZT", "XYTCZ", "XYTZC"};
        bool known = false;
        for (const char * order : kOrders)
            known = known || itsMetadata.itsDimensionOrder == order;
        if (!known)
            Refuse("gives Pixels the dimension order '" + itsMetadata.itsDimensionOrder +
                   "' (XYZCT, XYZTC, XYCTZ, XYCZT, XYTCZ or XYTZC)");
        itsMetadata.itsSizeX = Count("SizeX", 1).value_or(0);
        itsMetadata.itsSizeY = Count("SizeY", 1).value_or(0);
        itsMetadata.itsSizeZ = Count("SizeZ", 1).value_or(0);
        itsMetadata.itsSizeC = Count("SizeC", 1).value_or(0);
        itsMetadata.itsSizeT = Count("SizeT", 1).value_or(0);
        for (const char * name : {"SizeX", "SizeY", "SizeZ", "SizeC", "SizeT"})
        {
            if (!Text(name))
                Refuse(std::string("gives Pixels no ") + name);
        }
        const char * const axes[] = {"PhysicalSizeX", "PhysicalSizeY", "PhysicalSizeZ"};
        for (std::size_t axis = 0; axis < 3; ++axis)
            itsMetadata.itsPhysicalSize[axis] = Length(axes[axis]);
    }

    void ReadTiffData()
    {
        XOmeMetadata::XTiffData data;
        data.itsIFD = Count("IFD", 0);
        data.itsFirstZ = Count("FirstZ", 0).value_or(0);
        data.itsFirstC = Count("FirstC", 0).value_or(0);
        data.itsFirstT = Count("FirstT", 0).value_or(0);
        data.itsPlaneCount = Count("PlaneCount", 0);
        itsMetadata.itsTiffData.push_back(data);
    }

    std::optional<std::string> Text(const char * aName) const
    {
        for (const XML_Char ** attribute = itsAttributes; *attribute != nullptr; attribute += 2)
        {
            if (std::strcmp(LocalName(attribute[0]), aName) == 0)
                return std::string(attribute[1]);
        }
        return std::nullopt;
    }

    // A whole number from aLowest, when the attribute is there.
    std::optional<UInt32> Count(const char * aName, UInt32 aLowest)
    {
        const std::optional<std::string> text = Text(aName);
        if (!text)
            return std::nullopt;
        const std::string value = Trimmed(text->c_str());
        UInt32 number = 0;
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
        if (value.empty() || error != std::errc() || end != value.data() + value.size() || number < aLowest)
        {
            Refuse(std::string("gives ") + aName + " as '" + *text + "', not a whole number from " +
                   std::to_string(aLowest));
            return std::nullopt;
        }
        return number;
    }

    // A positive length in micrometres from the attribute and its unit attribute (micrometres
    // when it has none).
    std::optional<double> Length(const char * aName)
    {
        const std::optional<std::string> text = Text(aName);
        if (!text)
            return std::nullopt;
        std::string value = Trimmed(text->c_str());
        if (!value.empty() && value[0] == '+')
            value.erase(0, 1);
        double number = 0.0;
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
        if (value.empty() || error != std::errc() || end != value.data() + value.size() || !std::isfinite(number) ||
            number <= 0.0)
        {
            Refuse(std::string("gives ") + aName + " as '" + *text + "', not a positive number");
            return std::nullopt;
        }
        try
        {
            return XOmeMetadata::ToMicrometres(number, Text((std::string(aName) + "Unit").c_str()).value_or("\u00B5m"));
        }
        catch (const XCommandError & anError)
        {
            Refuse(std::string("gives ") + aName + " in " + anError.what());
            return std::nullopt;
        }
    }

    // Keeps the first refusal and stops the parser: exceptions do not pass through expat.
    void Refuse(const std::string & aText)
    {
        if (itsRefusal.empty())
            itsRefusal = aText;
        XML_StopParser(itsParser, XML_FALSE);
    }

    XML_Parser itsParser;
    const XML_Char ** itsAttributes = nullptr;
    std::vector<XElement> itsElements;
    XOmeMetadata itsMetadata;
    std::string itsRefusal;
    bool itsIsOme = false;
    bool itsNotOme = false;
    bool itsHasPixels = false;
    UInt32 itsImages = 0;
};
} // namespace

std::optional<XOmeMetadata> XOmeMetadata::Parse(const std::string & aDescription)
{
    const std::size_t start = aDescription.find_first_not_of(" \t\r\n");
    if (start == std::string::npos || aDescription[start] != '<' ||
        aDescription.size() > std::size_t(std::numeric_limits<int>::max()))
        return std::nullopt;
    XParser parser;
    return parser.Parse(aDescription);
}

std::optional<double> XOmeMetadata::ToMicrometres(double aValue, const std::string & aUnit)
{
    if (aUnit == "pixel" || aUnit == "reference frame")
        return std::nullopt;
    for (const XLengthUnit & unit : kLengthUnits)
    {
        if (aUnit == unit.itsName)
            return unit.itsTimes == 1 ? aValue / unit.itsOver : aValue * unit.itsTimes / unit.itsOver;
    }
    throw XCommandError("the unknown unit '" + aUnit + "'");
}
