#pragma once
// A path to a file, as a value. Storable with class word 37: the word and the path as a string.

#include "XStorable.h"
#include "XString.h"

class XFileSpec : public XStorable
{
public:
    static constexpr UInt32 kClassID = 37;

    XFileSpec() = default;
    explicit XFileSpec(const XString & aPath);
    explicit XFileSpec(XStream & aStream);
    XFileSpec(const XFileSpec &) = default;
    XFileSpec & operator=(const XFileSpec &) = default;
    ~XFileSpec() override;

    const XString & GetPath() const { return itsPath; }
    // The last part of the path.
    XString GetName() const;
    // The folder part of the path, without the trailing separator; empty for a bare name.
    XString GetFolder() const;
    bool Exists() const;
    // Size in bytes of the file; XException 1004 if it cannot be asked.
    UInt64 GetFileSize() const;
    // Removes the file; false if there was none.
    bool Delete() const;

    bool operator==(const XFileSpec & anOther) const { return itsPath == anOther.itsPath; }

    // A path in the temporary folder, unique to this process, that does not exist yet.
    static XFileSpec MakeTemporary(const XString & aPrefix);

    // XStorable
    XVersion GetVersion() const override { return XVersion(kClassID, 0); }
    XFileSpec * Clone() const override { return new XFileSpec(*this); }
    UInt64 GetStreamUsage() const override { return 8 + itsPath.GetLength(); }
    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

private:
    XString itsPath;
};
