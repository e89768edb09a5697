#include "XBasePackedVolume.h"

#include <string>

#include "XAssert.h"
#include "XException.h"
#include "XLock.h"
#include "XStream.h"

namespace
{
XMemoryHandle SharedStorage(const XBasePackedVolume & aVolume)
{
    XLock lock(aVolume, kLockRead);
    return aVolume.GetStorage();
}
} // namespace

XBasePackedVolume::XBasePackedVolume(const XBasePackedVolume & aVolume)
    : XVolume(aVolume), itsStorage(SharedStorage(aVolume))
{
}

XBasePackedVolume::XBasePackedVolume(XStream & aStream) : XVolume(aStream)
{
    if (!IsReadingLegacyImage(aStream) && !IsReadingLossyForm(aStream))
        ReadLevelVersion(aStream, GetClassVersion());
}

XMemoryHandle XBasePackedVolume::GetStorage() const
{
    return itsStorage;
}

void XBasePackedVolume::SetStorage(const XMemoryHandle & aHandle)
{
    XAssertText(aHandle.GetDataSize() >= GetVolumeBytes(), "handle.GetDataSize() >= GetVolumeBytes()");
    itsStorage = aHandle;
}

void XBasePackedVolume::FetchData() const
{
    XVolume::FetchData();
    itsStorage.FetchData();
}

void XBasePackedVolume::LockSelf(XLockMode aMode) const
{
    if (itsStorage.GetDataSize() < GetVolumeBytes())
        throw XException(kErrDamagedStream,
                         "volume of " + std::to_string(GetWidth()) + " x " + std::to_string(GetHeight()) +
                             " x " + std::to_string(GetDepth()) + " voxels holds " +
                             std::to_string(itsStorage.GetDataSize()) + " bytes where " +
                             std::to_string(GetVolumeBytes()) + " are needed");
    LockFor(itsStorage, aMode);
}

void XBasePackedVolume::UnlockSelf(XLockMode aMode) const
{
    UnlockFor(itsStorage, aMode);
}

void XBasePackedVolume::ReadStream2_XBasePackedVolume(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XVolume(aStream, anOptions);
    ReadLevelVersion(aStream, GetClassVersion());
}

void XBasePackedVolume::WriteStream2_XBasePackedVolume(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XVolume(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}
