#pragma once
// A vector with the foundation's stream helpers: XWriteVector writes a 32-bit count and the
// elements, XReadVector reads them back, refusing counts that the stream cannot hold.

#include <type_traits>
#include <vector>

#include "XAssert.h"
#include "XException.h"
#include "XStream.h"
#include "XString.h"

template <class T>
class XVector : public std::vector<T>
{
public:
    using std::vector<T>::vector;
    XVector() = default;
    XVector(const std::vector<T> & aVector) : std::vector<T>(aVector) {} // NOLINT

    bool Contains(const T & aValue) const
    {
        for (const T & value : *this)
            if (value == aValue)
                return true;
        return false;
    }
};

// How one element goes to and comes from a stream, with the fewest bytes it can take there.
// Specialise for other element types.
template <class T, class Enable = void>
struct XStreamValue;

template <class T>
struct XStreamValue<T, std::enable_if_t<std::is_arithmetic_v<T>>>
{
    static constexpr UInt64 kMinBytes = std::is_same_v<T, bool> ? 1 : sizeof(T);

    static void Write(XStream & aStream, T aValue)
    {
        if constexpr (std::is_same_v<T, bool> || sizeof(T) == 1)
            aStream.Write8(static_cast<UInt8>(aValue));
        else if constexpr (std::is_same_v<T, float>)
            aStream.WriteFloat32S(aValue);
        else if constexpr (std::is_same_v<T, double>)
            aStream.WriteFloat64S(aValue);
        else if constexpr (sizeof(T) == 2)
            aStream.Write16(static_cast<UInt16>(aValue));
        else if constexpr (sizeof(T) == 4)
            aStream.Write32(static_cast<UInt32>(aValue));
        else
            aStream.Write64S(static_cast<SInt64>(aValue));
    }

    static T Read(XStream & aStream)
    {
        if constexpr (std::is_same_v<T, bool>)
            return aStream.Read8() != 0;
        else if constexpr (sizeof(T) == 1)
            return static_cast<T>(aStream.Read8());
        else if constexpr (std::is_same_v<T, float>)
            return aStream.ReadFloat32S();
        else if constexpr (std::is_same_v<T, double>)
            return aStream.ReadFloat64S();
        else if constexpr (sizeof(T) == 2)
            return static_cast<T>(aStream.Read16());
        else if constexpr (sizeof(T) == 4)
            return static_cast<T>(aStream.Read32());
        else
            return static_cast<T>(aStream.Read64S());
    }
};

template <>
struct XStreamValue<XString>
{
    static constexpr UInt64 kMinBytes = 4;
    static void Write(XStream & aStream, const XString & aValue) { aStream.WriteString(aValue); }
    static XString Read(XStream & aStream) { return aStream.ReadString(); }
};

template <class T>
void XWriteVector(XStream & aStream, const std::vector<T> & aVector)
{
    XAssertText(aVector.size() <= 0xFFFFFFFFull, "vector too long for a stream");
    aStream.Write32(static_cast<UInt32>(aVector.size()));
    for (const T & value : aVector)
        XStreamValue<T>::Write(aStream, value);
}

// Replaces the contents of aVector. XException 1002 when the count cannot fit in the stream.
template <class T>
void XReadVector(XStream & aStream, std::vector<T> & aVector)
{
    UInt32 count = aStream.Read32();
    if (UInt64(count) * XStreamValue<T>::kMinBytes > aStream.GetBytesLeft())
        throw XException(kErrDamagedStream, "vector of " + std::to_string(count) +
                                                " elements in a stream with too few bytes left");
    std::vector<T> values;
    values.reserve(count);
    for (UInt32 i = 0; i < count; ++i)
        values.push_back(XStreamValue<T>::Read(aStream));
    aVector = std::move(values);
}

// The bytes XWriteVector takes for a vector of fixed-size values.
template <class T>
UInt64 XGetValueVectorStreamUsage(const std::vector<T> & aVector)
{
    static_assert(std::is_arithmetic_v<T>, "fixed-size values only");
    return 4 + UInt64(aVector.size()) * XStreamValue<T>::kMinBytes;
}
