#include "XBaseLUT.h"

#include <memory>
#include <string>

#include "XException.h"
#include "XLock.h"
#include "XMemoryHandle.h"
#include "XStream.h"

XBaseLUT::XBaseLUT(UInt32 aSize, UInt32 anEntryBytes)
    : itsData(new XMemoryHandle(UInt64(aSize) * anEntryBytes)), itsLastEntry(aSize - 1)
{
}

XBaseLUT::XBaseLUT(const XBaseLUT & anOther) : XLockable(anOther), itsData(nullptr), itsLastEntry(anOther.itsLastEntry)
{
    XLock lock(anOther, kLockRead);
    itsData = new XMemoryHandle(*anOther.itsData);
}

XBaseLUT::~XBaseLUT()
{
    delete itsData;
}

XBaseLUT & XBaseLUT::operator=(const XBaseLUT & anOther)
{
    if (this == &anOther)
        return *this;
    XLockable::operator=(anOther);
    XLock lock(anOther, kLockRead);
    *itsData = *anOther.itsData;
    itsLastEntry = anOther.itsLastEntry;
    return *this;
}

UInt64 XBaseLUT::GetDataSize() const
{
    return itsData->GetDataSize();
}

void XBaseLUT::LockSelf(XLockMode aMode) const
{
    LockFor(*itsData, aMode);
    itsDataPointer.store(itsData->GetData(), std::memory_order_relaxed);
}

void XBaseLUT::UnlockSelf(XLockMode aMode) const
{
    UnlockFor(*itsData, aMode);
}

void XBaseLUT::ReplaceData(XMemoryHandle * aHandle, UInt32 aSize)
{
    delete itsData;
    itsData = aHandle;
    itsLastEntry = aSize - 1;
}

XMemoryHandle * XBaseLUT::ReadEntries(XStream & aStream, UInt32 aCount, UInt32 anEntryBytes,
                                      XStorable::XOptions anOptions)
{
    std::unique_ptr<XMemoryHandle> handle(aStream.ReadObjectAs<XMemoryHandle>(anOptions));
    const UInt64 size = handle ? handle->GetDataSize() : 0;
    if (size != UInt64(aCount) * anEntryBytes)
        throw XException(kErrDamagedStream, "look-up table of " + std::to_string(aCount) + " entries of " +
                                                std::to_string(anEntryBytes) + " bytes stored with " +
                                                std::to_string(size) + " bytes of entries");
    if (!handle)
        handle = std::make_unique<XMemoryHandle>();
    return handle.release();
}
