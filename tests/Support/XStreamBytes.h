#pragma once
// Stream bytes built by hand in one byte order, for tests of stored forms, and an object's
// stored bytes.

#include <initializer_list>
#include <vector>

#include "XStorable.h"
#include "XTestMemoryStream.h"

class XStreamBytes
{
public:
    explicit XStreamBytes(XByteOrder anOrder = kLittleEndian) : itsStream(anOrder) {}
    XStreamBytes & Words(const std::vector<UInt32> & aWords)
    {
        for (UInt32 word : aWords)
            itsStream.Write32(word);
        return *this;
    }
    XStreamBytes & Doubles(std::initializer_list<double> aValues)
    {
        for (double value : aValues)
            itsStream.WriteFloat64S(value);
        return *this;
    }
    XStreamBytes & Byte(UInt8 aValue)
    {
        itsStream.Write8(aValue);
        return *this;
    }
    XStreamBytes & Bytes(const std::vector<UInt8> & aBytes)
    {
        itsStream.WriteBuffer8(aBytes.data(), aBytes.size());
        return *this;
    }
    // A memory-handle object (class word 33) holding aData uncompressed, with the 16 zero bytes
    // that follow a volume's voxels when aTail.
    XStreamBytes & Handle(std::vector<UInt8> aData, bool aTail = false)
    {
        if (aTail)
            aData.resize(aData.size() + 16, 0);
        Words({33, 33});
        itsStream.Write64S(SInt64(aData.size()));
        Words({0});
        itsStream.Write64S(SInt64(aData.size()));
        itsStream.WriteBuffer8(aData.data(), aData.size());
        return *this;
    }
    std::vector<UInt8> Get() { return itsStream.GetBytes(); }

private:
    XTestMemoryStream itsStream;
};

// What WriteObject stores for anObject.
inline std::vector<UInt8> XStoredBytes(const XStorable & anObject, XByteOrder anOrder = kLittleEndian)
{
    XTestMemoryStream stream(anOrder);
    stream.WriteObject(anObject);
    return stream.GetBytes();
}
