#pragma once
// A stream over a byte vector, for tests that want to see or damage the bytes.

#include <algorithm>
#include <cstring>
#include <vector>

#include "XByteSwap.h"
#include "XStream.h"

class XTestMemoryStream : public XStream
{
public:
    explicit XTestMemoryStream(XByteOrder anOrder = GetByteOrderFromPlatform(),
                               UInt64 aBufferSize = 64)
        : XStream(anOrder, aBufferSize)
    {
    }
    XTestMemoryStream(std::vector<UInt8> aBytes, XByteOrder anOrder,
                      UInt64 aBufferSize = 64)
        : XStream(anOrder, aBufferSize), itsBytes(std::move(aBytes))
    {
    }

    // The bytes with the buffer written back.
    const std::vector<UInt8> & GetBytes()
    {
        Flush();
        return itsBytes;
    }

protected:
    SInt64 GetExtentSelf() const override { return SInt64(itsBytes.size()); }
    void SetExtentSelf(SInt64 anExtent) override { itsBytes.resize(std::size_t(anExtent)); }
    UInt64 ReadMediumSelf(SInt64 anOffset, void * aBuffer, UInt64 aByteCount) override
    {
        if (anOffset >= SInt64(itsBytes.size()))
            return 0;
        UInt64 count = std::min<UInt64>(aByteCount, itsBytes.size() - std::size_t(anOffset));
        std::memcpy(aBuffer, itsBytes.data() + anOffset, count);
        return count;
    }
    void WriteMediumSelf(SInt64 anOffset, const void * aBuffer, UInt64 aByteCount) override
    {
        if (UInt64(anOffset) + aByteCount > itsBytes.size())
            itsBytes.resize(std::size_t(UInt64(anOffset) + aByteCount));
        std::memcpy(itsBytes.data() + anOffset, aBuffer, aByteCount);
    }

private:
    std::vector<UInt8> itsBytes;
};
