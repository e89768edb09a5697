#pragma once
// A positioned byte stream with a byte order of its own.
//
// The stream keeps a window of its medium (a file, a memory handle) in a buffer; numbers are
// read and written through the window, large blocks go to the medium directly. Subclasses give
// the medium through the protected hooks. A stream serves one thread at a time.
//
// Objects: WriteObject writes the object's class word and then its WriteStream2 chain, or the
// word 0 for a null pointer. The object reader reads the word, keeps it on a stack of objects
// being read (GetLastClassCreated) and asks XClassRegistry::CreateObject for the object.

#include <memory>
#include <vector>

#include "XException.h"
#include "XStorable.h"
#include "XString.h"
#include "XTypes.h"
#include "XVersion.h"

class XStream
{
public:
    // The stream info header: 4 bytes "BRND", the byte order ('I' little, 'M' big), three zero
    // bytes, then the format's major and minor version as 32-bit numbers in that order.
    static constexpr UInt32 kFormatMajorVersion = 2;
    static constexpr UInt32 kFormatMinorVersion = 0;
    static constexpr UInt64 kStreamInfoSize = 16;
    // Objects nested deeper than this are taken for a damaged stream.
    static constexpr UInt32 kMaxObjectDepth = 256;

    explicit XStream(XByteOrder anOrder, UInt64 aBufferSize = 0x10000);
    XStream(const XStream &) = delete;
    XStream & operator=(const XStream &) = delete;
    // Subclasses write the buffer back in their own destructors with Flush().
    virtual ~XStream();

    XByteOrder GetByteOrder() const { return itsByteOrder; }
    void SetByteOrder(XByteOrder anOrder);
    UInt32 GetFormatMajorVersion() const { return itsFormatMajor; }
    UInt32 GetFormatMinorVersion() const { return itsFormatMinor; }
    void SetFormatVersion(UInt32 aMajor, UInt32 aMinor);

    void WriteStreamInfo();
    // Reads the info header at the position and takes its byte order and format version.
    // XException 1002 for a wrong magic or order byte, 1015 for a major version above this code's.
    void ReadStreamInfo();

    void Write8(UInt8 aValue) { WriteRaw(&aValue, 1); }
    void Write16(UInt16 aValue);
    void Write32(UInt32 aValue);
    void Write64S(SInt64 aValue);
    void WriteFloat32S(float aValue);
    void WriteFloat64S(double aValue);
    UInt8 Read8();
    UInt16 Read16();
    UInt32 Read32();
    SInt64 Read64S();
    float ReadFloat32S();
    double ReadFloat64S();

    // Raw blocks. The 16- and 32-bit forms take counts of units and turn the units over when the
    // stream's order is not the platform's.
    void WriteBuffer8(const void * aBuffer, UInt64 aByteCount) { WriteRaw(aBuffer, aByteCount); }
    void ReadBuffer8(void * aBuffer, UInt64 aByteCount) { ReadRaw(aBuffer, aByteCount); }
    void WriteBuffer16(const void * aBuffer, UInt64 aCount);
    void ReadBuffer16(void * aBuffer, UInt64 aCount);
    void WriteBuffer32(const void * aBuffer, UInt64 aCount);
    void ReadBuffer32(void * aBuffer, UInt64 aCount);
    // Copies up to aByteCount bytes from the position without moving it; returns how many there
    // were before the end.
    UInt64 PeekBuffer8(void * aBuffer, UInt64 aByteCount);

    // A 32-bit byte count and the UTF-8 bytes.
    void WriteString(const XString & aText);
    XString ReadString();

    // A colour as its 32-bit word 0xAARRGGBB, stored as the four bytes alpha, red, green, blue
    // in that order whatever the stream's byte order. The colour types supply typed overloads.
    void WriteARGB32(UInt32 anARGB);
    UInt32 ReadARGB32();

    void WriteVersion(XVersion aVersion) { Write32(aVersion.GetWord()); }
    XVersion ReadVersion() { return XVersion(Read32()); }

    void WriteObject(const XStorable * anObject, XStorable::XOptions anOptions = 0);
    void WriteObject(const XStorable & anObject, XStorable::XOptions anOptions = 0);
    // Reads one object through the object reader; null for a null object. The caller owns it.
    XStorable * ReadStorable(XStorable::XOptions anOptions = 0) { return ReadObject(anOptions); }
    // Reads one object that must be a T or null; another class is deleted and raises 1005.
    template <class T>
    T * ReadObjectAs(XStorable::XOptions anOptions = 0)
    {
        std::unique_ptr<XStorable> object(ReadObject(anOptions));
        if (!object)
            return nullptr;
        T * typed = dynamic_cast<T *>(object.get());
        if (typed == nullptr)
            throw XException(kErrWrongClass, "stored object is of another class");
        object.release();
        return typed;
    }

    // The word of the object now being created, or the null word outside any object read.
    XVersion GetLastClassCreated() const;

    SInt64 GetPosition() const { return itsBufferStart + SInt64(itsBufferPos); }
    void SeekTo(SInt64 aPosition);
    void Seek(SInt64 anOffset) { SeekTo(GetPosition() + anOffset); }
    SInt64 GetExtent() const;
    // Bytes between the position and the extent; 0 past the extent.
    UInt64 GetBytesLeft() const;
    // Makes the position the end of the stream.
    void Truncate();
    // Writes the buffer to the medium.
    void Flush();

protected:
    friend class XStorable;

    // The object reader; a lazy stream overrides it to defer bulk data.
    virtual XStorable * ReadObject(XStorable::XOptions anOptions);

    // Buffer hooks. DrainBuffer writes the window's changed bytes to the medium, FillBuffer loads
    // the window from itsBufferStart. Both have bodies that use the medium primitives below.
    virtual void DrainBuffer();
    virtual void FillBuffer();
    virtual SInt64 GetExtentSelf() const = 0;
    virtual void SetExtentSelf(SInt64 anExtent) = 0;
    // A hint that the medium will grow to at least aSize bytes.
    virtual void SetPhysicalSizeSelf(SInt64 aSize);
    virtual UInt64 PeekBuffer8WithoutSeekSelf(void * aBuffer, UInt64 aByteCount);
    // Medium primitives: read returns the bytes that there were, at most aByteCount.
    virtual UInt64 ReadMediumSelf(SInt64 anOffset, void * aBuffer, UInt64 aByteCount) = 0;
    virtual void WriteMediumSelf(SInt64 anOffset, const void * aBuffer, UInt64 aByteCount) = 0;

    // The stack of objects being read, kept by ReadObject.
    struct XObjectRead
    {
        XVersion itsWord;
        bool itsWordPending; // the word still stands for the object's first level
    };
    void PushObjectRead(XVersion aWord, bool aPending);
    void PopObjectRead();
    // ReadClassVersion's rule; see XStorable.
    XVersion TakeClassVersion(XVersion aDefault);
    // The next word when it names aDefault's class or the class that aDefault's class stands for;
    // otherwise aDefault, and the stream stays where it was.
    XVersion TakeOptionalClassVersion(XVersion aDefault);

    // Drops the window without writing (after the subclass changed the medium behind it).
    void DiscardBuffer();

private:
    void WriteRaw(const void * aBuffer, UInt64 aByteCount)
    {
        if (itsBufferPos + aByteCount <= itsBuffer.size())
        {
            CopyIntoWindow(aBuffer, aByteCount);
            return;
        }
        WriteRawSlow(aBuffer, aByteCount);
    }
    void ReadRaw(void * aBuffer, UInt64 aByteCount)
    {
        if (itsBufferPos + aByteCount <= itsBufferFill)
        {
            CopyFromWindow(aBuffer, aByteCount);
            return;
        }
        ReadRawSlow(aBuffer, aByteCount);
    }
    void CopyIntoWindow(const void * aBuffer, UInt64 aByteCount);
    void CopyFromWindow(void * aBuffer, UInt64 aByteCount);
    void WriteRawSlow(const void * aBuffer, UInt64 aByteCount);
    void ReadRawSlow(void * aBuffer, UInt64 aByteCount);
    void MoveWindowTo(SInt64 aPosition);
    template <class T>
    void WriteNumber(T aValue);
    template <class T>
    T ReadNumber();
    void WriteSwapped(const void * aBuffer, UInt64 aCount, UInt32 aUnit);

    XByteOrder itsByteOrder;
    bool itsSwap;
    UInt32 itsFormatMajor = kFormatMajorVersion;
    UInt32 itsFormatMinor = kFormatMinorVersion;

    std::vector<UInt8> itsBuffer;
    SInt64 itsBufferStart = 0; // medium offset of the window's first byte
    UInt64 itsBufferPos = 0;   // position inside the window
    UInt64 itsBufferFill = 0;  // bytes of the window that hold data
    UInt64 itsDirtyBegin = 0;  // changed bytes of the window: [begin, end)
    UInt64 itsDirtyEnd = 0;

    std::vector<XObjectRead> itsObjectsRead;
};
