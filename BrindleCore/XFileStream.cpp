#include "XFileStream.h"

#include <algorithm>

#include "XByteSwap.h"

XByteOrder XFileStream::GetPlatformOrder()
{
    return GetByteOrderFromPlatform();
}

XFileStream::XFileStream(XFile & aFile, UInt64 aBufferSize, XByteOrder anOrder)
    : XStream(anOrder, aBufferSize), itsFile(&aFile), itsExtent(SInt64(aFile.GetSize()))
{
}

XFileStream::XFileStream(const XFileSpec & aSpec, XFileMode aMode, UInt64 aBufferSize,
                         XByteOrder anOrder)
    : XStream(anOrder, aBufferSize), itsOwnedFile(std::make_unique<XFile>(aSpec, aMode)),
      itsFile(itsOwnedFile.get()), itsExtent(SInt64(itsFile->GetSize()))
{
}

XFileStream::~XFileStream()
{
    try
    {
        Flush();
    }
    catch (...)
    {
        // A destructor must not throw; callers who care call Flush() themselves.
    }
}

SInt64 XFileStream::GetExtentSelf() const
{
    return itsExtent;
}

void XFileStream::SetExtentSelf(SInt64 anExtent)
{
    itsFile->SetSize(UInt64(anExtent));
    itsExtent = anExtent;
}

UInt64 XFileStream::ReadMediumSelf(SInt64 anOffset, void * aBuffer, UInt64 aByteCount)
{
    return itsFile->ReadAt(anOffset, aBuffer, aByteCount);
}

void XFileStream::WriteMediumSelf(SInt64 anOffset, const void * aBuffer, UInt64 aByteCount)
{
    itsFile->WriteAt(anOffset, aBuffer, aByteCount);
    itsExtent = std::max(itsExtent, anOffset + SInt64(aByteCount));
}
