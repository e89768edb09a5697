#pragma once
// A text value, UTF-8 inside. Storable, with class word 36: the word and then the text as
// XStream::WriteString writes it.

#include <string>
#include <string_view>

#include "XStorable.h"
#include "XTypes.h"

class XString : public XStorable
{
public:
    static constexpr UInt32 kClassID = 36;
    static const XString kEmptyString;

    XString() = default;
    XString(const char * aText);          // NOLINT: texts convert implicitly
    XString(const std::string & aText);   // NOLINT
    XString(std::string && aText);        // NOLINT
    XString(std::string_view aText);      // NOLINT
    XString(const wchar_t * aText);       // NOLINT: from UTF-32
    XString(const std::wstring & aText);  // NOLINT
    explicit XString(XStream & aStream);
    XString(const XString &) = default;
    XString(XString &&) noexcept = default;
    XString & operator=(const XString &) = default;
    XString & operator=(XString &&) noexcept = default;
    ~XString() override;

    // The bytes of the text, always terminated.
    const char * c_str() const { return itsText.c_str(); }
    operator const char *() const { return itsText.c_str(); } // NOLINT
    const std::string & GetStdString() const { return itsText; }
    // The text as UTF-32; invalid UTF-8 bytes come out as U+FFFD.
    std::wstring GetWideString() const;
    operator std::wstring() const { return GetWideString(); } // NOLINT

    bool IsEmpty() const { return itsText.empty(); }
    // Length in bytes of the UTF-8 form.
    UInt64 GetLength() const { return itsText.size(); }
    // Number of characters (code points).
    UInt64 GetCharCount() const;
    // The n-th character (zero-based) as a code point; 0 past the end.
    char32_t GetNthChar(UInt64 anIndex) const;

    XString & operator+=(const XString & aText);
    XString & operator+=(const char * aText);
    XString & operator+=(char aChar);

    // Replaces every occurrence of aWhat by aWith, left to right; returns how many were replaced.
    UInt32 Replace(const XString & aWhat, const XString & aWith);
    // Removes the last aCount characters (not bytes); fewer if the text is shorter.
    void StripLast(UInt64 aCount = 1);

    // A text of the string table; false and empty if anID has no entry.
    bool LoadStringA(UInt32 anID);
    static void AddStringToTable(UInt32 anID, const XString & aText);

    // The text as a number; XException 1011 if it is not one (surrounding blanks are allowed).
    UInt32 GetUInt32() const;
    double GetSFloat64() const;

    static XString FromUInt64(UInt64 aValue);
    static XString FromDouble(double aValue);

    // XStorable
    XVersion GetVersion() const override { return XVersion(kClassID, 0); }
    XString * Clone() const override { return new XString(*this); }
    UInt64 GetStreamUsage() const override { return 8 + itsText.size(); }
    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

private:
    std::string itsText;
};

XString operator+(const XString & aLeft, const XString & aRight);
XString operator+(const XString & aLeft, const char * aRight);
XString operator+(const char * aLeft, const XString & aRight);
bool operator==(const XString & aLeft, const XString & aRight);
bool operator==(const XString & aLeft, const char * aRight);
bool operator==(const char * aLeft, const XString & aRight);
bool operator!=(const XString & aLeft, const XString & aRight);
bool operator!=(const XString & aLeft, const char * aRight);
bool operator<(const XString & aLeft, const XString & aRight);

// Hash support so that texts can key unordered containers.
template <>
struct std::hash<XString>
{
    std::size_t operator()(const XString & aText) const noexcept
    {
        return std::hash<std::string>()(aText.GetStdString());
    }
};
