#include "XString.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <map>
#include <mutex>

#include "XException.h"
#include "XStream.h"

const XString XString::kEmptyString;

namespace
{
constexpr char32_t kReplacement = 0xFFFD;

// Decodes the character at aText[anIndex] and advances anIndex past it. Bytes that do not form
// a valid UTF-8 sequence are taken one at a time as U+FFFD.
char32_t DecodeNext(const std::string & aText, std::size_t & anIndex)
{
    auto byte = static_cast<unsigned char>(aText[anIndex]);
    if (byte < 0x80)
    {
        ++anIndex;
        return byte;
    }
    std::size_t length = byte >= 0xF0 && byte < 0xF8 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC2 ? 2 : 0;
    if (byte >= 0xF8)
        length = 0;
    if (length == 0 || anIndex + length > aText.size())
    {
        ++anIndex;
        return kReplacement;
    }
    char32_t code = byte & (0x7F >> length);
    for (std::size_t i = 1; i < length; ++i)
    {
        auto next = static_cast<unsigned char>(aText[anIndex + i]);
        if ((next & 0xC0) != 0x80)
        {
            ++anIndex;
            return kReplacement;
        }
        code = (code << 6) | (next & 0x3F);
    }
    static constexpr char32_t kSmallest[5] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < kSmallest[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
    {
        ++anIndex;
        return kReplacement;
    }
    anIndex += length;
    return code;
}

void Encode(char32_t aCode, std::string & anOut)
{
    if (aCode > 0x10FFFF || (aCode >= 0xD800 && aCode <= 0xDFFF))
        aCode = kReplacement;
    if (aCode < 0x80)
    {
        anOut += static_cast<char>(aCode);
    }
    else if (aCode < 0x800)
    {
        anOut += static_cast<char>(0xC0 | (aCode >> 6));
        anOut += static_cast<char>(0x80 | (aCode & 0x3F));
    }
    else if (aCode < 0x10000)
    {
        anOut += static_cast<char>(0xE0 | (aCode >> 12));
        anOut += static_cast<char>(0x80 | ((aCode >> 6) & 0x3F));
        anOut += static_cast<char>(0x80 | (aCode & 0x3F));
    }
    else
    {
        anOut += static_cast<char>(0xF0 | (aCode >> 18));
        anOut += static_cast<char>(0x80 | ((aCode >> 12) & 0x3F));
        anOut += static_cast<char>(0x80 | ((aCode >> 6) & 0x3F));
        anOut += static_cast<char>(0x80 | (aCode & 0x3F));
    }
}

std::string FromWide(const wchar_t * aText, std::size_t aLength)
{
    std::string out;
    out.reserve(aLength);
    for (std::size_t i = 0; i < aLength; ++i)
        Encode(static_cast<char32_t>(aText[i]), out);
    return out;
}

std::mutex & TableMutex()
{
    static std::mutex sMutex;
    return sMutex;
}

std::map<UInt32, std::string> & StringTable()
{
    static std::map<UInt32, std::string> sTable;
    return sTable;
}

// The text without leading and trailing blanks, for number parsing.
std::string Trimmed(const std::string & aText)
{
    const char * blanks = " \t\r\n";
    std::size_t first = aText.find_first_not_of(blanks);
    if (first == std::string::npos)
        return std::string();
    return aText.substr(first, aText.find_last_not_of(blanks) - first + 1);
}
} // namespace

XString::XString(const char * aText) : itsText(aText != nullptr ? aText : "") {}
XString::XString(const std::string & aText) : itsText(aText) {}
XString::XString(std::string && aText) : itsText(std::move(aText)) {}
XString::XString(std::string_view aText) : itsText(aText) {}
XString::XString(const wchar_t * aText)
    : itsText(aText != nullptr ? FromWide(aText, std::wcslen(aText)) : std::string())
{
}
XString::XString(const std::wstring & aText) : itsText(FromWide(aText.data(), aText.size())) {}

XString::XString(XStream & aStream)
{
    XVersion word = ReadClassVersion(aStream, XVersion());
    CheckClassVersion(word, GetVersion());
    itsText = aStream.ReadString().itsText;
}

XString::~XString() = default;

std::wstring XString::GetWideString() const
{
    std::wstring out;
    out.reserve(itsText.size());
    for (std::size_t i = 0; i < itsText.size();)
        out += static_cast<wchar_t>(DecodeNext(itsText, i));
    return out;
}

UInt64 XString::GetCharCount() const
{
    UInt64 count = 0;
    for (std::size_t i = 0; i < itsText.size(); ++count)
        DecodeNext(itsText, i);
    return count;
}

char32_t XString::GetNthChar(UInt64 anIndex) const
{
    std::size_t i = 0;
    for (UInt64 n = 0; i < itsText.size(); ++n)
    {
        char32_t code = DecodeNext(itsText, i);
        if (n == anIndex)
            return code;
    }
    return 0;
}

XString & XString::operator+=(const XString & aText)
{
    itsText += aText.itsText;
    return *this;
}

XString & XString::operator+=(const char * aText)
{
    if (aText != nullptr)
        itsText += aText;
    return *this;
}

XString & XString::operator+=(char aChar)
{
    itsText += aChar;
    return *this;
}

UInt32 XString::Replace(const XString & aWhat, const XString & aWith)
{
    if (aWhat.itsText.empty())
        return 0;
    UInt32 count = 0;
    std::string out;
    std::size_t from = 0;
    for (std::size_t at = itsText.find(aWhat.itsText); at != std::string::npos;
         at = itsText.find(aWhat.itsText, from))
    {
        out.append(itsText, from, at - from);
        out += aWith.itsText;
        from = at + aWhat.itsText.size();
        ++count;
    }
    out.append(itsText, from, std::string::npos);
    itsText = std::move(out);
    return count;
}

void XString::StripLast(UInt64 aCount)
{
    for (UInt64 n = 0; n < aCount && !itsText.empty(); ++n)
    {
        // Step back over continuation bytes to the lead byte of the last character.
        std::size_t end = itsText.size() - 1;
        while (end > 0 && (static_cast<unsigned char>(itsText[end]) & 0xC0) == 0x80 &&
               itsText.size() - end < 4)
            --end;
        itsText.erase(end);
    }
}

bool XString::LoadStringA(UInt32 anID)
{
    std::lock_guard<std::mutex> guard(TableMutex());
    auto found = StringTable().find(anID);
    if (found == StringTable().end())
    {
        itsText.clear();
        return false;
    }
    itsText = found->second;
    return true;
}

void XString::AddStringToTable(UInt32 anID, const XString & aText)
{
    std::lock_guard<std::mutex> guard(TableMutex());
    StringTable()[anID] = aText.itsText;
}

UInt32 XString::GetUInt32() const
{
    std::string text = Trimmed(itsText);
    if (text.empty() || text[0] == '-' || text[0] == '+')
        throw XException(kErrBadArgument, "not an unsigned number: \"" + itsText + "\"");
    errno = 0;
    char * end = nullptr;
    unsigned long long value = std::strtoull(text.c_str(), &end, 10);
    if (errno != 0 || *end != '\0' || value > 0xFFFFFFFFull)
        throw XException(kErrBadArgument, "not a 32-bit unsigned number: \"" + itsText + "\"");
    return static_cast<UInt32>(value);
}

double XString::GetSFloat64() const
{
    std::string text = Trimmed(itsText);
    errno = 0;
    char * end = nullptr;
    double value = text.empty() ? 0.0 : std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || errno == ERANGE)
        throw XException(kErrBadArgument, "not a number: \"" + itsText + "\"");
    return value;
}

XString XString::FromUInt64(UInt64 aValue)
{
    return XString(std::to_string(aValue));
}

XString XString::FromDouble(double aValue)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.17g", aValue);
    return XString(text);
}

void XString::ReadStream2(XStream & aStream, XOptions)
{
    ReadLevelVersion(aStream, GetVersion());
    itsText = aStream.ReadString().itsText;
}

void XString::WriteStream2(XStream & aStream, XOptions) const
{
    aStream.WriteVersion(GetVersion());
    aStream.WriteString(*this);
}

XString operator+(const XString & aLeft, const XString & aRight)
{
    XString out(aLeft);
    out += aRight;
    return out;
}

XString operator+(const XString & aLeft, const char * aRight)
{
    XString out(aLeft);
    out += aRight;
    return out;
}

XString operator+(const char * aLeft, const XString & aRight)
{
    XString out(aLeft);
    out += aRight;
    return out;
}

bool operator==(const XString & aLeft, const XString & aRight)
{
    return aLeft.GetStdString() == aRight.GetStdString();
}

bool operator==(const XString & aLeft, const char * aRight)
{
    return aLeft.GetStdString() == (aRight != nullptr ? aRight : "");
}

bool operator==(const char * aLeft, const XString & aRight)
{
    return aRight == aLeft;
}

bool operator!=(const XString & aLeft, const XString & aRight)
{
    return !(aLeft == aRight);
}

bool operator!=(const XString & aLeft, const char * aRight)
{
    return !(aLeft == aRight);
}

bool operator<(const XString & aLeft, const XString & aRight)
{
    return aLeft.GetStdString() < aRight.GetStdString();
}
