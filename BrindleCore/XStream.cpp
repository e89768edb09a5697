#include "XStream.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "XAssert.h"
#include "XByteSwap.h"
#include "XClassRegistry.h"

namespace
{
constexpr char kMagic[4] = {'B', 'R', 'N', 'D'};
constexpr UInt64 kSwapChunk = 4096; // units turned over at a time on the stack
} // namespace

XStream::XStream(XByteOrder anOrder, UInt64 aBufferSize)
    : itsByteOrder(anOrder), itsSwap(anOrder != GetByteOrderFromPlatform()),
      itsBuffer(std::max<UInt64>(aBufferSize, 16))
{
}

XStream::~XStream() = default;

void XStream::SetByteOrder(XByteOrder anOrder)
{
    itsByteOrder = anOrder;
    itsSwap = anOrder != GetByteOrderFromPlatform();
}

void XStream::SetFormatVersion(UInt32 aMajor, UInt32 aMinor)
{
    itsFormatMajor = aMajor;
    itsFormatMinor = aMinor;
}

void XStream::WriteStreamInfo()
{
    WriteRaw(kMagic, 4);
    UInt8 order[4] = {static_cast<UInt8>(itsByteOrder == kLittleEndian ? 'I' : 'M'), 0, 0, 0};
    WriteRaw(order, 4);
    Write32(itsFormatMajor);
    Write32(itsFormatMinor);
}

void XStream::ReadStreamInfo()
{
    char magic[4];
    ReadRaw(magic, 4);
    if (std::memcmp(magic, kMagic, 4) != 0)
        throw XException(kErrDamagedStream, "not a Brindle stream (wrong magic)");
    UInt8 order[4];
    ReadRaw(order, 4);
    if (order[0] == 'I')
        SetByteOrder(kLittleEndian);
    else if (order[0] == 'M')
        SetByteOrder(kBigEndian);
    else
        throw XException(kErrDamagedStream, "unknown byte order in the stream header");
    UInt32 major = Read32();
    UInt32 minor = Read32();
    if (major > kFormatMajorVersion)
        throw XException(kErrStreamTooNew, "stream format " + std::to_string(major) + "." +
                                               std::to_string(minor));
    SetFormatVersion(major, minor);
}

template <class T>
void XStream::WriteNumber(T aValue)
{
    if (itsSwap)
        aValue = XByteSwapValue(aValue);
    WriteRaw(&aValue, sizeof aValue);
}

template <class T>
T XStream::ReadNumber()
{
    T value;
    ReadRaw(&value, sizeof value);
    return itsSwap ? XByteSwapValue(value) : value;
}

void XStream::Write16(UInt16 aValue)
{
    WriteNumber(aValue);
}

void XStream::Write32(UInt32 aValue)
{
    WriteNumber(aValue);
}

void XStream::Write64S(SInt64 aValue)
{
    WriteNumber(static_cast<UInt64>(aValue));
}

void XStream::WriteFloat32S(float aValue)
{
    WriteNumber(std::bit_cast<UInt32>(aValue));
}

void XStream::WriteFloat64S(double aValue)
{
    WriteNumber(std::bit_cast<UInt64>(aValue));
}

UInt8 XStream::Read8()
{
    UInt8 value;
    ReadRaw(&value, 1);
    return value;
}

UInt16 XStream::Read16()
{
    return ReadNumber<UInt16>();
}

UInt32 XStream::Read32()
{
    return ReadNumber<UInt32>();
}

SInt64 XStream::Read64S()
{
    return static_cast<SInt64>(ReadNumber<UInt64>());
}

float XStream::ReadFloat32S()
{
    return std::bit_cast<float>(ReadNumber<UInt32>());
}

double XStream::ReadFloat64S()
{
    return std::bit_cast<double>(ReadNumber<UInt64>());
}

void XStream::WriteSwapped(const void * aBuffer, UInt64 aCount, UInt32 aUnit)
{
    alignas(8) UInt8 chunk[kSwapChunk * 4];
    const auto * source = static_cast<const UInt8 *>(aBuffer);
    XByteSwapMode mode = aUnit == 2 ? kSwap16 : kSwap32;
    while (aCount > 0)
    {
        UInt64 units = std::min(aCount, UInt64(sizeof chunk) / aUnit);
        SwapBufferBytes(chunk, source, units * aUnit, mode);
        WriteRaw(chunk, units * aUnit);
        source += units * aUnit;
        aCount -= units;
    }
}

void XStream::WriteBuffer16(const void * aBuffer, UInt64 aCount)
{
    if (itsSwap)
        WriteSwapped(aBuffer, aCount, 2);
    else
        WriteRaw(aBuffer, aCount * 2);
}

void XStream::ReadBuffer16(void * aBuffer, UInt64 aCount)
{
    ReadRaw(aBuffer, aCount * 2);
    if (itsSwap)
        SwapBuffer16(aBuffer, aCount);
}

void XStream::WriteBuffer32(const void * aBuffer, UInt64 aCount)
{
    if (itsSwap)
        WriteSwapped(aBuffer, aCount, 4);
    else
        WriteRaw(aBuffer, aCount * 4);
}

void XStream::ReadBuffer32(void * aBuffer, UInt64 aCount)
{
    ReadRaw(aBuffer, aCount * 4);
    if (itsSwap)
        SwapBuffer32(aBuffer, aCount);
}

UInt64 XStream::PeekBuffer8(void * aBuffer, UInt64 aByteCount)
{
    return PeekBuffer8WithoutSeekSelf(aBuffer, aByteCount);
}

UInt64 XStream::PeekBuffer8WithoutSeekSelf(void * aBuffer, UInt64 aByteCount)
{
    UInt64 available = std::min(aByteCount, GetBytesLeft());
    UInt64 inWindow = std::min(available, itsBufferFill - std::min(itsBufferPos, itsBufferFill));
    std::memcpy(aBuffer, itsBuffer.data() + itsBufferPos, inWindow);
    if (inWindow < available)
    {
        // The rest lies behind the window: write back what changed, then read the medium.
        DrainBuffer();
        inWindow += ReadMediumSelf(GetPosition() + SInt64(inWindow),
                                   static_cast<UInt8 *>(aBuffer) + inWindow, available - inWindow);
    }
    return inWindow;
}

void XStream::WriteString(const XString & aText)
{
    XAssertText(aText.GetLength() <= 0xFFFFFFFFull, "string longer than 4 GiB");
    Write32(static_cast<UInt32>(aText.GetLength()));
    WriteRaw(aText.c_str(), aText.GetLength());
}

XString XStream::ReadString()
{
    UInt32 length = Read32();
    if (length > GetBytesLeft())
        throw XException(kErrDamagedStream, "string of " + std::to_string(length) +
                                                " bytes in a stream with fewer left");
    std::string text(length, '\0');
    ReadRaw(text.data(), length);
    return XString(std::move(text));
}

void XStream::WriteARGB32(UInt32 anARGB)
{
    UInt8 bytes[4] = {static_cast<UInt8>(anARGB >> 24), static_cast<UInt8>(anARGB >> 16),
                      static_cast<UInt8>(anARGB >> 8), static_cast<UInt8>(anARGB)};
    WriteRaw(bytes, 4);
}

UInt32 XStream::ReadARGB32()
{
    UInt8 bytes[4];
    ReadRaw(bytes, 4);
    return (UInt32(bytes[0]) << 24) | (UInt32(bytes[1]) << 16) | (UInt32(bytes[2]) << 8) |
           UInt32(bytes[3]);
}

void XStream::WriteObject(const XStorable * anObject, XStorable::XOptions anOptions)
{
    if (anObject == nullptr)
    {
        WriteVersion(XVersion());
        return;
    }
    WriteObject(*anObject, anOptions);
}

void XStream::WriteObject(const XStorable & anObject, XStorable::XOptions anOptions)
{
    WriteVersion(anObject.GetVersion());
    anObject.WriteStream2(*this, anOptions);
}

XStorable * XStream::ReadObject(XStorable::XOptions anOptions)
{
    XVersion word = ReadVersion();
    if (word.IsNull())
        return nullptr;
    if (itsObjectsRead.size() >= kMaxObjectDepth)
        throw XException(kErrDamagedStream, "objects nested too deeply");
    PushObjectRead(word, XClassRegistry::IsOldIdentifier(word));
    try
    {
        XStorable * object = XClassRegistry::CreateObject(word, *this, word, anOptions);
        PopObjectRead();
        return object;
    }
    catch (...)
    {
        PopObjectRead();
        throw;
    }
}

XVersion XStream::GetLastClassCreated() const
{
    return itsObjectsRead.empty() ? XVersion() : itsObjectsRead.back().itsWord;
}

void XStream::PushObjectRead(XVersion aWord, bool aPending)
{
    itsObjectsRead.push_back({aWord, aPending});
}

void XStream::PopObjectRead()
{
    XAssert(!itsObjectsRead.empty());
    itsObjectsRead.pop_back();
}

XVersion XStream::TakeClassVersion(XVersion aDefault)
{
    if (!itsObjectsRead.empty())
    {
        XObjectRead & current = itsObjectsRead.back();
        if (current.itsWordPending)
        {
            current.itsWordPending = false;
            return current.itsWord;
        }
        if (!aDefault.IsNull() && XClassRegistry::IsOldIdentifier(current.itsWord))
            return TakeOptionalClassVersion(aDefault);
    }
    return ReadVersion();
}

XVersion XStream::TakeOptionalClassVersion(XVersion aDefault)
{
    if (GetBytesLeft() < 4)
        return aDefault;
    const SInt64 position = GetPosition();
    const XVersion word = ReadVersion();
    if (word.GetClass() == aDefault.GetClass() || word.GetClass() == XClassRegistry::GetCurrentClass(aDefault))
        return word;
    SeekTo(position);
    return aDefault;
}

void XStream::SeekTo(SInt64 aPosition)
{
    if (aPosition < 0)
        throw XException(kErrBadArgument, "seek before the start of a stream");
    if (aPosition >= itsBufferStart && aPosition <= itsBufferStart + SInt64(itsBufferFill))
    {
        itsBufferPos = UInt64(aPosition - itsBufferStart);
        return;
    }
    MoveWindowTo(aPosition);
}

SInt64 XStream::GetExtent() const
{
    return std::max(GetExtentSelf(), itsBufferStart + SInt64(itsBufferFill));
}

UInt64 XStream::GetBytesLeft() const
{
    SInt64 left = GetExtent() - GetPosition();
    return left > 0 ? UInt64(left) : 0;
}

void XStream::Truncate()
{
    SInt64 position = GetPosition();
    DrainBuffer();
    SetExtentSelf(position);
    itsBufferFill = std::min(itsBufferFill, itsBufferPos);
}

void XStream::Flush()
{
    DrainBuffer();
}

void XStream::DrainBuffer()
{
    if (itsDirtyEnd > itsDirtyBegin)
    {
        WriteMediumSelf(itsBufferStart + SInt64(itsDirtyBegin), itsBuffer.data() + itsDirtyBegin,
                        itsDirtyEnd - itsDirtyBegin);
    }
    itsDirtyBegin = itsDirtyEnd = 0;
}

void XStream::FillBuffer()
{
    itsBufferFill = ReadMediumSelf(itsBufferStart, itsBuffer.data(), itsBuffer.size());
}

void XStream::SetPhysicalSizeSelf(SInt64) {}

void XStream::DiscardBuffer()
{
    SInt64 position = GetPosition();
    itsDirtyBegin = itsDirtyEnd = 0;
    itsBufferStart = position;
    itsBufferPos = 0;
    itsBufferFill = 0;
}

void XStream::MoveWindowTo(SInt64 aPosition)
{
    DrainBuffer();
    itsBufferStart = aPosition;
    itsBufferPos = 0;
    itsBufferFill = 0;
}

void XStream::CopyIntoWindow(const void * aBuffer, UInt64 aByteCount)
{
    if (aByteCount == 0)
        return; // aBuffer may be null then
    std::memcpy(itsBuffer.data() + itsBufferPos, aBuffer, aByteCount);
    if (itsDirtyEnd == itsDirtyBegin)
    {
        itsDirtyBegin = itsBufferPos;
        itsDirtyEnd = itsBufferPos + aByteCount;
    }
    else
    {
        itsDirtyBegin = std::min(itsDirtyBegin, itsBufferPos);
        itsDirtyEnd = std::max(itsDirtyEnd, itsBufferPos + aByteCount);
    }
    itsBufferPos += aByteCount;
    itsBufferFill = std::max(itsBufferFill, itsBufferPos);
}

void XStream::CopyFromWindow(void * aBuffer, UInt64 aByteCount)
{
    if (aByteCount == 0)
        return; // aBuffer may be null then
    std::memcpy(aBuffer, itsBuffer.data() + itsBufferPos, aByteCount);
    itsBufferPos += aByteCount;
}

void XStream::WriteRawSlow(const void * aBuffer, UInt64 aByteCount)
{
    const auto * source = static_cast<const UInt8 *>(aBuffer);
    // Fill what is left of the window when the block is small.
    if (aByteCount < itsBuffer.size())
    {
        UInt64 room = itsBuffer.size() - itsBufferPos;
        CopyIntoWindow(source, room);
        source += room;
        aByteCount -= room;
        MoveWindowTo(GetPosition());
        CopyIntoWindow(source, aByteCount);
        return;
    }
    // A large block goes to the medium directly, behind whatever the window holds.
    SInt64 position = GetPosition();
    DrainBuffer();
    SetPhysicalSizeSelf(position + SInt64(aByteCount));
    WriteMediumSelf(position, source, aByteCount);
    itsBufferStart = position + SInt64(aByteCount);
    itsBufferPos = 0;
    itsBufferFill = 0;
}

void XStream::ReadRawSlow(void * aBuffer, UInt64 aByteCount)
{
    auto * dest = static_cast<UInt8 *>(aBuffer);
    UInt64 inWindow = itsBufferFill > itsBufferPos ? itsBufferFill - itsBufferPos : 0;
    CopyFromWindow(dest, inWindow);
    dest += inWindow;
    aByteCount -= inWindow;
    SInt64 position = GetPosition();
    MoveWindowTo(position);
    if (aByteCount >= itsBuffer.size())
    {
        UInt64 got = ReadMediumSelf(position, dest, aByteCount);
        itsBufferStart = position + SInt64(got);
        if (got < aByteCount)
            throw XException(kErrEndOfStream, "wanted " + std::to_string(aByteCount) +
                                                  " bytes at " + std::to_string(position) +
                                                  ", found " + std::to_string(got));
        return;
    }
    FillBuffer();
    if (itsBufferFill < aByteCount)
    {
        itsBufferPos = itsBufferFill;
        throw XException(kErrEndOfStream, "wanted " + std::to_string(aByteCount) +
                                              " bytes at " + std::to_string(position) +
                                              ", found " + std::to_string(itsBufferFill));
    }
    CopyFromWindow(dest, aByteCount);
}
