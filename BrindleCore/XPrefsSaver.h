#pragma once
// A store of settings by section and key, kept in a text file. Values are texts; the typed
// operations write and read numbers, flags and binary blocks in a fixed text form. A read of a
// key that is missing, or whose text is not of the type asked for, gives the default.
//
// The file, one setting a line, sorted by section and key:
//     # Brindle preferences, format 1
//     Wisdom/BuildDate=2024-05-01
//     Wisdom/Wisdom=(fftw-3.3.10 fftwf_wisdom #x3c273403 ...)\n(...)
// Section, key and value are escaped: a backslash starts \\ \n \r \t \xHH (any other control
// byte) and, in sections and keys, \/ \= \#. The section ends at the first unescaped "/", the
// key at the next unescaped "=", and the value runs to the end of the line. Lines that are
// empty or begin with "#" are comments; a line that does not parse (a damaged file) is skipped
// and counted, and the rest is read. Number forms: decimal integers, doubles in the shortest
// form that reads back exactly ("inf", "nan" included), flags "true"/"false" ("1"/"0" are read
// too), blobs in base64 (RFC 4648, with padding).
//
// Save writes the whole store to a temporary file beside the target and renames it over the
// target, so a reader sees the old file or the new one, never a part. Folders are made as
// needed. The store is thread-safe; saves of one object are done one at a time. Two objects (or
// processes) that save the same file: the last save wins whole.

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "XFileSpec.h"
#include "XString.h"
#include "XTypes.h"

class XPrefsSaver
{
public:
    // A larger file is not read (XException kErrPreferences).
    static constexpr UInt64 kMaxFileSize = UInt64(64) << 20;

    // The store starts empty; Load reads the file.
    explicit XPrefsSaver(const XFileSpec & aFile);
    XPrefsSaver(const XPrefsSaver &) = delete;
    XPrefsSaver & operator=(const XPrefsSaver &) = delete;
    virtual ~XPrefsSaver();

    const XFileSpec & GetFileSpec() const { return itsFile; }

    void SetString(const XString & aSection, const XString & aKey, const XString & aValue);
    XString GetString(const XString & aSection, const XString & aKey,
                      const XString & aDefault = XString::kEmptyString) const;
    void SetUInt32(const XString & aSection, const XString & aKey, UInt32 aValue);
    UInt32 GetUInt32(const XString & aSection, const XString & aKey, UInt32 aDefault = 0) const;
    void SetSInt64(const XString & aSection, const XString & aKey, SInt64 aValue);
    SInt64 GetSInt64(const XString & aSection, const XString & aKey, SInt64 aDefault = 0) const;
    void SetDouble(const XString & aSection, const XString & aKey, double aValue);
    double GetDouble(const XString & aSection, const XString & aKey, double aDefault = 0.0) const;
    void SetBool(const XString & aSection, const XString & aKey, bool aValue);
    bool GetBool(const XString & aSection, const XString & aKey, bool aDefault = false) const;
    void SetBlob(const XString & aSection, const XString & aKey, const void * aData, UInt64 aSize);
    void SetBlob(const XString & aSection, const XString & aKey, const std::vector<UInt8> & aData);
    std::vector<UInt8> GetBlob(const XString & aSection, const XString & aKey,
                               const std::vector<UInt8> & aDefault = {}) const;

    bool HasKey(const XString & aSection, const XString & aKey) const;
    // True if the key was there.
    bool Remove(const XString & aSection, const XString & aKey);
    // How many keys went.
    UInt32 RemoveSection(const XString & aSection);
    void Clear();
    // Sections and the keys of a section, sorted.
    std::vector<XString> GetSections() const;
    std::vector<XString> GetKeys(const XString & aSection) const;

    // Something was set or removed since the last Load or Save.
    bool IsChanged() const;

    // Replaces the store with the file's settings. False, with an empty store, when there is no
    // file. XException kErrPreferences when the file exists but cannot be read or is larger
    // than kMaxFileSize (the store is then unchanged).
    bool Load();
    // How many lines the last Load skipped as damaged.
    UInt32 GetSkippedLineCount() const;
    // Writes the store to the file (see above); XException kErrPreferences when it cannot.
    void Save();

    // The file's text for the present store, and the store from such a text (as Load does).
    XString MakeText() const;
    void ReadText(const XString & aText);

    // Base64 (RFC 4648, standard alphabet, padded). Decode is strict: false for any other text.
    static XString EncodeBase64(const void * aData, UInt64 aSize);
    static bool DecodeBase64(const XString & aText, std::vector<UInt8> & outData);

private:
    using XSection = std::map<std::string, std::string>;

    void SetText(const XString & aSection, const XString & aKey, std::string aValue);
    bool FindText(const XString & aSection, const XString & aKey, std::string & outValue) const;
    // The number stored under the key, or aDefault when it is missing or not a T.
    template <typename T>
    T GetNumber(const XString & aSection, const XString & aKey, T aDefault) const;
    static std::string MakeTextOf(const std::map<std::string, XSection> & aSections);

    XFileSpec itsFile;
    mutable std::mutex itsMutex;
    std::mutex itsSaveMutex; // one save at a time, in the order of their snapshots
    std::map<std::string, XSection> itsSections;
    UInt64 itsChangeCount = 0;
    UInt64 itsSavedChangeCount = 0;
    UInt32 itsSkippedLines = 0;
};
