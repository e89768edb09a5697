#include "XPrefsSaver.h"

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "XException.h"
#include "XUserFolders.h"

namespace
{
const char kHeader[] = "# Brindle preferences, format 1\n";

// Escapes aText; anIsName also escapes the separators of sections and keys.
std::string Escape(const std::string & aText, bool anIsName)
{
    static const char kHex[] = "0123456789ABCDEF";
    std::string escaped;
    escaped.reserve(aText.size());
    for (char c : aText)
    {
        unsigned char byte = static_cast<unsigned char>(c);
        if (c == '\\')
            escaped += "\\\\";
        else if (c == '\n')
            escaped += "\\n";
        else if (c == '\r')
            escaped += "\\r";
        else if (c == '\t')
            escaped += "\\t";
        else if (byte < 0x20 || byte == 0x7F)
        {
            escaped += "\\x";
            escaped += kHex[byte >> 4];
            escaped += kHex[byte & 15];
        }
        else if (anIsName && (c == '/' || c == '=' || c == '#'))
        {
            escaped += '\\';
            escaped += c;
        }
        else
            escaped += c;
    }
    return escaped;
}

int HexValue(char aDigit)
{
    if (aDigit >= '0' && aDigit <= '9')
        return aDigit - '0';
    if (aDigit >= 'A' && aDigit <= 'F')
        return aDigit - 'A' + 10;
    if (aDigit >= 'a' && aDigit <= 'f')
        return aDigit - 'a' + 10;
    return -1;
}

// Reads an escaped field of aLine from aPosition up to the first unescaped aStop (or to the end
// when aStop is 0). False for a bad escape or a missing stop; aPosition ends past the stop.
bool Unescape(const std::string & aLine, std::size_t & aPosition, char aStop, std::string & outText)
{
    outText.clear();
    while (aPosition < aLine.size())
    {
        char c = aLine[aPosition++];
        if (c == aStop && aStop != 0)
            return true;
        if (c != '\\')
        {
            outText += c;
            continue;
        }
        if (aPosition >= aLine.size())
            return false;
        char code = aLine[aPosition++];
        switch (code)
        {
        case '\\':
        case '/':
        case '=':
        case '#':
            outText += code;
            break;
        case 'n':
            outText += '\n';
            break;
        case 'r':
            outText += '\r';
            break;
        case 't':
            outText += '\t';
            break;
        case 'x':
        {
            if (aPosition + 2 > aLine.size())
                return false;
            int high = HexValue(aLine[aPosition]);
            int low = HexValue(aLine[aPosition + 1]);
            if (high < 0 || low < 0)
                return false;
            outText += static_cast<char>(high * 16 + low);
            aPosition += 2;
            break;
        }
        default:
            return false;
        }
    }
    return aStop == 0;
}

[[noreturn]] void Fail(const std::string & aWhat, const std::string & aPath, int anError)
{
    throw XException(kErrPreferences, aWhat + " " + aPath + ": " + std::strerror(anError));
}

template <typename T>
bool ParseNumber(const std::string & aText, T & outValue)
{
    const char * end = aText.data() + aText.size();
    auto [stop, error] = std::from_chars(aText.data(), end, outValue);
    return error == std::errc() && stop == end && !aText.empty();
}

template <typename T>
std::string FormatNumber(T aValue)
{
    char text[64];
    auto [end, error] = std::to_chars(text, text + sizeof(text), aValue);
    return error == std::errc() ? std::string(text, end) : std::string();
}
} // namespace

XPrefsSaver::XPrefsSaver(const XFileSpec & aFile) : itsFile(aFile) {}

XPrefsSaver::~XPrefsSaver() = default;

void XPrefsSaver::SetText(const XString & aSection, const XString & aKey, std::string aValue)
{
    std::lock_guard<std::mutex> guard(itsMutex);
    std::string & value = itsSections[aSection.GetStdString()][aKey.GetStdString()];
    if (value != aValue)
        ++itsChangeCount;
    value = std::move(aValue);
}

bool XPrefsSaver::FindText(const XString & aSection, const XString & aKey, std::string & outValue) const
{
    std::lock_guard<std::mutex> guard(itsMutex);
    auto section = itsSections.find(aSection.GetStdString());
    if (section == itsSections.end())
        return false;
    auto value = section->second.find(aKey.GetStdString());
    if (value == section->second.end())
        return false;
    outValue = value->second;
    return true;
}

void XPrefsSaver::SetString(const XString & aSection, const XString & aKey, const XString & aValue)
{
    SetText(aSection, aKey, aValue.GetStdString());
}

template <typename T>
T XPrefsSaver::GetNumber(const XString & aSection, const XString & aKey, T aDefault) const
{
    std::string text;
    T value{};
    return FindText(aSection, aKey, text) && ParseNumber(text, value) ? value : aDefault;
}

XString XPrefsSaver::GetString(const XString & aSection, const XString & aKey, const XString & aDefault) const
{
    std::string value;
    return FindText(aSection, aKey, value) ? XString(std::move(value)) : aDefault;
}

void XPrefsSaver::SetUInt32(const XString & aSection, const XString & aKey, UInt32 aValue)
{
    SetText(aSection, aKey, FormatNumber(aValue));
}

UInt32 XPrefsSaver::GetUInt32(const XString & aSection, const XString & aKey, UInt32 aDefault) const
{
    return GetNumber(aSection, aKey, aDefault);
}

void XPrefsSaver::SetSInt64(const XString & aSection, const XString & aKey, SInt64 aValue)
{
    SetText(aSection, aKey, FormatNumber(aValue));
}

SInt64 XPrefsSaver::GetSInt64(const XString & aSection, const XString & aKey, SInt64 aDefault) const
{
    return GetNumber(aSection, aKey, aDefault);
}

void XPrefsSaver::SetDouble(const XString & aSection, const XString & aKey, double aValue)
{
    SetText(aSection, aKey, FormatNumber(aValue));
}

double XPrefsSaver::GetDouble(const XString & aSection, const XString & aKey, double aDefault) const
{
    return GetNumber(aSection, aKey, aDefault);
}

void XPrefsSaver::SetBool(const XString & aSection, const XString & aKey, bool aValue)
{
    SetText(aSection, aKey, aValue ? "true" : "false");
}

bool XPrefsSaver::GetBool(const XString & aSection, const XString & aKey, bool aDefault) const
{
    std::string text;
    if (!FindText(aSection, aKey, text))
        return aDefault;
    if (text == "true" || text == "1")
        return true;
    if (text == "false" || text == "0")
        return false;
    return aDefault;
}

void XPrefsSaver::SetBlob(const XString & aSection, const XString & aKey, const void * aData, UInt64 aSize)
{
    SetText(aSection, aKey, EncodeBase64(aData, aSize).GetStdString());
}

void XPrefsSaver::SetBlob(const XString & aSection, const XString & aKey, const std::vector<UInt8> & aData)
{
    SetBlob(aSection, aKey, aData.data(), aData.size());
}

std::vector<UInt8> XPrefsSaver::GetBlob(const XString & aSection, const XString & aKey,
                                        const std::vector<UInt8> & aDefault) const
{
    std::string text;
    std::vector<UInt8> data;
    return FindText(aSection, aKey, text) && DecodeBase64(XString(std::move(text)), data) ? data : aDefault;
}

bool XPrefsSaver::HasKey(const XString & aSection, const XString & aKey) const
{
    std::string value;
    return FindText(aSection, aKey, value);
}

bool XPrefsSaver::Remove(const XString & aSection, const XString & aKey)
{
    std::lock_guard<std::mutex> guard(itsMutex);
    auto section = itsSections.find(aSection.GetStdString());
    if (section == itsSections.end() || section->second.erase(aKey.GetStdString()) == 0)
        return false;
    if (section->second.empty())
        itsSections.erase(section);
    ++itsChangeCount;
    return true;
}

UInt32 XPrefsSaver::RemoveSection(const XString & aSection)
{
    std::lock_guard<std::mutex> guard(itsMutex);
    auto section = itsSections.find(aSection.GetStdString());
    if (section == itsSections.end())
        return 0;
    UInt32 count = UInt32(section->second.size());
    itsSections.erase(section);
    ++itsChangeCount;
    return count;
}

void XPrefsSaver::Clear()
{
    std::lock_guard<std::mutex> guard(itsMutex);
    if (!itsSections.empty())
        ++itsChangeCount;
    itsSections.clear();
}

std::vector<XString> XPrefsSaver::GetSections() const
{
    std::lock_guard<std::mutex> guard(itsMutex);
    std::vector<XString> names;
    for (const auto & section : itsSections)
        names.emplace_back(section.first);
    return names;
}

std::vector<XString> XPrefsSaver::GetKeys(const XString & aSection) const
{
    std::lock_guard<std::mutex> guard(itsMutex);
    std::vector<XString> names;
    auto section = itsSections.find(aSection.GetStdString());
    if (section != itsSections.end())
        for (const auto & key : section->second)
            names.emplace_back(key.first);
    return names;
}

bool XPrefsSaver::IsChanged() const
{
    std::lock_guard<std::mutex> guard(itsMutex);
    return itsChangeCount != itsSavedChangeCount;
}

UInt32 XPrefsSaver::GetSkippedLineCount() const
{
    std::lock_guard<std::mutex> guard(itsMutex);
    return itsSkippedLines;
}

std::string XPrefsSaver::MakeTextOf(const std::map<std::string, XSection> & aSections)
{
    std::string text(kHeader);
    for (const auto & [section, keys] : aSections)
    {
        std::string prefix = Escape(section, true) + "/";
        for (const auto & [key, value] : keys)
            text += prefix + Escape(key, true) + "=" + Escape(value, false) + "\n";
    }
    return text;
}

XString XPrefsSaver::MakeText() const
{
    std::lock_guard<std::mutex> guard(itsMutex);
    return XString(MakeTextOf(itsSections));
}

void XPrefsSaver::ReadText(const XString & aText)
{
    const std::string & text = aText.GetStdString();
    std::map<std::string, XSection> sections;
    UInt32 skipped = 0;
    std::size_t start = 0;
    while (start < text.size())
    {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        std::string line = text.substr(start, end - start);
        start = end + 1;
        if (!line.empty() && line.back() == '\r') // written on another system
            line.pop_back();
        if (line.empty() || line[0] == '#')
            continue;
        std::string section;
        std::string key;
        std::string value;
        std::size_t position = 0;
        if (line.find('\0') != std::string::npos || !Unescape(line, position, '/', section) ||
            !Unescape(line, position, '=', key) || !Unescape(line, position, 0, value))
        {
            ++skipped;
            continue;
        }
        sections[section][key] = std::move(value);
    }
    std::lock_guard<std::mutex> guard(itsMutex);
    itsSections = std::move(sections);
    itsSkippedLines = skipped;
    itsSavedChangeCount = ++itsChangeCount;
}

bool XPrefsSaver::Load()
{
    const std::string & path = itsFile.GetPath().GetStdString();
    int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
    {
        if (errno != ENOENT)
            Fail("cannot open", path, errno);
        std::lock_guard<std::mutex> guard(itsMutex);
        itsSections.clear();
        itsSkippedLines = 0;
        itsSavedChangeCount = ++itsChangeCount;
        return false;
    }
    std::string text;
    struct stat info;
    int error = 0;
    if (::fstat(file, &info) != 0)
        error = errno;
    else if (!S_ISREG(info.st_mode))
        error = EISDIR;
    else if (UInt64(info.st_size) > kMaxFileSize)
        error = EFBIG;
    char buffer[65536];
    while (error == 0)
    {
        ssize_t count = ::read(file, buffer, sizeof(buffer));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            error = errno;
        else if (count == 0)
            break;
        else if (text.size() + std::size_t(count) > kMaxFileSize) // grew while being read
            error = EFBIG;
        else
            text.append(buffer, std::size_t(count));
    }
    ::close(file);
    if (error != 0)
        Fail("cannot read", path, error);
    ReadText(XString(std::move(text)));
    return true;
}

void XPrefsSaver::Save()
{
    std::lock_guard<std::mutex> saveGuard(itsSaveMutex);
    std::string text;
    UInt64 changeCount = 0;
    {
        std::lock_guard<std::mutex> guard(itsMutex);
        text = MakeTextOf(itsSections);
        changeCount = itsChangeCount;
    }
    const std::string & path = itsFile.GetPath().GetStdString();
    if (path.empty())
        throw XException(kErrPreferences, "no file to save to");
    std::size_t slash = path.find_last_of('/');
    std::string folder = slash == std::string::npos ? std::string(".") : path.substr(0, std::max<std::size_t>(slash, 1));
    if (slash != std::string::npos && slash > 0 && !XUserFolders::MakeFolders(folder))
        Fail("cannot make the folder", folder, errno);

    static std::atomic<UInt32> sCounter{0};
    std::string temporary = path + ".tmp." + std::to_string(::getpid()) + "." + std::to_string(sCounter++);
    int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file < 0)
        Fail("cannot write", temporary, errno);
    int error = 0;
    const char * data = text.data();
    std::size_t left = text.size();
    while (left > 0 && error == 0)
    {
        ssize_t written = ::write(file, data, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            error = written < 0 ? errno : EIO;
        else
        {
            data += written;
            left -= std::size_t(written);
        }
    }
    if (error == 0 && ::fsync(file) != 0)
        error = errno;
    if (::close(file) != 0 && error == 0)
        error = errno;
    if (error == 0 && ::rename(temporary.c_str(), path.c_str()) != 0)
        error = errno;
    if (error != 0)
    {
        ::unlink(temporary.c_str());
        Fail("cannot write", path, error);
    }
    // Make the rename itself lasting; a failure here leaves a good file, so it is not reported.
    int folderFile = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folderFile >= 0)
    {
        ::fsync(folderFile);
        ::close(folderFile);
    }
    std::lock_guard<std::mutex> guard(itsMutex);
    itsSavedChangeCount = changeCount;
}

XString XPrefsSaver::EncodeBase64(const void * aData, UInt64 aSize)
{
    static const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const UInt8 * bytes = static_cast<const UInt8 *>(aData);
    std::string text;
    text.reserve((aSize + 2) / 3 * 4);
    for (UInt64 i = 0; i < aSize; i += 3)
    {
        UInt32 group = UInt32(bytes[i]) << 16;
        if (i + 1 < aSize)
            group |= UInt32(bytes[i + 1]) << 8;
        if (i + 2 < aSize)
            group |= bytes[i + 2];
        text += kAlphabet[group >> 18];
        text += kAlphabet[(group >> 12) & 63];
        text += i + 1 < aSize ? kAlphabet[(group >> 6) & 63] : '=';
        text += i + 2 < aSize ? kAlphabet[group & 63] : '=';
    }
    return XString(std::move(text));
}

bool XPrefsSaver::DecodeBase64(const XString & aText, std::vector<UInt8> & outData)
{
    const std::string & text = aText.GetStdString();
    outData.clear();
    if (text.size() % 4 != 0)
        return false;
    auto value = [](char c) -> int {
        if (c >= 'A' && c <= 'Z')
            return c - 'A';
        if (c >= 'a' && c <= 'z')
            return c - 'a' + 26;
        if (c >= '0' && c <= '9')
            return c - '0' + 52;
        if (c == '+')
            return 62;
        if (c == '/')
            return 63;
        return -1;
    };
    outData.reserve(text.size() / 4 * 3);
    for (std::size_t i = 0; i < text.size(); i += 4)
    {
        bool last = i + 4 == text.size();
        int padding = 0;
        if (last && text[i + 3] == '=')
            padding = text[i + 2] == '=' ? 2 : 1;
        UInt32 group = 0;
        for (std::size_t j = 0; j < 4; ++j)
        {
            int digit = j >= 4 - std::size_t(padding) ? 0 : value(text[i + j]);
            if (digit < 0)
            {
                outData.clear();
                return false;
            }
            group = (group << 6) | UInt32(digit);
        }
        // Bits that the padding drops must be zero (the canonical form).
        if ((padding == 1 && (group & 0xFF) != 0) || (padding == 2 && (group & 0xFFFF) != 0))
        {
            outData.clear();
            return false;
        }
        outData.push_back(UInt8(group >> 16));
        if (padding < 2)
            outData.push_back(UInt8((group >> 8) & 0xFF));
        if (padding < 1)
            outData.push_back(UInt8(group & 0xFF));
    }
    return true;
}
