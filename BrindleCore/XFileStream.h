#pragma once
// A buffered stream on a file. Small reads and writes go through the buffer; blocks at least as
// large as the buffer go to the file directly.

#include <memory>

#include "XFile.h"
#include "XStream.h"

class XFileStream : public XStream
{
public:
    static constexpr UInt64 kDefaultBufferSize = 0x10000;

    // A stream on an open file that the caller keeps open for the stream's life.
    explicit XFileStream(XFile & aFile, UInt64 aBufferSize = kDefaultBufferSize,
                         XByteOrder anOrder = GetPlatformOrder());
    // A stream that opens and owns its file.
    XFileStream(const XFileSpec & aSpec, XFileMode aMode, UInt64 aBufferSize = kDefaultBufferSize,
                XByteOrder anOrder = GetPlatformOrder());
    // Writes the buffer back; a failure there is lost, so call Flush() to see it.
    ~XFileStream() override;

    XFile & GetFile() const { return *itsFile; }

protected:
    SInt64 GetExtentSelf() const override;
    void SetExtentSelf(SInt64 anExtent) override;
    UInt64 ReadMediumSelf(SInt64 anOffset, void * aBuffer, UInt64 aByteCount) override;
    void WriteMediumSelf(SInt64 anOffset, const void * aBuffer, UInt64 aByteCount) override;

private:
    static XByteOrder GetPlatformOrder();

    std::unique_ptr<XFile> itsOwnedFile;
    XFile * itsFile;
    SInt64 itsExtent; // the file's size as this stream has made it
};
